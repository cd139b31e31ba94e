#include <locale>

#include <OrvaLanguage/KorString.h>

#include "platform/ResourcePath.h"
#include "strings/Line.h"
#include "strings/LocalizedStrings.h"

namespace {

// A stream that reads bytes unconverted: a new stream takes the host's global locale, which may
// convert them.
std::ifstream OpenBytes(const char* path) {
    std::ifstream stream;
    stream.imbue(std::locale::classic());
    stream.open(path);
    return stream;
}

bool IsSectionHeader(std::string_view line, const char* name) {
    return IsHeader(line, KorString::LANG_STATEMENT, name);
}

// Reads up to the header of the section with this name ("": any section) and leaves it in line.
bool FindSection(std::ifstream& stream, std::string& line, const char* name) {
    while (KorString::GetLine(stream, line)) {
        if (IsSectionHeader(line, name)) {
            return true;
        }
    }
    return false;
}

// Adds a line that is an entry to the table; skips any other. Uses buffer for the value's escapes.
void InsertEntry(std::string_view line, std::string& buffer) {
    if (const std::optional<LineEntry> entry = SplitEntry(line)) {
        gMapLocalizedStrings.Insert(
            entry->key, entry->isQuoted ? Unescape(entry->value, buffer) : entry->value);
    }
}

}  // namespace

int KorLoadStrings(const char* language, const char* fileName, __CFBundle* bundle) {
    if (language == nullptr || fileName == nullptr) {
        return 0;
    }
    char path[kResourcePathCapacity] = {};
    GetResourcePath(bundle, fileName, path);
    if (path[0] == '\0') {
        return 0;
    }
    // language may be a text of the very table that is cleared below (that of "QVLANG", to load
    // another file in the same language). Copy it before opening the file, so that a failed copy
    // leaves the table alone.
    const std::string section = language;
    std::ifstream stream = OpenBytes(path);
    if (!stream) {
        return 0;
    }

    // Not earlier: until the file is open, the host keeps the texts it has.
    gMapLocalizedStrings.Clear();

    std::string line;
    if (!FindSection(stream, line, section.c_str())) {
        // Again from the start, for the first section of any name. If the file can no longer be
        // opened, no line is found and the table stays empty. Use a fresh stream: after close() on
        // a pipe, libc++'s stream crashes on its next read.
        stream.close();
        stream = OpenBytes(path);
        if (!FindSection(stream, line, "")) {
            return 0;
        }
    }
    std::string buffer;
    // The header is an entry too: it says which section is loaded.
    InsertEntry(line, buffer);
    while (KorString::GetLine(stream, line) && !IsSectionHeader(line, "")) {
        InsertEntry(line, buffer);
    }
    return static_cast<int>(gMapLocalizedStrings.Size());
}
