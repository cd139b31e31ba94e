#ifndef ORVALANGUAGE_TOOLS_HOSTS_SOURCEREADER_H
#define ORVALANGUAGE_TOOLS_HOSTS_SOURCEREADER_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tools/orva-strings/checks/RuleFinding.h"

enum class SourceLanguage { kC, kSwift };  // kC is also C++ and Objective-C

struct SourceToken {
    enum class Kind { kEnd, kWord, kLiteral, kSign };
    Kind kind = Kind::kEnd;
    std::string text;       // a word; what a literal stands for; a sign, which is one character
    bool isOpen = false;    // a literal that goes on with what an expression gives
    std::size_t begin = 0;  // in the source
};

// Reads the words, string literals and signs of a source, without comments, character literals,
// numbers, and the names of included files. Reads bytes of any kind: what is not right ends somewhere.
// Takes time in proportion to the source.
class SourceReader {
public:
    // The bytes must outlive the object.
    SourceReader(std::string_view bytes, SourceLanguage language)
        : m_bytes(bytes), m_isSwift(language == SourceLanguage::kSwift) {}

    // Reads the next token. Adjacent literals of C are one. Its kind is kEnd at the end.
    SourceToken Next();

private:
    struct SwiftText {
        std::size_t hashes;  // in front of its quotes
        bool hasManyLines;   // its quotes are three
        std::size_t depth;   // of parentheses in the expression inside it
    };

    char At(std::size_t i) const { return i < m_bytes.size() ? m_bytes[i] : '\0'; }
    bool HasAt(std::size_t i, std::string_view text) const {
        return m_bytes.substr(i < m_bytes.size() ? i : m_bytes.size(), text.size()) == text;
    }

    // Passes over backslashes at the end of lines, which join them in C.
    void SkipSplices();
    // The current character; 0 at the end.
    char Peek();
    char Get();

    SourceToken ReadToken();
    bool SkipBlanks();
    bool SkipComment();
    void SkipLine();
    void SkipBlockComment();
    void SkipDirective();
    void SkipNumber();
    void SkipCharacter();
    void ReadWord(SourceToken& token);
    bool ReadPrefixed(SourceToken& token);
    void ReadLiteral(SourceToken& token);
    void ReadRawLiteral(SourceToken& token);
    void ReadEscape(std::string& text);
    bool BeginSwiftText(SourceToken& token);
    void ReadSwiftText(SourceToken& token);
    void ReadSwiftEscape(std::string& text);
    void SkipSuffix();

    std::string_view m_bytes;
    bool m_isSwift;
    std::size_t m_at = 0;
    bool m_isLineStart = true;
    SourceToken m_next;  // read ahead
    bool m_hasNext = false;
    std::vector<SwiftText> m_texts;  // whose expressions are being read
};

// Finds the place of offsets in a source, which must not go back.
class SourcePlaces {
public:
    explicit SourcePlaces(std::string_view bytes) : m_bytes(bytes) {}

    Place PlaceOf(std::size_t offset);

private:
    std::string_view m_bytes;
    std::size_t m_offset = 0;
    Place m_place = {0, 0};
};

#endif
