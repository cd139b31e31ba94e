// Does nothing, but needs the C++ library, and this library if linked with it. With an argument,
// prints the peak resident memory in bytes.
#include <cstdio>
#include <cstring>
#include <string>

#ifdef WITH_ORVALANGUAGE
#include <OrvaLanguage/OrvaLanguage.h>
#endif

int main(int argc, char** argv) {
#ifdef WITH_ORVALANGUAGE
    // Used, so that the linker keeps the library.
    if (ZuGetLocalizedString("KEY") != nullptr) {
        return 1;
    }
#endif
    const std::string needed = argv[0];
    if (argc > 1) {
        std::FILE* const status = std::fopen("/proc/self/status", "r");
        char line[256];
        while (status != nullptr && std::fgets(line, sizeof line, status) != nullptr) {
            long kibibytes = 0;
            if (std::sscanf(line, "VmHWM: %ld", &kibibytes) == 1) {
                std::printf("%ld\n", 1024 * kibibytes);
            }
        }
    }
    return needed.empty() ? 1 : 0;
}
