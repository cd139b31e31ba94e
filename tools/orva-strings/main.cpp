#include <csignal>
#include <iostream>
#include <new>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

#include "tools/orva-strings/Tool.h"
#include "tools/orva-strings/system/Files.h"

int main(int argc, char** argv) {
    // A write beyond the file size limit then fails, like one to a full disk.
    std::signal(SIGXFSZ, SIG_IGN);
    std::vector<std::string> arguments;
    try {
        arguments.assign(argv + 1, argv + argc);
    } catch (const std::bad_alloc&) {
        std::cerr << "orva-strings: error: out of memory\n";
        return 2;
    }
    const Terminals terminals = {isatty(STDOUT_FILENO) != 0, isatty(STDERR_FILENO) != 0};
    return RunTool(std::move(arguments), ReadStandardInput, std::cout, std::cerr, terminals);
}
