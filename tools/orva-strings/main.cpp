#include <iostream>

#include "tools/orva-strings/Files.h"
#include "tools/orva-strings/Tool.h"

int main(int argc, char** argv) {
    return RunTool({argv + 1, argv + argc}, ReadStandardInput, std::cout, std::cerr);
}
