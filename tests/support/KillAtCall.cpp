// Linked into the tool; replaces and numbers the calls by which it replaces a file or makes a bundle.
// Environment variables choose what happens at them:
//   KILL_AT          kills the process at the call of this number: before it, halfway through a
//                    write, and after making a folder
//   INTERRUPT_AT     raises a signal, which can be blocked, at the call of this number
//   SIGNAL           that signal's number; SIGINT by default
//   ACT_AT, ACT      before the call of this number, runs the command ACT, as another program might
//   CALLS            the file to which the calls' numbers and names are written
//   SHORT_TRANSFERS  interrupts every other read or write, and limits the others to 100 bytes
//   SHARED_POSITION  makes opening /dev/fd/N duplicate N, as on macOS
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

int gCall = 0;
int gTransfer = 0;

bool IsTurn(const char* variable) {
    const char* const value = std::getenv(variable);
    return value != nullptr && std::atoi(value) == gCall;
}

void Interrupt() {
    const char* const value = std::getenv("SIGNAL");
    const int number = value != nullptr ? std::atoi(value) : SIGINT;
    std::signal(number, SIG_DFL);  // a shell ignores some for background processes
    raise(number);
}

void Act() {
    const char* const command = std::getenv("ACT");
    if (command == nullptr || std::system(command) != 0) {
        std::fputs("ACT failed\n", stderr);
        std::abort();
    }
}

// Does what the environment variables choose for this call.
void Note(const char* name) {
    ++gCall;
    if (const char* const path = std::getenv("CALLS")) {
        std::FILE* const calls = std::fopen(path, "a");
        std::fprintf(calls, "%d %s\n", gCall, name);
        std::fclose(calls);
    }
    if (IsTurn("KILL_AT")) {
        raise(SIGKILL);
    }
    if (IsTurn("INTERRUPT_AT")) {
        Interrupt();
    }
    if (IsTurn("ACT_AT")) {
        Act();
    }
}

// Whether a read or write is interrupted. Otherwise it is shortened.
bool IsInterrupted(size_t* length) {
    if (std::getenv("SHORT_TRANSFERS") == nullptr) {
        return false;
    }
    *length = *length < 100 ? *length : 100;
    errno = EINTR;
    return ++gTransfer % 2 == 0;
}

template <typename Function>
Function* System(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

FILE* Open(const char* name, const char* path, const char* mode) {
    constexpr char kOpenFiles[] = "/dev/fd/";
    char target[sizeof kOpenFiles + 10] = {};
    if (std::getenv("SHARED_POSITION") != nullptr &&
        readlink(path, target, sizeof target - 1) > 0 &&
        std::strncmp(target, kOpenFiles, sizeof kOpenFiles - 1) == 0) {
        return fdopen(dup(std::atoi(target + sizeof kOpenFiles - 1)), mode);
    }
    return System<FILE*(const char*, const char*)>(name)(path, mode);
}

}  // namespace

extern "C" {

ssize_t write(int file, const void* bytes, size_t length) {
    auto* const systems = System<ssize_t(int, const void*, size_t)>("write");
    if (length > 1) {
        ++gCall;
        if (IsTurn("KILL_AT")) {
            systems(file, bytes, length / 2);
            raise(SIGKILL);
        }
        if (IsTurn("INTERRUPT_AT")) {
            Interrupt();
        }
    }
    if (IsInterrupted(&length)) {
        return -1;
    }
    Note("write");
    return systems(file, bytes, length);
}

ssize_t read(int file, void* bytes, size_t length) {
    return IsInterrupted(&length)
               ? -1
               : System<ssize_t(int, void*, size_t)>("read")(file, bytes, length);
}

int mkdir(const char* path, mode_t mode) noexcept {
    Note("mkdir");
    return System<int(const char*, mode_t)>("mkdir")(path, mode);
}

int unlink(const char* path) noexcept {
    Note("unlink");
    return System<int(const char*)>("unlink")(path);
}

int symlink(const char* target, const char* path) noexcept {
    Note("symlink");
    return System<int(const char*, const char*)>("symlink")(target, path);
}

// Each standard library opens its files by one of these two names.
FILE* fopen(const char* path, const char* mode) {
    return Open("fopen", path, mode);
}
FILE* fopen64(const char* path, const char* mode) {
    return Open("fopen64", path, mode);
}

char* mkdtemp(char* name) noexcept {
    Note("mkdtemp");
    char* const made = System<char*(char*)>("mkdtemp")(name);
    ++gCall;
    if (IsTurn("KILL_AT")) {
        raise(SIGKILL);
    }
    if (IsTurn("INTERRUPT_AT")) {
        Interrupt();
    }
    return made;
}

int lstat(const char* path, struct stat* status) noexcept {
    Note("lstat");
    return System<int(const char*, struct stat*)>("lstat")(path, status);
}

int fsync(int file) {
    Note("fsync");
    return System<int(int)>("fsync")(file);
}

int fchmod(int file, mode_t mode) {
    Note("fchmod");
    return System<int(int, mode_t)>("fchmod")(file, mode);
}

int rename(const char* from, const char* to) noexcept {
    Note("rename");
    return System<int(const char*, const char*)>("rename")(from, to);
}

int close(int file) {
    Note("close");
    return System<int(int)>("close")(file);
}
}
