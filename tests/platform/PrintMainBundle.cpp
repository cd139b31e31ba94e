// Prints the path of "x" in the main bundle. With an argument, removes its own file first.
#include <cstdio>

#include "platform/ResourcePath.h"

int main(int argc, char** argv) {
    if (argc > 1 && std::remove(argv[0]) != 0) {
        return 1;
    }
    char path[kResourcePathCapacity] = {};
    GetResourcePath(nullptr, "x", path);
    std::fputs(path, stdout);
    return 0;
}
