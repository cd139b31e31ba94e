// Loads the library and records which of its static objects register a destructor, and when. That
// shows the order in which they are constructed.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <map>
#include <mutex>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

namespace {

std::vector<const void*>* gRegistered = nullptr;  // null: not watching

// The library to load: this build's, or the one that the environment names.
std::string Library() {
    const char* const named = std::getenv("ORVA_LIBRARY");
    return named == nullptr ? ORVA_LIBRARY : named;
}

// The names of the library's objects, by their address in its file.
std::map<std::uintptr_t, std::string> Symbols() {
    FILE* const listing = popen(("nm --demangle --defined-only '" + Library() + "'").c_str(), "r");
    std::map<std::uintptr_t, std::string> symbols;
    char line[4096];
    while (std::fgets(line, sizeof line, listing) != nullptr) {
        char* end = nullptr;
        const std::uintptr_t place = std::strtoull(line, &end, 16);
        std::string name = end + 3;  // after " T "
        name.pop_back();
        if (end[1] == 'B' || end[1] == 'b' || end[1] == 'D' || end[1] == 'd') {
            symbols[place] = name;
        }
    }
    EXPECT_EQ(pclose(listing), 0);
    return symbols;
}

TEST(StaticObjects, AreMadeInTheirOrder) {
    std::vector<const void*> registered;
    gRegistered = &registered;
    void* const library = dlopen(Library().c_str(), RTLD_NOW);
    gRegistered = nullptr;
    ASSERT_NE(library, nullptr) << dlerror();

    Dl_info info = {};
    ASSERT_NE(dladdr(dlsym(library, "ZuLoadStrings"), &info), 0);
    const auto base = reinterpret_cast<std::uintptr_t>(info.dli_fbase);
    const std::map<std::uintptr_t, std::string> symbols = Symbols();
    std::vector<std::string> names;
    for (const void* object : registered) {
        const auto symbol = symbols.find(reinterpret_cast<std::uintptr_t>(object) - base);
        names.push_back(symbol == symbols.end() ? "not an object of the library" : symbol->second);
    }

    // Whether a lock needs a destructor depends on the standard library.
    std::vector<std::string> expected = {"gMapDecodedStrings", "gMapLocalizedStrings"};
    if (!std::is_trivially_destructible_v<std::recursive_mutex>) {
        expected.emplace_back("gDecodeMutex");
    }
    if (!std::is_trivially_destructible_v<std::mutex>) {
        expected.emplace_back("gCryptMutex");
    }
    EXPECT_EQ(names, expected);
}

}  // namespace

// Replaces and calls the system's: compilers call it to register the destructor of a static object.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the system's own name
extern "C" int __cxa_atexit(void (*destroy)(void*), void* object, void* library) {
    if (gRegistered != nullptr) {
        gRegistered->push_back(object);
    }
    using Register = int(void (*)(void*), void*, void*);
    static auto* const systems = reinterpret_cast<Register*>(dlsym(RTLD_NEXT, "__cxa_atexit"));
    return systems(destroy, object, library);
}
