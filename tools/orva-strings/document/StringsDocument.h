#ifndef ORVALANGUAGE_TOOLS_DOCUMENT_STRINGSDOCUMENT_H
#define ORVALANGUAGE_TOOLS_DOCUMENT_STRINGSDOCUMENT_H

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <vector>

// A text as written between quotes in a strings file: each line feed as a backslash and an n.
std::string Escaped(const std::string& text);

// A strings file whose entries can be changed one by one; all other bytes stay as they are. Lines
// are read with the library's own functions.
class StringsDocument {
public:
    struct Entry {
        std::size_t line;  // from 0
        std::string key;
        std::string value;        // as the library reads it
        std::string beforeQuote;  // between the = and the first quote; not part of the value
        std::string afterQuote;   // after the last quote, if there are two; not part of it either
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
        std::vector<Entry> entries;  // all below the header, repeated keys included

        // The keys of the entries that a load makes: each once, including the header's.
        std::set<std::string> Keys() const;
    };

    explicit StringsDocument(std::string_view bytes);

    // The whole file as it is now.
    std::string Bytes() const;

    // All sections, in file order. Lines before the first header belong to none.
    std::vector<Section> Sections() const;

    // Headers and protected entries that the library does not read: those right after a byte-order
    // mark or a carriage return, which ends no line, and protected entries before the first
    // section.
    std::vector<Misplaced> MisplacedLines() const;

    // Lines other than Misplaced ones that were probably meant as protected entries but are not,
    // with the keys that were meant. From its first letter, digit or underscore on, such a line has
    // a one-word key that begins with "IDE", or with "ide" in any case and no letter after it. Then
    // comes =, or a colon or blanks and a quote.
    std::vector<Entry> NearProtected() const;

    // Changes the value of the entry on a line. Its quotes stay, and so does the text before the
    // first and after the last. Missing quotes are added if the value needs them.
    //
    // Returns false, and changes nothing, if the value can't be written so that it reads back the
    // same. For instance, a backslash before an n has no escape.
    bool SetValue(std::size_t line, const std::string& value);

private:
    struct Line {
        std::string text;    // as the library reads it
        std::string ending;  // what it drops: a carriage return, a line feed, both or neither
    };

    // Calls visit(line, text, isWholeLine) for each line, and again for the text after each
    // carriage return within it, up to the next.
    template <typename Visit>
    void ForEachPiece(const Visit& visit) const;

    std::vector<Line> m_lines;
};

#endif
