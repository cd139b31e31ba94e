// The tables for unwinding the stack. Those of macOS have a compact form, which Linux's unwinder does
// not know, so they are written anew as DWARF.
#include <cstdint>
#include <cstdio>

#include "tests/macos/Loader.h"

// Of LLVM's unwinder, which libc++ uses.
extern "C" void __unw_add_dynamic_eh_frame_section(const void* section);

namespace {

struct Function {
    const char* begin;  // it ends where the next one begins
    unsigned encoding;
};

// What an encoding consists of.
constexpr unsigned kMode = 0x0f000000;
constexpr unsigned kHasFramePointer = 0x01000000;
constexpr unsigned kPersonality = 28;  // two bits: 0 for none
constexpr unsigned kWords = 16;  // eight bits: from the frame pointer down to the saved registers
constexpr unsigned kSaved = 0x7fff;  // three bits for each word, from the lowest up: its register

struct Table {
    std::vector<Function> functions;  // the last one is empty
    std::vector<const char*> personalities = {nullptr};
    std::map<const char*, const char*> handlers;  // of those functions that have some
};

Table Read(const Image& image) {
    Table table;
    Function last = {};
    for (const std::string& line : image.description) {
        unsigned offset = 0;
        unsigned value = 0;
        const auto has = [&](const char* format, int count) {
            return std::sscanf(line.c_str(), format, &offset, &value) == count;
        };
        if (has(" personality[%*u]: %x", 1)) {
            table.personalities.push_back(*reinterpret_cast<char**>(image.begin + offset));
        } else if (has(" [%*u]: function offset=%x, LSDA offset=%x", 2)) {
            table.handlers[image.begin + offset] = image.begin + value;
        } else if (has(" [%*u]: function offset=%x, encoding[%*u]=%x", 2)) {
            table.functions.push_back({image.begin + offset, value});
        } else if (has(" [%*u]: function offset=%x, 2nd level", 1)) {
            last.begin = image.begin + offset;
        }
    }
    table.functions.push_back(last);
    return table;
}

template <typename T>
void Append(std::string& bytes, T value) {
    bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
}

void AppendEntry(std::string& dwarf, const std::string& entry) {
    Append(dwarf, static_cast<std::uint32_t>(entry.size()));
    dwarf += entry;
}

// DWARF's numbers of registers, and the two of its instructions that are needed. Distances from the
// caller's frame are in words, downwards.
constexpr char kFramePointer = 6;
constexpr char kReturnAddress = 16;
constexpr char kRegisters[] = {0, 3, 12, 13, 14, 15};  // compact 1 to 5: rbx, r12 to r15
constexpr char kFrame = 0x0c;                          // a register, how many bytes above it
constexpr char kSavedAt = -0x80;                       // with the register's number added: how far

// What the functions of one personality share: the caller's frame begins above the return address
// and the caller's frame pointer, to which the frame pointer points.
void AppendCommon(std::string& dwarf, const char* personality) {
    std::string entry("\0\0\0\0\1zPL\0\1\x78", 11);
    entry += {kReturnAddress, 1 + sizeof personality + 1, 0};
    Append(entry, personality);
    entry += {0, kFrame, kFramePointer, 2 * 8};
    entry += {kSavedAt + kReturnAddress, 1, kSavedAt + kFramePointer, 2};
    AppendEntry(dwarf, entry);
}

void AppendFunction(std::string& dwarf, std::size_t common, const Function& function,
                    const char* handlers) {
    std::string entry;
    Append(entry, static_cast<std::uint32_t>(dwarf.size() + sizeof(std::uint32_t) - common));
    Append(entry, function.begin);
    Append(entry, (&function)[1].begin - function.begin);
    entry.push_back(sizeof handlers);
    Append(entry, handlers);
    auto words = static_cast<char>(2 + (function.encoding >> kWords & 0xffU));
    for (unsigned saved = function.encoding & kSaved; saved != 0; saved >>= 3U, --words) {
        if (const unsigned number = saved & 7U; number != 0) {
            entry += {static_cast<char>(kSavedAt + kRegisters[number]), words};
        }
    }
    AppendEntry(dwarf, entry);
}

}  // namespace

void RegisterUnwindTables(const Image& image) {
    Table table = Read(image);
    auto& dwarf = *new std::string;
    for (unsigned i = 0; i < table.personalities.size(); ++i) {
        const std::size_t common = dwarf.size();
        AppendCommon(dwarf, table.personalities[i]);
        for (const Function& function : table.functions) {
            if ((function.encoding & kMode) == kHasFramePointer &&
                (function.encoding >> kPersonality & 3U) == i) {
                AppendFunction(dwarf, common, function, table.handlers[function.begin]);
            }
        }
    }
    Append(dwarf, std::uint32_t{0});
    __unw_add_dynamic_eh_frame_section(dwarf.data());
}
