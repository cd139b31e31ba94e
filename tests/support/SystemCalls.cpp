#include "tests/support/SystemCalls.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <numeric>
#include <sys/random.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <utility>

namespace {

struct Recording {
    SystemCalls::Refuse refuse;
    std::vector<std::uint8_t> random;
    SystemCalls::Alter alter;
    std::vector<std::string> made;
    std::map<int, std::string> open;
    std::string temporaryFolder;
    sigset_t signalsBefore;
};

Recording* gRecording = nullptr;

template <typename Function>
Function* System(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

std::string Named(const char* path) {
    const std::string& folder = gRecording->temporaryFolder;
    std::string name = path;
    const std::size_t at = folder.empty() ? std::string::npos : name.find(folder);
    return at != std::string::npos ? name.replace(0, at + folder.size(), "TMP") : name;
}

std::string Named(int file) {
    const auto name = gRecording->open.find(file);
    return name != gRecording->open.end() ? name->second : std::to_string(file);
}

// Records a call. Returns the error with which it must fail, or 0.
int Record(const std::string& call) {
    Recording* const recording = std::exchange(gRecording, nullptr);
    recording->made.push_back(call);
    const int error = recording->refuse ? recording->refuse(call) : 0;
    gRecording = recording;
    return error;
}

// Records a call on a file, a path or a descriptor. Returns whether it must fail. If so, errno is
// set; otherwise it is unchanged.
template <typename File>
bool IsRefused(const char* name, File file, const std::string& more = "") {
    if (gRecording == nullptr) {
        return false;
    }
    const int before = errno;
    const int error = Record(name + (' ' + Named(file)) + (more.empty() ? "" : ' ' + more));
    errno = error != 0 ? error : before;
    return error != 0;
}

// Lets the test alter what the last call, with this result, returned.
int Altered(int result, struct stat* status) {
    if (gRecording != nullptr && gRecording->alter && result == 0) {
        gRecording->alter(gRecording->made.back(), *status);
    }
    return result;
}

int Opened(int file, const std::string& name) {
    if (gRecording != nullptr && file >= 0) {
        gRecording->open[file] = name;
    }
    return file;
}

std::string Octal(mode_t mode) {
    char digits[12];
    std::snprintf(digits, sizeof digits, "%o", mode);
    return digits;
}

std::string FlagsText(int flags, mode_t mode) {
    const int access = flags & O_ACCMODE;
    std::string text = access == O_RDONLY ? "O_RDONLY" : access == O_WRONLY ? "O_WRONLY" : "O_RDWR";
    const struct {
        int flag;
        const char* name;
    } names[] = {{O_CREAT, "O_CREAT"},         {O_EXCL, "O_EXCL"},     {O_TRUNC, "O_TRUNC"},
                 {O_DIRECTORY, "O_DIRECTORY"}, {O_NOCTTY, "O_NOCTTY"}, {O_NONBLOCK, "O_NONBLOCK"},
                 {O_CLOEXEC, "O_CLOEXEC"}};
    flags &= ~O_ACCMODE;
    for (const auto& [flag, name] : names) {
        if ((flags & flag) == flag) {
            text += std::string("|") + name;
            flags &= ~flag;
        }
    }
    text += flags != 0 ? '|' + std::to_string(flags) : "";
    return text + (text.find("O_CREAT") != std::string::npos ? ' ' + Octal(mode) : "");
}

FILE* OpenStream(const char* name, const char* path, const char* mode) {
    return IsRefused("fopen", path, mode)
               ? nullptr
               : System<FILE*(const char*, const char*)>(name)(path, mode);
}

// Whether a mask blocks all signals except those of the process's own faults.
bool HoldsSignals(const sigset_t& mask) {
    for (int signal = 1; signal < SIGRTMIN - 2; ++signal) {  // the C library reserves the next two
        const bool isFault =
            signal == SIGBUS || signal == SIGFPE || signal == SIGILL || signal == SIGSEGV;
        if ((sigismember(&mask, signal) == 1) == isFault) {
            return false;
        }
    }
    return true;
}

bool IsSame(const sigset_t& a, const sigset_t& b) {
    for (int signal = 1; signal <= SIGRTMAX; ++signal) {
        if (sigismember(&a, signal) != sigismember(&b, signal)) {
            return false;
        }
    }
    return true;
}

}  // namespace

SystemCalls::SystemCalls(Refuse refuse, std::vector<std::uint8_t> random, Alter alter) {
    auto* const recording =
        new Recording{std::move(refuse), std::move(random), std::move(alter), {}, {}, {}, {}};
    pthread_sigmask(SIG_SETMASK, nullptr, &recording->signalsBefore);
    gRecording = recording;
}

SystemCalls::~SystemCalls() {
    delete std::exchange(gRecording, nullptr);
}

const std::vector<std::string>& SystemCalls::Made() {
    return gRecording->made;
}

const std::map<int, std::string>& SystemCalls::Open() {
    return gRecording->open;
}

std::vector<std::uint8_t> SystemCalls::Counting() {
    std::vector<std::uint8_t> bytes(0xFF - 0xA0);
    std::iota(bytes.begin(), bytes.end(), static_cast<std::uint8_t>(0xA1));
    return bytes;
}

extern "C" {

int getentropy(void* bytes, size_t length) {
    if (gRecording == nullptr) {
        return System<int(void*, size_t)>("getentropy")(bytes, length);
    }
    if (IsRefused("getentropy", std::to_string(length).c_str())) {
        return -1;
    }
    std::vector<std::uint8_t>& random = gRecording->random;
    if (random.size() < length) {
        errno = EIO;
        return -1;
    }
    const auto end = random.begin() + static_cast<std::ptrdiff_t>(length);
    std::copy(random.begin(), end, static_cast<std::uint8_t*>(bytes));
    random.erase(random.begin(), end);
    return 0;
}

int open(const char* path, int flags, ...) {
    mode_t mode = 0;
    if ((flags & O_CREAT) != 0) {
        va_list arguments;
        va_start(arguments, flags);
        mode = va_arg(arguments, mode_t);
        va_end(arguments);
    }
    if (IsRefused("open", path, FlagsText(flags, mode))) {
        return -1;
    }
    const int file = System<int(const char*, int, ...)>("open")(path, flags, mode);
    return gRecording != nullptr ? Opened(file, Named(path)) : file;
}

int dup(int file) noexcept {
    return IsRefused("dup", file) ? -1 : Opened(System<int(int)>("dup")(file), "copy");
}

int close(int file) {
    const bool isRefused = IsRefused("close", file);
    const int error = errno;
    if (gRecording != nullptr) {
        gRecording->open.erase(file);
    }
    const int result = System<int(int)>("close")(file);
    if (isRefused) {  // it is closed all the same, as on Linux
        errno = error;
    }
    return isRefused ? -1 : result;
}

ssize_t read(int file, void* bytes, size_t length) {
    return IsRefused("read", file)
               ? -1
               : System<ssize_t(int, void*, size_t)>("read")(file, bytes, length);
}

ssize_t write(int file, const void* bytes, size_t length) {
    return IsRefused("write", file)
               ? -1
               : System<ssize_t(int, const void*, size_t)>("write")(file, bytes, length);
}

off_t lseek(int file, off_t offset, int from) noexcept {
    return IsRefused("lseek", file) ? -1
                                    : System<off_t(int, off_t, int)>("lseek")(file, offset, from);
}

int fsync(int file) {
    return IsRefused("fsync", file) ? -1 : System<int(int)>("fsync")(file);
}

int fstat(int file, struct stat* status) noexcept {
    return IsRefused("fstat", file)
               ? -1
               : Altered(System<int(int, struct stat*)>("fstat")(file, status), status);
}

int stat(const char* path, struct stat* status) noexcept {
    return IsRefused("stat", path) ? -1
                                   : System<int(const char*, struct stat*)>("stat")(path, status);
}

int lstat(const char* path, struct stat* status) noexcept {
    return IsRefused("lstat", path)
               ? -1
               : Altered(System<int(const char*, struct stat*)>("lstat")(path, status), status);
}

int fchmod(int file, mode_t mode) noexcept {
    return IsRefused("fchmod", file, Octal(mode)) ? -1
                                                  : System<int(int, mode_t)>("fchmod")(file, mode);
}

int fchown(int file, uid_t owner, gid_t group) noexcept {
    const char* const what = owner == static_cast<uid_t>(-1) ? "group" : "owner";
    return IsRefused("fchown", file, what)
               ? -1
               : System<int(int, uid_t, gid_t)>("fchown")(file, owner, group);
}

ssize_t getxattr(const char* path, const char* name, void* value, size_t size) noexcept {
    return IsRefused("getxattr", path, name)
               ? -1
               : System<ssize_t(const char*, const char*, void*, size_t)>("getxattr")(path, name,
                                                                                      value, size);
}

int fsetxattr(int file, const char* name, const void* value, size_t size, int flags) noexcept {
    return IsRefused("fsetxattr", file, name)
               ? -1
               : System<int(int, const char*, const void*, size_t, int)>("fsetxattr")(
                     file, name, value, size, flags);
}

int fremovexattr(int file, const char* name) noexcept {
    return IsRefused("fremovexattr", file, name)
               ? -1
               : System<int(int, const char*)>("fremovexattr")(file, name);
}

int rename(const char* from, const char* to) noexcept {
    return IsRefused("rename", from, to)
               ? -1
               : System<int(const char*, const char*)>("rename")(from, to);
}

int unlink(const char* path) noexcept {
    return IsRefused("unlink", path) ? -1 : System<int(const char*)>("unlink")(path);
}

int mkdir(const char* path, mode_t mode) noexcept {
    return IsRefused("mkdir", path, Octal(mode))
               ? -1
               : System<int(const char*, mode_t)>("mkdir")(path, mode);
}

int symlink(const char* target, const char* path) noexcept {
    return IsRefused("symlink", path)
               ? -1
               : System<int(const char*, const char*)>("symlink")(target, path);
}

char* mkdtemp(char* name) noexcept {
    if (IsRefused("mkdtemp", name)) {
        return nullptr;
    }
    char* const made = System<char*(char*)>("mkdtemp")(name);
    if (gRecording != nullptr && made != nullptr) {
        gRecording->temporaryFolder = made;
    }
    return made;
}

// Each standard library opens its files by one of these two names.
FILE* fopen(const char* path, const char* mode) {
    return OpenStream("fopen", path, mode);
}
FILE* fopen64(const char* path, const char* mode) {
    return OpenStream("fopen64", path, mode);
}

int pthread_sigmask(int how, const sigset_t* mask, sigset_t* before) noexcept {
    if (gRecording != nullptr && mask != nullptr) {
        const bool isSet = how == SIG_SETMASK;
        Record(isSet && HoldsSignals(*mask)                        ? "hold signals"
               : isSet && IsSame(*mask, gRecording->signalsBefore) ? "release signals"
                                                                   : "another mask of signals");
    }
    return System<int(int, const sigset_t*, sigset_t*)>("pthread_sigmask")(how, mask, before);
}
}
