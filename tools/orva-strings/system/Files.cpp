#include "tools/orva-strings/system/Files.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <sys/random.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

#include "clearing/ClearedArray.h"
#include "tools/orva-strings/Hex.h"
#include "tools/orva-strings/system/AccessList.h"
#include "tools/orva-strings/system/SignalBlock.h"

namespace {

// This and the next class own what the system has already made, so their constructors allocate
// nothing: if that failed, nothing would close or remove the file.

// An open file, closed when destroyed. Its name, which is for messages, must outlive it.
class File {
public:
    File(int descriptor, const char* name) : m_descriptor(descriptor), m_name(name) {
        Check(descriptor != -1);
    }
    ~File() {
        if (m_descriptor != -1) {
            close(m_descriptor);
        }
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    int Get() const { return m_descriptor; }

    // Throws std::system_error from errno unless a call succeeded.
    void Check(bool hasSucceeded) const {
        if (!hasSucceeded) {
            throw std::system_error(errno, std::generic_category(), m_name);
        }
    }

    // Returns the number of bytes read, 0 at the end of the file.
    std::size_t Read(char* buffer, std::size_t size) const {
        for (;;) {
            const ssize_t count = read(m_descriptor, buffer, size);
            if (count != -1) {
                return static_cast<std::size_t>(count);
            }
            Check(errno == EINTR);
        }
    }

    void Write(std::string_view bytes) const {
        while (!bytes.empty()) {
            const ssize_t written = write(m_descriptor, bytes.data(), bytes.size());
            if (written == -1) {
                Check(errno == EINTR);
            } else {
                bytes.remove_prefix(static_cast<std::size_t>(written));
            }
        }
    }

    void Close() { Check(close(Release()) == 0); }

    // Returns the descriptor, which the caller must close.
    int Release() noexcept {
        const int descriptor = m_descriptor;
        m_descriptor = -1;
        return descriptor;
    }

private:
    int m_descriptor;
    const char* m_name;
};

// Removes a file when destroyed, unless cancelled. The path must outlive it.
class RemoveOnFailure {
public:
    explicit RemoveOnFailure(const char* path) noexcept : m_path(path) {}
    ~RemoveOnFailure() {
        if (m_path != nullptr) {
            unlink(m_path);
        }
    }
    RemoveOnFailure(const RemoveOnFailure&) = delete;
    RemoveOnFailure& operator=(const RemoveOnFailure&) = delete;

    void Cancel() noexcept { m_path = nullptr; }

private:
    const char* m_path;
};

// The mode after a change of group. The old group's members are now others, so group and others
// each keep only what both had.
mode_t WithoutGroup(mode_t mode) {
    const unsigned bits = mode;  // on macOS mode_t is short
    const unsigned common = bits & (bits >> 3U) & 0007U;
    return static_cast<mode_t>((bits & 0700U) | (common << 3U) | common);
}

// Follows the symbolic links at the end of a path, even dangling ones.
std::string EndOfLinks(std::filesystem::path path) {
    constexpr int kMaxLinks = 40;  // another program may make a loop of them
    for (int i = 0; i < kMaxLinks && is_symlink(symlink_status(path)); ++i) {
        path = path.parent_path() / std::filesystem::read_symlink(path);
    }
    return path.string();
}

// Creates a file under a new name, which differs from the path in its last six characters; updates
// the path. Returns its descriptor, or -1 with errno set. Not mkostemp, which would ignore the mode
// and so the folder's default access list.
int CreateUnderNewName(std::string& path, mode_t mode) {
    for (;;) {
        std::uint8_t random[3];
        if (getentropy(random, sizeof random) != 0) {
            return -1;
        }
        const std::string digits = ToHexDigits(random, sizeof random);
        path.replace(path.size() - digits.size(), digits.size(), digits);
        const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
        if (file != -1 || errno != EEXIST) {
            return file;
        }
    }
}

int OpenFolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    return open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

constexpr std::size_t kPiece = 65536;

void ReadInPieces(const File& file, const TakePiece& take) {
    const ClearedArray buffer(kPiece);  // the file may hold a key
    auto* const bytes = reinterpret_cast<char*>(buffer.Get());
    while (const std::size_t count = file.Read(bytes, buffer.Size())) {
        take({bytes, count});
    }
}

std::string ReadAll(const File& file) {
    std::string bytes;
    bytes.reserve(kPiece);  // a key read in parts must not move, leaving a copy
    ReadInPieces(file, [&](std::string_view piece) { bytes += piece; });
    return bytes;
}

// Whether the rest of a file is these bytes. Stops reading at a difference: another program may be
// writing faster than this one reads.
bool Holds(const File& file, std::string_view bytes) {
    char buffer[65536];
    while (const std::size_t count = file.Read(buffer, sizeof buffer)) {
        if (bytes.substr(0, count) != std::string_view(buffer, count)) {
            return false;
        }
        bytes.remove_prefix(count);
    }
    return bytes.empty();
}

bool IsSame(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_mode == b.st_mode &&
           a.st_uid == b.st_uid && a.st_gid == b.st_gid;
}

// A file to replace: its status, and its bytes if they must not change before then.
struct Replaced {
    struct stat status;
    std::optional<std::string_view> bytes;
};

// Gives a new file the owner, group, access list and mode of the one that it replaces, as far as
// the system allows.
void CopyRights(const File& file, const char* from, const struct stat& status) {
    // Drop setuid and setgid unless owner and group are both kept.
    constexpr auto kSameOwner = static_cast<uid_t>(-1);
    const bool hasBoth = fchown(file.Get(), status.st_uid, status.st_gid) == 0;
    const bool hasGroup = hasBoth || fchown(file.Get(), kSameOwner, status.st_gid) == 0;
    const bool hasList = CopyAccessList(from, file.Get());
    const mode_t mode = status.st_mode & (hasBoth ? 07777U : 0777U);
    file.Check(fchmod(file.Get(), hasGroup && hasList ? mode : WithoutGroup(mode)) == 0);
}

// Whether the file at target is still the one to be replaced.
bool IsUnchanged(const char* target, const char* name, const Replaced& old) {
    struct stat status = {};
    if (old.bytes) {
        std::error_code none;  // the calls below report what is wrong
        const auto written = std::filesystem::last_write_time(target, none);
        // It may be a pipe by now, and opening it must not block: signals are blocked too.
        File file(open(target, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC), name);
        file.Check(fstat(file.Get(), &status) == 0);
        if (!IsSame(status, old.status) || !Holds(file, *old.bytes)) {
            return false;
        }
        file.Close();
        // The time reveals a write to a part that had already been read.
        if (std::filesystem::last_write_time(target, none) != written) {
            return false;
        }
    }
    if (lstat(target, &status) != 0) {
        throw std::system_error(errno, std::generic_category(), name);
    }
    return IsSame(status, old.status);
}

// Puts a file of these bytes where path leads, in place of the old one or, if that is null, of
// whatever is there by then.
void PutFile(const std::string& path, const BytesInPieces& bytes, const Replaced* old) {
    if (old != nullptr && !S_ISREG(old->status.st_mode)) {
        throw std::runtime_error(path + ": only a regular file can be replaced");
    }
    const std::string target = EndOfLinks(path);
    // Opened now, so that this can't fail after the rename.
    const File directory(OpenFolderOf(target), path.c_str());
    std::string newPath = target + ".XXXXXX";
    const SignalBlock blocked;
    File file(CreateUnderNewName(newPath, old != nullptr ? 0600 : 0666), path.c_str());
    RemoveOnFailure removal(newPath.c_str());
    bytes([&](std::string_view piece) { file.Write(piece); });
    if (old != nullptr) {
        CopyRights(file, target.c_str(), old->status);
    }
    file.Check(fsync(file.Get()) == 0);  // before it gets its final name
    file.Close();
    if (old != nullptr && !IsUnchanged(target.c_str(), path.c_str(), *old)) {
        throw std::runtime_error(path + ": another program has changed it in the meantime");
    }
    file.Check(std::rename(newPath.c_str(), target.c_str()) == 0);
    removal.Cancel();
    directory.Check(fsync(directory.Get()) == 0);
}

}  // namespace

std::string ReadFile(const std::string& path) {
    return ReadSnapshot(path).bytes;
}

void ReadFileInPieces(const std::string& path, const TakePiece& take) {
    ReadInPieces(File(open(path.c_str(), O_RDONLY | O_CLOEXEC), path.c_str()), take);
}

std::filesystem::file_status StatusOf(const std::string& path) {
    try {
        return std::filesystem::status(path);
    } catch (const std::filesystem::filesystem_error& error) {
        throw std::system_error(error.code(), path);
    }
}

// Not std::filesystem::equivalent, which libc++ lets allocate, but not throw.
bool AreSameFile(const std::string& a, const std::string& b) {
    struct stat first = {};
    struct stat second = {};
    return stat(a.c_str(), &first) == 0 && stat(b.c_str(), &second) == 0 &&
           first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

std::string ReadStandardInput() {
    return ReadAll(File(dup(STDIN_FILENO), "standard input"));
}

FileSnapshot ReadSnapshot(const std::string& path) {
    const File file(open(path.c_str(), O_RDONLY | O_CLOEXEC), path.c_str());
    FileSnapshot snapshot;
    file.Check(fstat(file.Get(), &snapshot.status) == 0);
    snapshot.bytes = ReadAll(file);
    return snapshot;
}

void ReplaceFile(const std::string& path, const FileSnapshot& before, const BytesInPieces& bytes) {
    const Replaced old{before.status, before.bytes};
    PutFile(path, bytes, &old);
}

void WriteFile(const std::string& path, const BytesInPieces& bytes) {
    Replaced old = {};
    const bool exists = stat(path.c_str(), &old.status) == 0;
    if (!exists && errno != ENOENT) {
        throw std::system_error(errno, std::generic_category(), path);
    }
    PutFile(path, bytes, exists ? &old : nullptr);
}

void CreatePrivateFile(const std::string& path, std::string_view bytes) {
    const File directory(OpenFolderOf(path), path.c_str());
    const SignalBlock blocked;
    File file(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600), path.c_str());
    RemoveOnFailure removal(path.c_str());
    file.Check(fchmod(file.Get(), 0600) == 0);  // whatever the umask
    file.Write(bytes);
    file.Check(fsync(file.Get()) == 0);
    file.Close();
    directory.Check(fsync(directory.Get()) == 0);
    removal.Cancel();
}

NamelessFile::NamelessFile(const std::string& path, std::string_view bytes) {
    File file(open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600), path.c_str());
    file.Check(unlink(path.c_str()) == 0);
    file.Check(fchmod(file.Get(), 0600) == 0);  // whatever the umask: it is opened again
    file.Write(bytes);
    file.Check(lseek(file.Get(), 0, SEEK_SET) == 0);
    m_descriptor = file.Release();
}

NamelessFile::~NamelessFile() {
    close(m_descriptor);
}

std::string NamelessFile::Path() const {
    return "/dev/fd/" + std::to_string(m_descriptor);
}
