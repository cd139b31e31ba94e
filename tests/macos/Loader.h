// A program for macOS on x86-64 and its libraries, in a Linux process.
#ifndef ORVALANGUAGE_TESTS_MACOS_LOADER_H
#define ORVALANGUAGE_TESTS_MACOS_LOADER_H

#include <map>
#include <string>
#include <vector>

// The program's path, absolute, and its arguments.
extern const char* gProgramPath;
extern int gArgumentCount;
extern char** gArguments;

// A Mach-O file in memory. It stays there until the process ends.
struct Image {
    std::string path;
    std::string file;                      // its bytes
    std::vector<std::string> description;  // what llvm-objdump prints of it
    char* slide = nullptr;                 // where address 0 of the file is mapped
    char* begin = nullptr;                 // where the file's beginning is mapped
    std::map<std::string, char*> exports;
};

// Ends the process with a message.
[[noreturn]] void Fail(const std::string& what);

// Lets exceptions pass through an image's functions.
void RegisterUnwindTables(const Image& image);

// Makes every library take memory from the program's own operators, as on macOS.
void UseOperators(char* operatorNew, char* operatorDelete);

#endif
