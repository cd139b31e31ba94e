// What macOS's libraries do differently from Linux's: the functions and variables have macOS's names,
// after "macos_". Those that are not here are Linux's own.
#include <atomic>
#include <cctype>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <ftw.h>
#include <locale>
#include <mutex>
#include <new>
#include <pthread.h>
#include <regex.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include "tests/macos/Loader.h"

namespace {

void* Allocate(std::size_t size) {
    void* const memory = std::malloc(size);
    return memory != nullptr ? memory : throw std::bad_alloc();
}

auto* gNew = Allocate;
auto* gDelete = std::free;

// A mutex of macOS is larger than Linux's. Unless a function has initialised it, it begins with a
// signature, where Linux's has zeros.
template <typename Mutex>
Mutex* Initialised(Mutex* mutex) {
    std::uint64_t signature = 0x32AAABA7;
    reinterpret_cast<std::atomic<std::uint64_t>*>(mutex)->compare_exchange_strong(signature, 0);
    return mutex;
}

// macOS's struct stat.
struct Status {
    std::int32_t device;
    std::uint16_t mode;
    std::uint16_t links;
    std::uint64_t inode;
    std::uint32_t user;
    std::uint32_t group;
    std::int32_t special[2];
    timespec times[4];
    std::int64_t size;
    std::int64_t rest[5];
};

int Convert(int result, const struct stat& from, Status* to) {
    if (result == 0) {
        *to = {};
        to->device = static_cast<std::int32_t>(from.st_dev);
        to->mode = static_cast<std::uint16_t>(from.st_mode);
        to->inode = from.st_ino;
        to->user = from.st_uid;
        to->group = from.st_gid;
        to->size = from.st_size;
    }
    return result;
}

int OpenFlags(int flags) {
    constexpr int kFlags[][2] = {
        {0x4, O_NONBLOCK}, {0x8, O_APPEND},     {0x200, O_CREAT},        {0x400, O_TRUNC},
        {0x800, O_EXCL},   {0x20000, O_NOCTTY}, {0x100000, O_DIRECTORY}, {0x1000000, O_CLOEXEC}};
    int converted = flags & O_ACCMODE;
    for (const auto& [macos, own] : kFlags) {
        converted |= (flags & macos) != 0 ? own : 0;
    }
    return converted;
}

// macOS's table of the characters' kinds, after 60 bytes that the programs do not read.
struct Characters {
    char unread[60] = {};
    std::uint32_t kinds[256] = {};

    Characters() {
        int (*const tests[])(int) = {isalpha, iscntrl, isdigit,  isgraph, islower, ispunct,
                                     isspace, isupper, isxdigit, isblank, isprint};
        for (int character = 0; character < 128; ++character) {
            std::uint32_t bit = 0x100;
            for (const auto test : tests) {
                kinds[character] |= test(character) != 0 ? bit : 0;
                bit <<= 1U;
            }
        }
    }
};

extern "C" {
Characters macos__DefaultRuneLocale;
}

// In it, std::isalpha and the like look.
struct Facet : std::ctype<char> {
    Facet() : std::ctype<char>(reinterpret_cast<const mask*>(macos__DefaultRuneLocale.kinds)) {}
} gFacet;

}  // namespace

void UseOperators(char* operatorNew, char* operatorDelete) {
    if (operatorNew != nullptr) {
        gNew = reinterpret_cast<decltype(gNew)>(operatorNew);
        gDelete = reinterpret_cast<decltype(gDelete)>(operatorDelete);
    }
}

void* operator new(std::size_t size) {
    return gNew(size);
}
void operator delete(void* memory) noexcept {
    gDelete(memory);
}

extern "C" {

// What compiler and headers refer to.
std::uint64_t macos___stack_chk_guard = 0x5bd1e995c6a4a793;
FILE* macos___stdoutp = stdout;
FILE* macos___stderrp = stderr;

// libc++'s std::locale::use_facet.
const void* UseFacet(const std::locale* locale,
                     std::locale::id* id) asm("_ZNKSt3__16locale9use_facetERNS0_2idE");
const void* macos__ZNKSt3__16locale9use_facetERNS0_2idE(const std::locale* locale,
                                                        std::locale::id* id) {
    return id == &std::ctype<char>::id ? &gFacet : UseFacet(locale, id);
}

void macos_dyld_stub_binder() {
    Fail("a symbol is bound only when it is called");
}
int* macos___error() {
    return &errno;
}
int macos___maskrune(int, unsigned long) {  // for characters beyond the table
    return 0;
}
int macos___tolower(int character) {
    return tolower(character);
}
int macos___toupper(int character) {
    return toupper(character);
}

// By its offset, a thread-local variable, all of which begin as zeros. Keeps the registers that
// callers on macOS expect it to.
__attribute__((preserve_most)) char* macos__tlv_bootstrap(const std::size_t (&variable)[3]) {
    alignas(std::max_align_t) thread_local char variables[1024];
    return variables + variable[2];
}

int macos_pthread_mutex_lock(pthread_mutex_t* mutex) {
    return pthread_mutex_lock(Initialised(mutex));
}
void macos__ZNSt3__15mutex4lockEv(std::mutex* mutex) {
    Initialised(mutex)->lock();
}
bool macos__ZNSt3__15mutex8try_lockEv(std::mutex* mutex) {
    return Initialised(mutex)->try_lock();
}

int macos_open(const char* path, int flags, unsigned mode) {
    return open(path, OpenFlags(flags), mode);
}
void* macos_mmap(void* address, std::size_t size, int rights, int flags, int file, off_t offset) {
    constexpr int kAnonymous = 0x1000;
    const int converted =
        (flags & (MAP_TYPE | MAP_FIXED)) | ((flags & kAnonymous) != 0 ? MAP_ANONYMOUS : 0);
    return mmap(address, size, rights, converted, file, offset);
}
int macos_stat(const char* path, Status* status) {
    struct stat own = {};
    return Convert(stat(path, &own), own, status);
}
int macos_lstat(const char* path, Status* status) {
    struct stat own = {};
    return Convert(lstat(path, &own), own, status);
}
int macos_fstat(int file, Status* status) {
    struct stat own = {};
    return Convert(fstat(file, &own), own, status);
}
// The callbacks use only the path.
int macos_nftw(const char* path, __nftw_func_t callback, int descriptors, int flags) {
    return nftw(path, callback, descriptors,
                (flags & FTW_PHYS) | ((flags & 4) != 0 ? FTW_DEPTH : 0));
}

// Signals stay as they are.
int macos_pthread_sigmask(int, const std::uint32_t*, std::uint32_t* before) {
    if (before != nullptr) {
        *before = 0;
    }
    return 0;
}

// A program is started in a loader of its own. macOS's list of file actions is a pointer to Linux's.
using Actions = posix_spawn_file_actions_t;
int macos_posix_spawn(pid_t* process, const char* path, Actions* const* actions, const void*,
                      char* const* arguments, char* const* environment) {
    char loader[] = "/proc/self/exe";
    std::vector<char*> all = {loader, const_cast<char*>(path)};
    while (*arguments != nullptr) {
        all.push_back(*++arguments);
    }
    return posix_spawn(process, loader, *actions, nullptr, all.data(), environment);
}
int macos_posix_spawn_file_actions_init(Actions** actions) {
    *actions = static_cast<Actions*>(std::malloc(sizeof(Actions)));
    return posix_spawn_file_actions_init(*actions);
}
int macos_posix_spawn_file_actions_addopen(Actions** actions, int file, const char* path, int flags,
                                           mode_t mode) {
    return posix_spawn_file_actions_addopen(*actions, file, path, OpenFlags(flags), mode);
}
int macos_posix_spawn_file_actions_adddup2(Actions** actions, int from, int to) {
    return posix_spawn_file_actions_adddup2(*actions, from, to);
}
int macos_posix_spawn_file_actions_addclose(Actions** actions, int file) {
    return posix_spawn_file_actions_addclose(*actions, file);
}
int macos_posix_spawn_file_actions_destroy(Actions** actions) {
    posix_spawn_file_actions_destroy(*actions);
    std::free(*actions);
    return 0;
}

// What GoogleTest needs: regular expressions, whose regex_t is larger on Linux, so that macOS's holds a
// pointer to one; the program's arguments; the number of threads.
int macos_regcomp(regex_t** regex, const char* pattern, int flags) {
    *regex = static_cast<regex_t*>(std::malloc(sizeof(regex_t)));
    return regcomp(*regex, pattern, flags);
}
int macos_regexec(regex_t* const* regex, const char* text, std::size_t, void*, int flags) {
    return regexec(*regex, text, 0, nullptr, flags);
}
void macos_regfree(regex_t** regex) {
    regfree(*regex);
    std::free(*regex);
}
int* macos__NSGetArgc() {
    return &gArgumentCount;
}
char*** macos__NSGetArgv() {
    return &gArguments;
}
constexpr int kFailure = 5;
unsigned macos_mach_task_self_ = 0;
int macos_task_threads() {
    return kFailure;
}
int macos_vm_deallocate() {
    return kFailure;
}
}
