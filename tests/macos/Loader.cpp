// Runs a program for macOS on x86-64 in a Linux process: maps it and the libraries beside it, binds
// them to Linux's libraries, and calls their initialisers and main. What Linux's libraries lack or do
// differently is in Shims.cpp and StandIns.cpp.
//
// Usage: macos-loader PROGRAM ARGUMENT…
#include "tests/macos/Loader.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <sys/mman.h>
#include <unistd.h>

// macOS's own description of the format. Three of its types come from headers that contradict
// Linux's; these names keep those headers out.
#define _MACH_MACHINE_H_
#define _MACH_VM_PROT_H_
#define _MACH_MACHINE_THREAD_STATUS_H_
#define _ARCHITECTURE_BYTE_ORDER_H_
using cpu_type_t = int;
using cpu_subtype_t = int;
using vm_prot_t = int;
#include <mach-o/loader.h>

namespace fs = std::filesystem;

const char* gProgramPath = nullptr;
int gArgumentCount = 0;
char** gArguments = nullptr;

namespace {

// Not freed at the end, when operator delete may be the program's.
auto& gImages = *new std::vector<Image*>;  // the program first
auto& gUnresolved = *new std::set<std::string>;

// Calls a function with each load command of one kind.
template <typename Command, typename Function>
void ForEach(std::uint32_t kind, const Image& image, Function function) {
    const auto* const header = reinterpret_cast<const mach_header_64*>(image.file.data());
    const auto* bytes = reinterpret_cast<const char*>(header + 1);
    for (std::uint32_t i = 0; i < header->ncmds; ++i) {
        const auto* const command = reinterpret_cast<const load_command*>(bytes);
        if (command->cmd == kind) {
            function(*reinterpret_cast<const Command*>(command));
        }
        bytes += command->cmdsize;
    }
}

template <typename Function>
void ForEachSegment(const Image& image, Function function) {
    ForEach<segment_command_64>(LC_SEGMENT_64, image, [&](const segment_command_64& segment) {
        if (segment.initprot != 0) {  // not the pages that null pointers lead to
            function(segment);
        }
    });
}

std::vector<std::string> Describe(const std::string& path) {
    const std::string command =
        "llvm-objdump-19 --macho --exports-trie --rebase --bind --lazy-bind --weak-bind"
        " --unwind-info '" +
        path + "'";
    FILE* const output = popen(command.c_str(), "r");
    std::vector<std::string> lines;
    char* line = nullptr;
    std::size_t size = 0;
    while (getline(&line, &size, output) >= 0) {
        lines.emplace_back(line);
    }
    std::free(line);
    if (pclose(output) != 0) {
        Fail("failed: " + command);
    }
    return lines;
}

std::vector<std::string> Words(const std::string& line) {
    std::istringstream stream(line);
    return {std::istream_iterator<std::string>(stream), {}};
}

char* AddressIn(const Image& image, const std::string& number) {
    return image.slide + std::stoull(number, nullptr, 16);
}

// Copies the segments to memory, as far apart as the file says.
void MapSegments(Image& image) {
    std::uint64_t begin = UINT64_MAX;
    std::uint64_t end = 0;
    ForEachSegment(image, [&](const segment_command_64& segment) {
        begin = std::min(begin, segment.vmaddr);
        end = std::max(end, segment.vmaddr + segment.vmsize);
    });
    void* const memory = mmap(nullptr, end - begin, PROT_READ | PROT_WRITE | PROT_EXEC,
                              MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) {
        Fail(image.path + ": no memory");
    }
    image.begin = static_cast<char*>(memory);
    image.slide = image.begin - begin;
    ForEachSegment(image, [&](const segment_command_64& segment) {
        std::memcpy(image.slide + segment.vmaddr, image.file.data() + segment.fileoff,
                    segment.filesize);
    });
}

// Loads an image, and those of its libraries that lie beside the program.
void Load(const fs::path& path) {
    auto* const image = new Image;
    gImages.push_back(image);
    image->path = path;
    image->description = Describe(path);
    std::ifstream file(path, std::ios::binary);
    image->file.assign(std::istreambuf_iterator<char>(file), {});
    MapSegments(*image);
    for (const std::string& line : image->description) {
        const std::vector<std::string> words = Words(line);  // address, symbol
        if (words.size() >= 2 && words[0].rfind("0x", 0) == 0) {
            image->exports[words[1]] = AddressIn(*image, words[0]);
        }
    }
    ForEach<dylib_command>(LC_LOAD_DYLIB, *image, [](const dylib_command& command) {
        const std::string name =
            reinterpret_cast<const char*>(&command) + command.dylib.name.offset;
        const std::string beside = "@executable_path/";
        if (name.compare(0, beside.size(), beside) == 0) {
            Load(fs::path(gProgramPath).parent_path() / name.substr(beside.size()));
        }
    });
}

char* FindIn(const Image& image, const std::string& symbol) {
    const auto found = image.exports.find(symbol);
    return found != image.exports.end() ? found->second : nullptr;
}

// Finds a symbol of macOS's libraries among Linux's, whose names have neither the underscore before
// them nor a variant after them, such as "$INODE64".
char* FindInProcess(const std::string& symbol) {
    const std::string name = symbol.substr(symbol[0] == '_' ? 1 : 0, symbol.find('$') - 1);
    void* const shim = dlsym(RTLD_DEFAULT, ("macos_" + name).c_str());
    return static_cast<char*>(shim != nullptr ? shim : dlsym(RTLD_DEFAULT, name.c_str()));
}

// Finds a symbol in a library, which is named without folder and ending.
char* Find(const std::string& library, const std::string& symbol) {
    const auto image = std::find_if(gImages.begin(), gImages.end(), [&](const Image* any) {
        return fs::path(any->path).stem() == library;
    });
    char* const found = image != gImages.end() ? FindIn(**image, symbol) : FindInProcess(symbol);
    if (found == nullptr) {
        gUnresolved.insert(symbol + " of " + library);
    }
    return found;
}

// Sets the pointers of an image to what they point to.
void Bind(const Image& image) {
    for (const std::string& line : image.description) {
        const std::vector<std::string> words = Words(line);
        if (words.size() < 4 || words[2].rfind("0x", 0) != 0) {
            continue;
        }
        char*& pointer = *reinterpret_cast<char**>(AddressIn(image, words[2]));
        const std::string& symbol = words.back();
        switch (words.size()) {
            case 4:  // segment, section, address, type: a place in the image itself
                pointer = image.slide + reinterpret_cast<std::uintptr_t>(pointer);
                break;
            case 5:  // segment, section, address, library, symbol
                pointer = Find(words[3], symbol);
                break;
            case 7:  // segment, section, address, type, addend, library, symbol
                pointer = Find(words[5], symbol) + std::stoll(words[4]);
                break;
            default:  // segment, section, address, type, addend, symbol: the first image's, if any
                for (auto any = gImages.rbegin(); any != gImages.rend(); ++any) {
                    char* const found = FindIn(**any, symbol);
                    pointer = found != nullptr ? found + std::stoll(words[4]) : pointer;
                }
        }
    }
}

using Main = int(int count, char** arguments, char** environment, char** system);

int Call(Main* function) {
    return function(gArgumentCount, gArguments, environ, nullptr);
}

void Initialise(const Image& image) {
    ForEachSegment(image, [&](const segment_command_64& segment) {
        const auto* section = reinterpret_cast<const section_64*>(&segment + 1);
        for (const auto* const end = section + segment.nsects; section != end; ++section) {
            if ((section->flags & SECTION_TYPE) == S_THREAD_LOCAL_REGULAR) {
                Fail(image.path + ": thread-local variables with initial values");
            }
            if ((section->flags & SECTION_TYPE) == S_MOD_INIT_FUNC_POINTERS) {
                auto* const functions = reinterpret_cast<Main**>(image.slide + section->addr);
                std::for_each(functions, functions + section->size / sizeof(Main*), Call);
            }
        }
    });
}

}  // namespace

void Fail(const std::string& what) {
    std::fprintf(stderr, "macos-loader: %s\n", what.c_str());
    std::exit(EXIT_FAILURE);
}

int main(int count, char** arguments) {
    gArgumentCount = count - 1;
    gArguments = arguments + 1;
    gProgramPath = (new std::string(fs::absolute(*gArguments)))->c_str();
    Load(gProgramPath);
    for (const Image* image : gImages) {
        Bind(*image);
        RegisterUnwindTables(*image);
    }
    if (!gUnresolved.empty()) {
        std::string list = gProgramPath;
        for (const std::string& symbol : gUnresolved) {
            list += "\nunresolved: " + symbol;
        }
        Fail(list);
    }
    const Image& program = *gImages.front();
    UseOperators(FindIn(program, "__Znwm"), FindIn(program, "__ZdlPv"));
    for (auto image = gImages.rbegin(); image != gImages.rend(); ++image) {
        Initialise(**image);
    }
    Main* entry = nullptr;
    ForEach<entry_point_command>(LC_MAIN, program, [&](const entry_point_command& command) {
        entry = reinterpret_cast<Main*>(program.begin + command.entryoff);
    });
    return Call(entry);
}
