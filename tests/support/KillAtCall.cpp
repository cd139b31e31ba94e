// Linked into the tool, puts itself in place of the calls by which a file is replaced, and kills
// the process in the KILL_AT-th of them: before it, or in a write half way through. With FAIL_AT
// the call fails instead, for want of space.
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

int gCall = 0;

bool IsTurn(const char* variable) {
    const char* const value = std::getenv(variable);
    return value != nullptr && std::atoi(value) == gCall;
}

// Whether the call that is being made is to fail; does not return if the process is to die.
bool IsToFail() {
    ++gCall;
    if (IsTurn("KILL_AT")) {
        raise(SIGKILL);
    }
    if (IsTurn("FAIL_AT")) {
        errno = ENOSPC;
        return true;
    }
    return false;
}

template <typename Function>
Function* System(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
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
    }
    return IsToFail() ? -1 : systems(file, bytes, length);
}

int fsync(int file) {
    return IsToFail() ? -1 : System<int(int)>("fsync")(file);
}

int fchmod(int file, mode_t mode) {
    return IsToFail() ? -1 : System<int(int, mode_t)>("fchmod")(file, mode);
}

int rename(const char* from, const char* to) noexcept {
    return IsToFail() ? -1 : System<int(const char*, const char*)>("rename")(from, to);
}

int close(int file) {
    return IsToFail() ? -1 : System<int(int)>("close")(file);
}
}
