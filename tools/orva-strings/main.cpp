#include <iostream>

#include "tools/orva-strings/Tool.h"

int main(int argc, char** argv) {
    std::ios::sync_with_stdio(false);
    return RunTool({argv + 1, argv + argc}, std::cin, std::cout, std::cerr);
}
