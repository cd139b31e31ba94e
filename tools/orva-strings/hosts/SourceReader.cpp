#include "tools/orva-strings/hosts/SourceReader.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utf8cpp/utf8.h>
#include <utility>

#include "tools/orva-strings/Ascii.h"
#include "tools/orva-strings/checks/FindingCollector.h"

namespace {

bool IsWordStart(char c) {
    return IsLetter(c) || c == '_' || (c & '\x80') != 0;
}

bool IsInWord(char c) {
    return IsWordStart(c) || IsDigit(c);
}

// The value of a hexadecimal digit, or 16.
unsigned DigitOf(char c) {
    if (IsDigit(c)) {
        return static_cast<unsigned>(c - '0');
    }
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? static_cast<unsigned>(lower - 'a') + 10U : 16U;
}

void AppendCharacter(std::uint32_t character, std::string& text) {
    const bool isValid = character <= 0x10FFFF && (character < 0xD800 || character > 0xDFFF);
    utf8::unchecked::append(isValid ? character : 0xFFFD, std::back_inserter(text));
}

// Removes what only lays out a literal of several lines: the first line end, the last one, and at the
// beginning of each line the blanks that come before the closing quotes. Where an expression follows,
// they are not known, so that all blanks of the first line go.
void RemoveIndents(SourceToken& token) {
    constexpr char kBlanks[] = " \t";
    std::string& text = token.text;
    const std::size_t begin = text.find_first_not_of(kBlanks);
    if (begin == std::string::npos || text[begin] != '\n') {
        return;  // not a literal that Swift accepts
    }
    if (token.isOpen) {
        text.erase(0, std::min(text.find_first_not_of(kBlanks, begin + 1), text.size()));
        return;
    }
    const std::size_t end = text.rfind('\n');
    const std::string indent = text.substr(end);
    std::string joined;
    for (std::size_t at = begin; at < end;) {
        const std::size_t next = text.find('\n', at + 1);
        const std::size_t size = text.compare(at, indent.size(), indent) == 0 ? indent.size() : 1;
        joined += joined.empty() && at == begin ? "" : "\n";
        joined.append(text, at + size, next - std::min(next, at + size));
        at = next;
    }
    text = std::move(joined);
}

// What an escape of one letter stands for; any other letter stands for itself.
char EscapedLetter(char letter) {
    switch (letter) {
        case 'n':
            return '\n';
        case 't':
            return '\t';
        case 'r':
            return '\r';
        case 'a':
            return '\a';
        case 'b':
            return '\b';
        case 'f':
            return '\f';
        case 'v':
            return '\v';
        default:
            return letter;
    }
}

}  // namespace

void SourceReader::SkipSplices() {
    while (!m_isSwift && At(m_at) == '\\') {
        const std::size_t end = m_at + (At(m_at + 1) == '\r' ? 2 : 1);
        if (At(end) != '\n') {
            return;
        }
        m_at = end + 1;
    }
}

char SourceReader::Peek() {
    SkipSplices();
    return At(m_at);
}

char SourceReader::Get() {
    const char c = Peek();
    m_at += m_at < m_bytes.size() ? 1U : 0U;
    return c;
}

SourceToken SourceReader::Next() {
    SourceToken token = m_hasNext ? std::exchange(m_next, {}) : ReadToken();
    m_hasNext = false;
    while (!m_isSwift && token.kind == SourceToken::Kind::kLiteral) {
        m_next = ReadToken();
        m_hasNext = true;
        if (m_next.kind != SourceToken::Kind::kLiteral) {
            break;
        }
        token.text += m_next.text;
    }
    return token;
}

SourceToken SourceReader::ReadToken() {
    while (SkipBlanks()) {
    }
    SourceToken token;
    token.begin = m_at;
    const char c = Peek();
    if (m_at >= m_bytes.size()) {
        return token;
    }
    if (m_isSwift && BeginSwiftText(token)) {
        return token;
    }
    if (!m_isSwift && c == '"') {
        ReadLiteral(token);
        return token;
    }
    if (IsWordStart(c)) {
        ReadWord(token);
        return token;
    }
    token.kind = SourceToken::Kind::kSign;
    token.text = Get();
    if (!m_texts.empty()) {
        m_texts.back().depth += c == '(' ? 1U : 0U;
        if (c == ')' && --m_texts.back().depth == 0) {
            ReadSwiftText(token);  // the rest of the literal, which only ends a key
            token.text = ")";
        }
    }
    return token;
}

// Passes over one thing that is not a token. Returns whether there was one.
bool SourceReader::SkipBlanks() {
    const char c = Peek();
    if (m_at >= m_bytes.size()) {
        return false;
    }
    if (c == '\n') {
        m_isLineStart = true;
        ++m_at;
        return true;
    }
    if (c == ' ' || (c >= '\t' && c <= '\r') || c == '\0') {
        ++m_at;
        return true;
    }
    if (SkipComment()) {
        return true;
    }
    const bool isLineStart = std::exchange(m_isLineStart, false);
    if (!m_isSwift && isLineStart && c == '#') {
        SkipDirective();
        return true;
    }
    if (IsDigit(c)) {
        SkipNumber();
        return true;
    }
    if (!m_isSwift && c == '\'') {
        SkipCharacter();
        return true;
    }
    if (!m_isSwift && c == '@') {  // before a literal of Objective-C
        ++m_at;
        return true;
    }
    return false;
}

bool SourceReader::SkipComment() {
    const std::size_t begin = m_at;
    if (Get() == '/') {
        if (Peek() == '/') {
            SkipLine();
            return true;
        }
        if (Peek() == '*') {
            Get();
            SkipBlockComment();
            return true;
        }
    }
    m_at = begin;
    return false;
}

void SourceReader::SkipLine() {
    while (m_at < m_bytes.size() && Peek() != '\n') {
        Get();
    }
}

// Those of Swift may hold others.
void SourceReader::SkipBlockComment() {
    for (std::size_t depth = 1; depth > 0 && m_at < m_bytes.size();) {
        const char c = Get();
        if (c == '*' && Peek() == '/') {
            Get();
            --depth;
        } else if (m_isSwift && c == '/' && Peek() == '*') {
            Get();
            ++depth;
        }
    }
}

// Passes over the name of a directive, and over all of one that includes a file.
void SourceReader::SkipDirective() {
    Get();
    while (Peek() == ' ' || Peek() == '\t') {
        Get();
    }
    SourceToken name;
    ReadWord(name);
    if (name.text == "include" || name.text == "import" || name.text == "include_next") {
        SkipLine();
    }
}

void SourceReader::SkipNumber() {
    while (IsInWord(Peek()) || Peek() == '.' || (!m_isSwift && Peek() == '\'')) {
        const char c = Get();
        if (c == '.' && !IsDigit(Peek())) {  // a range of Swift, or a member
            return;
        }
    }
}

void SourceReader::SkipCharacter() {
    Get();
    while (m_at < m_bytes.size() && Peek() != '\n') {
        const char c = Get();
        if (c == '\'') {
            return;
        }
        if (c == '\\') {
            Get();
        }
    }
}

void SourceReader::ReadWord(SourceToken& token) {
    token.kind = SourceToken::Kind::kWord;
    while (IsInWord(Peek())) {
        token.text += Get();
    }
    if (!m_isSwift && Peek() == '"' && ReadPrefixed(token)) {
        return;
    }
}

// Reads the literal that follows a word, if the word is the beginning of one.
bool SourceReader::ReadPrefixed(SourceToken& token) {
    const std::string& word = token.text;
    const bool isRaw = !word.empty() && word.back() == 'R';
    const std::string kind = word.substr(0, word.size() - (isRaw ? 1 : 0));
    if (!(kind.empty() && isRaw) && kind != "L" && kind != "u" && kind != "U" && kind != "u8") {
        return false;
    }
    token.text.clear();
    if (isRaw) {
        ReadRawLiteral(token);
    } else {
        ReadLiteral(token);
    }
    return true;
}

void SourceReader::ReadLiteral(SourceToken& token) {
    token.kind = SourceToken::Kind::kLiteral;
    Get();
    while (m_at < m_bytes.size() && Peek() != '\n') {
        const char c = Get();
        if (c == '"') {
            SkipSuffix();
            return;
        }
        if (c == '\\') {
            ReadEscape(token.text);
        } else {
            token.text += c;
        }
    }
}

// Nothing has a meaning in a raw literal but its end.
void SourceReader::ReadRawLiteral(SourceToken& token) {
    constexpr std::size_t kMaxDelimiter = 16;
    const std::string_view rest = m_bytes.substr(m_at + 1);
    const std::size_t open = rest.substr(0, kMaxDelimiter + 1).find('(');
    if (open == std::string_view::npos) {
        ReadLiteral(token);
        return;
    }
    const std::string end = ')' + std::string(rest.substr(0, open)) + '"';
    const std::size_t length = std::min(rest.find(end, open + 1), rest.size());
    token.kind = SourceToken::Kind::kLiteral;
    token.text = rest.substr(open + 1, length - open - 1);
    m_at = std::min(m_at + 1 + length + end.size(), m_bytes.size());
    SkipSuffix();
}

// Passes over the suffix of a literal in C++, unless it can be a macro.
void SourceReader::SkipSuffix() {
    const std::size_t begin = m_at;
    std::string suffix;
    while (IsInWord(Peek())) {
        suffix += Get();
    }
    if (suffix != "s" && suffix != "sv" && suffix.substr(0, 1) != "_") {
        m_at = begin;
    }
}

void SourceReader::ReadEscape(std::string& text) {
    const char letter = Get();
    unsigned base = 16;
    std::size_t digits = 0;
    std::uint32_t value = 0;
    switch (letter) {
        case 'x':
            digits = m_bytes.size();
            break;
        case 'u':
            digits = 4;
            break;
        case 'U':
            digits = 8;
            break;
        default:
            if (letter < '0' || letter > '7') {
                text += EscapedLetter(letter);
                return;
            }
            base = 8;
            digits = 2;
            value = DigitOf(letter);
    }
    for (; digits > 0 && DigitOf(Peek()) < base; --digits) {
        value = value * base + DigitOf(Get());
    }
    if (letter == 'u' || letter == 'U') {
        AppendCharacter(value, text);
    } else {
        text += static_cast<char>(value);
    }
}

// Begins a literal of Swift, if one begins here.
bool SourceReader::BeginSwiftText(SourceToken& token) {
    std::size_t quote = m_at;
    while (At(quote) == '#') {
        ++quote;
    }
    if (At(quote) != '"') {
        m_at = quote > m_at ? quote - 1 : m_at;  // so that no hash is passed over twice
        return false;
    }
    const bool hasManyLines = HasAt(quote, "\"\"\"");
    m_texts.push_back({quote - m_at, hasManyLines, 0});
    m_at = quote + (hasManyLines ? 3 : 1);
    ReadSwiftText(token);
    if (hasManyLines) {
        RemoveIndents(token);
    }
    token.kind = SourceToken::Kind::kLiteral;
    return true;
}

// Reads the innermost literal up to its end, or up to an expression in it.
void SourceReader::ReadSwiftText(SourceToken& token) {
    SwiftText& text = m_texts.back();
    const std::string hashes(std::min<std::size_t>(text.hashes, m_bytes.size()), '#');
    const std::string end = (text.hasManyLines ? "\"\"\"" : "\"") + hashes;
    const std::string escape = '\\' + hashes;
    while (m_at < m_bytes.size() && (text.hasManyLines || At(m_at) != '\n')) {
        if (At(m_at) == '"' && HasAt(m_at, end)) {
            m_at += end.size();
            break;
        }
        if (At(m_at) == '\r' && At(m_at + 1) == '\n') {  // Swift reads a line feed only
            ++m_at;
        }
        if (At(m_at) == '\\' && HasAt(m_at, escape)) {
            m_at += escape.size();
            if (At(m_at) == '(') {
                ++m_at;
                token.isOpen = true;
                text.depth = 1;
                return;
            }
            ReadSwiftEscape(token.text);
        } else {
            token.text += m_bytes[m_at++];
        }
    }
    m_texts.pop_back();
}

void SourceReader::ReadSwiftEscape(std::string& text) {
    const char letter = Get();
    if (letter == '\n') {  // joins two lines
        return;
    }
    if (letter != 'u' || At(m_at) != '{') {
        text += letter == '0' ? '\0' : EscapedLetter(letter);
        return;
    }
    ++m_at;
    std::uint32_t value = 0;
    while (DigitOf(At(m_at)) < 16) {
        value = value * 16 + DigitOf(m_bytes[m_at++]);
    }
    m_at += At(m_at) == '}' ? 1U : 0U;
    AppendCharacter(value, text);
}

Place SourcePlaces::PlaceOf(std::size_t offset) {
    std::string_view between = m_bytes.substr(m_offset, offset - m_offset);
    for (std::size_t end; (end = between.find('\n')) != std::string_view::npos;) {
        m_place = {m_place.line + 1, 0};
        between.remove_prefix(end + 1);
    }
    m_place.column += CountCharacters(between);
    m_offset = offset;
    return m_place;
}
