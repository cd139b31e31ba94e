// The layer below OrvaLanguage.h, for C++17 hosts: the loader, the lookup without decoding, the
// table itself and the functions that read a strings file line by line.
#ifndef ORVALANGUAGE_KORSTRING_H
#define ORVALANGUAGE_KORSTRING_H

#if __cplusplus < 201703L
#error \
    "<OrvaLanguage/KorString.h> needs C++17 (-std=c++17); <OrvaLanguage/OrvaLanguage.h> does not."
#else

#include <fstream>
#include <string>

#include <OrvaLanguage/Export.h>
#include <OrvaLanguage/KorStringMap.h>

struct __CFBundle;  // NOLINT(bugprone-reserved-identifier): the platform's own name

// Like ZuLoadStrings, with the same arguments, result and thread rules, but does not affect whether
// ZuGetLocalizedString answers: that depends on the last ZuLoadStrings alone.
//
// Throws std::bad_alloc if memory runs out, except for a line too long for memory, which ends the
// file as in ZuLoadStrings. After a throw, the table is the earlier one if the file was not open yet;
// otherwise it holds the entries read so far. The file is closed.
ORVA_EXPORT int KorLoadStrings(const char* language, const char* fileName, __CFBundle* bundle);

// Looks up a key in the table as it is, whatever the last load returned.
//
// Returns the stored text, owned by the table and valid until a load opens its file, or null if key
// is null or missing. The match is exact and case-sensitive. Protected texts are returned as the
// file has them, undecoded.
//
// Throws nothing. Must not run at the same time as a load.
ORVA_EXPORT const char* KorGetLocalizedString(const char* key);

// Reads a strings file line by line. There are no instances. The functions keep no state: any
// thread may call them with its own stream and strings, but must not change a keyword
// (LANG_STATEMENT, REGION_STATEMENT) while another thread reads it. ConvertNewLine and
// GetLocalizedElement throw std::bad_alloc if memory runs out, as does copying a line argument.
class KorString {
public:
    KorString() = delete;

    // The keywords that begin a section's header and a region line: "QVLANG=" and "QVREGION=". They
    // are read at every call and must not be null. On ELF systems, several copies of the library in
    // one process may share their keywords; don't change them in such a process.
    ORVA_EXPORT static const char* LANG_STATEMENT;
    ORVA_EXPORT static const char* REGION_STATEMENT;

    // The table of the loaded section. Loads change it; a host only reads it.
    ORVA_EXPORT static const KorStringMap& gMapLocalizedStrings;

    // Reads the next line, without its line feed and without a carriage return at its very end. A
    // last line without a line feed counts. Returns false if no line is left, reading failed, or
    // memory ran out (the stream is then bad); the content of line is then unspecified. Throws only
    // what the caller has requested from the stream with exceptions().
    ORVA_EXPORT static bool GetLine(std::ifstream& stream, std::string& line);

    // Whether line is the header of the section with this name: it begins with the exact keyword,
    // and the rest equals the name, ignoring the case of ASCII letters. The name "" matches every
    // section. False for a null name or an empty line.
    ORVA_EXPORT static bool SearchLanguageKey(std::string line, const char* language);

    // The same for REGION_STATEMENT. The loader does not use it, but treats a region line as an
    // entry.
    ORVA_EXPORT static bool SearchRegionKey(std::string line, const char* region);

    // Returns a copy of text, which must not be null, with each "\n" escape (a backslash and a
    // lower-case n) replaced by a line feed.
    ORVA_EXPORT static std::string ConvertNewLine(const std::string* text);

    // Splits a line at its first "=", which must have at least four bytes before it. The value is
    // what is between the first and the last double quote of the rest, with "\n" expanded. If there
    // is only one double quote, the value is everything after it, also expanded; without any, it is
    // the rest as it is. Returns false for any other line; key and value, which must not be null,
    // are then unchanged.
    ORVA_EXPORT static bool GetLocalizedElement(std::string line, std::string* key,
                                                std::string* value);
};

#endif
#endif
