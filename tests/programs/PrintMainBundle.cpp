// Prints the path of "x" in the main bundle.
#include <cstdio>

#include "platform/ResourcePath.h"

int main() {
    char path[kResourcePathCapacity] = {};
    GetResourcePath(nullptr, "x", path);
    std::fputs(path, stdout);
    return 0;
}
