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

void ReadInPieces(const File& file, const std::function<void(std::string_view)>& take) {
    char buffer[65536];
    for (;;) {
        const ssize_t count = read(file.Get(), buffer, sizeof buffer);
        file.Check(count >= 0 || errno == EINTR);
        if (count == 0) {
            return;
        }
        if (count > 0) {
            take({buffer, static_cast<std::size_t>(count)});
        }
    }
}

std::string ReadAll(const File& file) {
    std::string bytes;
    ReadInPieces(file, [&](std::string_view piece) { bytes += piece; });
    return bytes;
}

}  // namespace

std::string ReadFile(const std::string& path) {
    return ReadAll(File(open(path.c_str(), O_RDONLY | O_CLOEXEC), path.c_str()));
}

void ReadFileInPieces(const std::string& path, const std::function<void(std::string_view)>& take) {
    ReadInPieces(File(open(path.c_str(), O_RDONLY | O_CLOEXEC), path.c_str()), take);
}

std::string ReadStandardInput() {
    return ReadAll(File(dup(STDIN_FILENO), "standard input"));
}

void ReplaceFile(const std::string& path, std::string_view before, std::string_view bytes) {
    const std::unique_ptr<char, decltype(&std::free)> target(realpath(path.c_str(), nullptr),
                                                             std::free);
    struct stat status = {};
    if (target == nullptr || stat(target.get(), &status) != 0) {
        throw std::system_error(errno, std::generic_category(), path);
    }
    if (!S_ISREG(status.st_mode)) {
        throw std::runtime_error(path + ": not a regular file, which alone can be replaced");
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
    if (ReadFile(targetPath) != before) {
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
