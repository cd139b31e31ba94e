#include <locale>

#include <OrvaLanguage/KorString.h>

#include "platform/ResourcePath.h"
#include "strings/LocalizedStrings.h"

namespace {

// A stream that gives the file's bytes as they are: the host's global locale, which a new stream
// takes over, may convert them.
std::ifstream OpenBytes(const char* path) {
    std::ifstream stream;
    stream.imbue(std::locale::classic());
    stream.open(path);
    return stream;
}

// Reads on to the header line of the section of this name ("": of any) and leaves it in line.
bool FindSection(std::ifstream& stream, std::string& line, const char* name) {
    while (KorString::GetLine(stream, line)) {
        if (KorString::SearchLanguageKey(line, name)) {
            return true;
        }
    }
    return false;
}

// Puts a line that is an element into the table; any other is passed over.
void InsertElement(const std::string& line) {
    std::string key;
    std::string value;
    if (KorString::GetLocalizedElement(line, &key, &value)) {
        gMapLocalizedStrings.Insert(key, value);
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
    // A host may name the section by a text of the very table that goes now ("QVLANG", to load
    // another file in the same language). Copied before the file is open, so that a copy that fails
    // leaves the table alone.
    const std::string section = language;
    std::ifstream stream = OpenBytes(path);
    if (!stream) {
        return 0;
    }

    // Not earlier: as long as the file is not open, the host keeps the texts it has.
    gMapLocalizedStrings.Clear();

    std::string line;
    if (!FindSection(stream, line, section.c_str())) {
        // From the start again, for the first section of any name. If the file can't be opened any
        // more, no line is found and the table stays empty. The stream is made anew: one of libc++
        // that read a pipe, which can't seek back as its close would, crashes when it reads again.
        stream.close();
        stream = OpenBytes(path);
        if (!FindSection(stream, line, "")) {
            return 0;
        }
    }
    // The header line too: it becomes the entry that tells which section is loaded.
    InsertElement(line);
    while (KorString::GetLine(stream, line) && !KorString::SearchLanguageKey(line, "")) {
        InsertElement(line);
    }
    return static_cast<int>(gMapLocalizedStrings.Size());
}
