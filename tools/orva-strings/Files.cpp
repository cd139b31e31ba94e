#include "tools/orva-strings/Files.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <stdexcept>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

#include "tools/orva-strings/AccessList.h"
#include "tools/orva-strings/SignalsHeld.h"

namespace {

// This and the next class own what the system has made already, so making them allocates nothing: if
// that failed, there would be nobody to close the file or to remove it.

// An open file, closed at the end of its scope. Its name, which is for messages, must outlive it.
class File {
public:
    File(int descriptor, const char* name) : m_descriptor(descriptor), m_name(name) {
        Check(descriptor >= 0);
    }
    ~File() {
        if (m_descriptor >= 0) {
            close(m_descriptor);
        }
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    int Get() const { return m_descriptor; }

    // Throws what errno says unless a call succeeded.
    void Check(bool hasSucceeded) const {
        if (!hasSucceeded) {
            throw std::system_error(errno, std::generic_category(), m_name);
        }
    }

    // Returns how many bytes it has read, 0 at the end of the file.
    std::size_t Read(char* buffer, std::size_t size) const {
        for (;;) {
            const ssize_t count = read(m_descriptor, buffer, size);
            Check(count >= 0 || errno == EINTR);
            if (count >= 0) {
                return static_cast<std::size_t>(count);
            }
        }
    }

    void Write(std::string_view bytes) const {
        while (!bytes.empty()) {
            const ssize_t written = write(m_descriptor, bytes.data(), bytes.size());
            Check(written >= 0 || errno == EINTR);
            bytes.remove_prefix(written > 0 ? static_cast<std::size_t>(written) : 0);
        }
    }

    void Close() {
        const int descriptor = m_descriptor;
        m_descriptor = -1;
        Check(close(descriptor) == 0);
    }

private:
    int m_descriptor;
    const char* m_name;
};

// Removes a file at the end of its scope, unless it is kept. The path must outlive it.
class Unfinished {
public:
    explicit Unfinished(const char* path) noexcept : m_path(path) {}
    ~Unfinished() {
        if (m_path != nullptr) {
            unlink(m_path);
        }
    }
    Unfinished(const Unfinished&) = delete;
    Unfinished& operator=(const Unfinished&) = delete;

    void Keep() noexcept { m_path = nullptr; }

private:
    const char* m_path;
};

// The mode of a file that gets another group, whose old one are others now: both have left what both
// had.
mode_t WithoutGroup(mode_t mode) {
    const mode_t common = mode & (mode >> 3U) & 0007U;
    return (mode & 0700U) | (common << 3U) | common;
}

int OpenFolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    return open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

std::string ReadAll(const File& file) {
    std::string bytes;
    char buffer[65536];
    while (const std::size_t count = file.Read(buffer, sizeof buffer)) {
        bytes.append(buffer, count);
    }
    return bytes;
}

// Whether the rest of a file is these bytes. It does not read on after a difference: another program
// may be writing faster than this one reads.
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

// Whether the file at this path is the one of the snapshot, with the same bytes.
bool HoldsStill(const char* path, const char* name, const FileSnapshot& before) {
    // It may be a pipe by now, which must not keep the process waiting: its signals wait, too.
    const File file(open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC), name);
    struct stat status = {};
    file.Check(fstat(file.Get(), &status) == 0);
    return IsSame(status, before.status) && Holds(file, before.bytes);
}

}  // namespace

std::string ReadFile(const std::string& path) {
    return ReadSnapshot(path).bytes;
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

void ReplaceFile(const std::string& path, const FileSnapshot& before, std::string_view bytes) {
    const struct stat& status = before.status;
    if (!S_ISREG(status.st_mode)) {
        throw std::runtime_error(path + ": not a regular file, which alone can be replaced");
    }
    const std::unique_ptr<char, decltype(&std::free)> target(realpath(path.c_str(), nullptr),
                                                             std::free);
    if (target == nullptr) {
        throw std::system_error(errno, std::generic_category(), path);
    }

    const std::string targetPath = target.get();
    // Open now, so that after the rename there is nothing left to refuse.
    const File directory(OpenFolderOf(targetPath), path.c_str());
    std::string newPath = targetPath + ".XXXXXX";
    const SignalsHeld held;
    File file(mkostemp(newPath.data(), O_CLOEXEC), path.c_str());
    Unfinished unfinished(newPath.c_str());
    file.Write(bytes);
    // Owner, group and list too, where the system lets us. Without both owner and group the bits
    // that act in their names go.
    constexpr auto kSameOwner = static_cast<uid_t>(-1);
    const bool hasBoth = fchown(file.Get(), status.st_uid, status.st_gid) == 0;
    const bool hasGroup = hasBoth || fchown(file.Get(), kSameOwner, status.st_gid) == 0;
    const bool hasList = CopyAccessList(targetPath.c_str(), file.Get());
    const mode_t mode = status.st_mode & (hasBoth ? 07777U : 0777U);
    file.Check(fchmod(file.Get(), hasGroup && hasList ? mode : WithoutGroup(mode)) == 0);
    file.Check(fsync(file.Get()) == 0);  // before the name leads to it
    file.Close();
    // The name last, since reading takes time.
    bool isUnchanged = HoldsStill(targetPath.c_str(), path.c_str(), before);
    struct stat now = {};
    file.Check(lstat(targetPath.c_str(), &now) == 0);
    isUnchanged = isUnchanged && IsSame(now, status);
    if (!isUnchanged) {
        throw std::runtime_error(path + ": another program has changed it meanwhile");
    }
    file.Check(std::rename(newPath.c_str(), targetPath.c_str()) == 0);
    unfinished.Keep();

    directory.Check(fsync(directory.Get()) == 0);
}

void CreatePrivateFile(const std::string& path, std::string_view bytes) {
    const File directory(OpenFolderOf(path), path.c_str());
    const SignalsHeld held;
    File file(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600), path.c_str());
    Unfinished unfinished(path.c_str());
    file.Check(fchmod(file.Get(), 0600) == 0);  // whatever the process's mask leaves
    file.Write(bytes);
    file.Check(fsync(file.Get()) == 0);
    file.Close();
    directory.Check(fsync(directory.Get()) == 0);
    unfinished.Keep();
}
