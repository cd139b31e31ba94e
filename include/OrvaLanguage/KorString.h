// The layer beneath OrvaLanguage.h, for hosts in C++17: the loader, the plain lookup, the table
// itself and the functions that read a strings file line by line.
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

// Does what ZuLoadStrings does, with the same arguments, result and thread rules, but does not change
// the remembered result of the last ZuLoadStrings, which decides whether ZuGetLocalizedString answers.
//
// Throws std::bad_alloc if memory runs out: the table is then the earlier one, if the file was not
// open yet, or holds the entries read so far. The file is closed.
ORVA_EXPORT int KorLoadStrings(const char* language, const char* fileName, __CFBundle* bundle);

// Looks a key up in the table as it is, whatever the last load returned.
//
// Returns the stored text, owned by the table and valid until a load opens its file, or null if key
// is null or not there. Keys match whole and by case. Texts are given as the file has them:
// protected ones undecoded.
//
// Throws nothing. Must not run at the same time as a load.
ORVA_EXPORT const char* KorGetLocalizedString(const char* key);

// The strings file, line by line. There are no instances. The functions keep no state, so they may
// run on any thread, each caller with a stream and strings of its own; only changing a keyword
// while another thread reads it is not safe. ConvertNewLine and GetLocalizedElement throw
// std::bad_alloc if memory runs out, and so does the copying of a line argument.
class KorString {
public:
    KorString() = delete;

    // The keywords that open a language line and a region line: "QVLANG=" and "QVREGION=". They are
    // read anew at every call. Must not be null. On ELF systems several copies of the library in one
    // process may share one copy's keywords; don't change them there.
    ORVA_EXPORT static const char* LANG_STATEMENT;
    ORVA_EXPORT static const char* REGION_STATEMENT;

    // The table of the loaded section, which loads change and a host reads.
    ORVA_EXPORT static const KorStringMap& gMapLocalizedStrings;

    // Reads the next line, without its line feed and without a carriage return at its very end.
    // Returns false if no line is left, or reading failed, or memory ran out (the stream is then bad);
    // line then holds nothing of use. A last line without a line feed is a line. Throws only what
    // the caller has asked the stream for, with exceptions().
    ORVA_EXPORT static bool GetLine(std::ifstream& stream, std::string& line);

    // Whether line opens the section of this name: the keyword's exact bytes at the very start, then
    // the name, compared whole and without regard to the case of ASCII letters. The name "" matches
    // every section. False for a null name and for an empty line.
    ORVA_EXPORT static bool SearchLanguageKey(std::string line, const char* language);

    // The same for REGION_STATEMENT. The loader has no use for it: a region line is an entry.
    ORVA_EXPORT static bool SearchRegionKey(std::string line, const char* region);

    // Returns a copy of the text, which must not be null, with each "\n" escape (a backslash and a
    // lower-case n) replaced by one line feed.
    ORVA_EXPORT static std::string ConvertNewLine(const std::string* text);

    // Splits a line at its first "=", which must have four bytes or more before it. If the rest has
    // double quotes, the value is what is between the first and the last, with "\n" expanded; if
    // there is only one double quote, it is everything after it. Without any, the rest is kept as it
    // is. Returns false if the line is no such line; key and value, which must not be null, are then
    // untouched.
    ORVA_EXPORT static bool GetLocalizedElement(std::string line, std::string* key,
                                                std::string* value);
};

#endif
#endif
