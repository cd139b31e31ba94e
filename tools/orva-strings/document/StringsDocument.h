#ifndef ORVALANGUAGE_TOOLS_DOCUMENT_STRINGSDOCUMENT_H
#define ORVALANGUAGE_TOOLS_DOCUMENT_STRINGSDOCUMENT_H

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <vector>

// A text as it stands between quotes in a strings file: each line feed as a backslash and an n.
std::string Escaped(const std::string& text);

// A strings file to be changed entry by entry: every byte that is not changed stays as it is. What
// a line means is asked of the library's own line functions.
class StringsDocument {
public:
    struct Entry {
        std::size_t line;  // its place, from 0
        std::string key;
        std::string value;        // as the library reads it
        std::string beforeQuote;  // between the = and the value's first quote; no part of the value
        std::string afterQuote;  // after the line's last quote, if it has two; no part of it either
    };

    // Why the library does not read a line as it was meant.
    enum class Obstacle { kNoSectionYet, kByteOrderMark, kCarriageReturn };

    struct Misplaced {
        std::size_t line;  // from 0
        std::string key;
        Obstacle obstacle;
    };

    struct Section {
        std::size_t line;  // of its header, from 0
        std::string name;
        std::vector<Entry> entries;  // of all its lines, those of a repeated key too; no header

        // The keys that a load makes entries of: each once, and the header's.
        std::set<std::string> Keys() const;
    };

    explicit StringsDocument(std::string_view bytes);

    // The whole file as it is now.
    std::string Bytes() const;

    // Every section of the file, in its order. What stands before the first one belongs to none.
    std::vector<Section> Sections() const;

    // The headers and protected entries that are not read: those after a byte-order mark or a carriage
    // return, which ends no line, and protected entries before the first section.
    std::vector<Misplaced> MisplacedLines() const;

    // Lines that were probably meant as protected entries but are none, Misplaced ones apart, with the
    // keys that were meant: from the first letter, digit or underscore on there is a key of one word
    // that begins with "IDE", or with "ide" in other case and no letter after it, and then =, or a colon
    // or blanks and a quote.
    std::vector<Entry> NearProtected() const;

    // Gives the entry of a line another value. Quotes, and what stands before the first and behind
    // the last, stay; a value without quotes gets them where it needs them.
    //
    // Returns false, and changes nothing, if the value can't be written so that it reads back the
    // same: there is no escape for a backslash in front of an n, for instance.
    bool SetValue(std::size_t line, const std::string& value);

private:
    struct Line {
        std::string text;    // as the library reads it
        std::string ending;  // what it drops: a carriage return, a line feed, both or none
    };

    // Calls visit with each line's place and text, and again with what follows each carriage return
    // within it, up to the next.
    template <typename Visit>
    void ForEachPiece(const Visit& visit) const;

    std::vector<Line> m_lines;
};

#endif
