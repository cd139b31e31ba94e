#include "tests/support/FileFaults.h"

#include <cerrno>
#include <cstdio>
#include <dlfcn.h>

namespace {

bool gIsRecording = false;
int gOpensUntilFailure = 0;  // 0: none fails
int gClosesUntilFailure = 0;
std::vector<std::string>* gCalls = nullptr;

template <typename Function>
Function* System(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

FILE* Open(const char* name, const char* path, const char* mode) {
    if (gIsRecording) {
        gCalls->push_back(std::string("fopen ") + path + " " + mode);
        if (gOpensUntilFailure > 0 && --gOpensUntilFailure == 0) {
            errno = EACCES;
            return nullptr;
        }
    }
    return System<FILE*(const char*, const char*)>(name)(path, mode);
}

}  // namespace

FileFaults::FileFaults(int failingOpen, int failingClose) {
    delete gCalls;
    gCalls = new std::vector<std::string>;
    gOpensUntilFailure = failingOpen;
    gClosesUntilFailure = failingClose;
    gIsRecording = true;
}

FileFaults::~FileFaults() {
    gIsRecording = false;
}

const std::vector<std::string>& FileFaults::Calls() {
    return *gCalls;
}

// Each standard library opens its files by one of these two names.
extern "C" FILE* fopen(const char* path, const char* mode) {
    return Open("fopen", path, mode);
}
extern "C" FILE* fopen64(const char* path, const char* mode) {
    return Open("fopen64", path, mode);
}

extern "C" int fclose(FILE* file) {
    if (gIsRecording) {
        gCalls->emplace_back("fclose");
    }
    const int result = System<int(FILE*)>("fclose")(file);
    if (gIsRecording && gClosesUntilFailure > 0 && --gClosesUntilFailure == 0) {
        errno = EIO;
        return EOF;
    }
    return result;
}
