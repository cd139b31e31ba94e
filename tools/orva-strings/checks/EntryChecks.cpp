#include "tools/orva-strings/checks/EntryChecks.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <utf8cpp/utf8.h>

#include "tools/orva-strings/Hex.h"
#include "tools/orva-strings/document/StringsReader.h"

namespace {

std::string Hex(char c) {
    const auto byte = static_cast<std::uint8_t>(c);
    return ToHexDigits(&byte, 1);
}

// Whether a byte belongs to no text. A NUL byte has a rule of its own, and a tab is a blank.
bool IsControl(char c) {
    return (static_cast<unsigned char>(c) < ' ' && c != '\0' && c != '\t') || c == '\x7F';
}

// Whether a line is ASCII without control characters but tabs, as most are.
bool IsPlain(std::string_view text) {
    bool isPlain = true;
    for (const char c : text) {  // without an exit, so that the compiler can take many at a time
        const auto byte = static_cast<unsigned char>(c);
        isPlain &= (byte >= ' ' && byte < 0x7F) || byte == '\t';
    }
    return isPlain;
}

void CheckKey(const MeantReader& line, FindingCollector& findings) {
    const std::string_view key = line.Entry()->key;
    if (key.size() != line.Key().size()) {
        findings.Add(Rule::kKeyBlanks, line.Line(), key, line.Key(),
                     "the key has blanks at its ends, so lookups without them answer null; remove "
                     "them");
    }
    if (line.Key().size() >= 2 && line.Key().front() == '"' && line.Key().back() == '"') {
        findings.Add(Rule::kQuotedKey, line.Line(), line.Key(), line.Key(),
                     "the quotes are part of the key, so lookups without them answer null; remove "
                     "them");
    }
}

// Whether there is a blank or the end at this place.
bool IsBlankAt(std::string_view text, std::size_t i) {
    return i >= text.size() || text[i] == ' ' || text[i] == '\t';
}

// Whether a text begins with a note: a comment's mark that is not quoted itself.
bool BeginsWithNote(std::string_view text) {
    const std::size_t mark = text.substr(0, 2) == "//" ? 2 : 1;
    return (mark == 2 || text.substr(0, 1) == ";" || text.substr(0, 1) == "#") &&
           text.substr(mark, 1) != "\"";
}

// Whether a text begins with an entry: a word, an equals sign and a quote.
bool BeginsWithEntry(std::string_view text) {
    const std::size_t length = std::min(text.find_first_of("= \t\""), text.size());
    const std::string_view rest = TrimBlanks(text.substr(length));
    return length >= 4 && !rest.empty() && rest.front() == '=' &&
           TrimBlanks(rest.substr(1)).substr(0, 1) == "\"";
}

// Whether a quote in a value begins a quoted word: it comes first, or after a blank or a line break,
// and no blank follows.
bool OpensWord(std::string_view value, std::size_t quote) {
    const bool isFirst = quote == 0 || IsBlankAt(value, quote - 1) ||
                         (quote >= 2 && value.substr(quote - 2, 2) == "\\n");
    return isFirst && !IsBlankAt(value, quote + 1);
}

// Looks for what a later quote has made part of a quoted value. Only each second quote in it may be
// the closing one: those between are the ends of quoted words.
void CheckInnerQuotes(const MeantReader& line, FindingCollector& findings) {
    const std::string_view value = line.Entry()->value;
    bool mayClose = true;
    for (std::size_t quote = value.find('"'); quote != std::string_view::npos;
         quote = value.find('"', quote + 1), mayClose = !mayClose) {
        const std::string_view rest = TrimBlanks(value.substr(quote + 1));
        if (!mayClose || OpensWord(value, quote)) {
            continue;
        }
        if (BeginsWithNote(rest)) {
            findings.AddError(Rule::kSwallowedText, line.Line(), value.substr(quote), line.Key(),
                              "the value reaches to the last quote of the line, so the note after "
                              "this quote is part of the text; remove the quotes in the note");
            return;
        }
        if (BeginsWithEntry(rest)) {
            findings.Add(Rule::kSwallowedText, line.Line(), value.substr(quote), line.Key(),
                         "the value reaches to the last quote of the line, so what looks like a "
                         "second entry is part of the text; begin a new line for it");
            return;
        }
    }
}

void CheckQuotes(const MeantReader& line, const StringsEntry& parts, FindingCollector& findings) {
    const LineEntry& entry = *line.Entry();
    const std::string_view rest = line.Text().substr(entry.key.size() + 1);
    const std::size_t first = rest.find('"');
    if (first == rest.rfind('"')) {
        const bool isClosing = !TrimBlanks(parts.beforeQuote).empty();
        findings.Add(Rule::kOneQuote, line.Line(), rest.substr(first), line.Key(),
                     isClosing ? "the opening quote is missing, so the text is only what follows "
                                 "this one; add it after the equals sign"
                               : "the closing quote is missing, so the text runs to the end of the "
                                 "line; add it");
        return;
    }
    if (!TrimBlanks(parts.beforeQuote).empty()) {
        findings.Add(Rule::kTextBeforeQuote, line.Line(), TrimBlanks(parts.beforeQuote), line.Key(),
                     "the text before the first quote is not part of the value; put the whole text "
                     "in quotes");
    }
    if (!TrimBlanks(parts.afterQuote).empty()) {
        findings.Add(Rule::kTextAfterQuote, line.Line(), TrimBlanks(parts.afterQuote), line.Key(),
                     "the text after the last quote is not part of the value; put a note on a line "
                     "of its own");
    }
    CheckInnerQuotes(line, findings);
}

// Whether the backslash at this place begins what is an escape elsewhere. One that is a word of its
// own, or between quotes, is meant as it is written.
bool IsEscape(std::string_view value, std::size_t at) {
    const bool isWord = at > 0 && IsBlankAt(value, at - 1) && IsBlankAt(value, at + 2);
    const bool isQuoted = at > 0 && value[at - 1] == '"' && value.substr(at + 1, 1) == "\"";
    const char next = value[at + 1];
    const bool isHex = value.size() >= at + 6 &&
                       value.substr(at + 2, 4).find_first_not_of("0123456789ABCDEFabcdef") ==
                           std::string_view::npos;
    return !isWord && !isQuoted &&
           ((next != '\0' && std::string_view("t\"\\r").find(next) != std::string_view::npos) ||
            (next == 'u' && (isHex || value.substr(at + 2, 1) == "{")));
}

// Looks for an escape other than \n. The closing quote may have been meant as part of one.
void CheckEscapes(const MeantReader& line, FindingCollector& findings) {
    const std::string_view value = line.Entry()->value;
    const auto add = [&](std::size_t at, const std::string& what) {
        findings.Add(Rule::kUnknownEscape, line.Line(), value.substr(at), line.Key(), what);
    };
    for (std::size_t at = value.find('\\'); at != std::string_view::npos;
         at = value.find('\\', at + 1)) {
        if (at + 1 == value.size()) {
            if (at > 0 && !IsBlankAt(value, at - 1) && value[at - 1] != '"') {
                add(at, "the text ends with this backslash; a quote needs no escape");
            }
        } else if (IsEscape(value, at)) {
            add(at,
                "this backslash and what follows it are shown as they are written; the only "
                "escape is a backslash and n");
            return;
        }
    }
}

void CheckUnquoted(const MeantReader& line, FindingCollector& findings) {
    const std::string_view value = line.Entry()->value;
    if (const std::size_t escape = value.find("\\n"); escape != std::string_view::npos) {
        findings.Add(Rule::kUnquotedNewLine, line.Line(), value.substr(escape), line.Key(),
                     "this backslash and n are shown as they are written, since the value has no "
                     "quotes; add them if a line break is meant");
    }
    constexpr std::array<std::string_view, 11> kQuotes = {"“", "”", "„", "‟", "‘", "’",
                                                          "‚", "«", "»", "‹", "›"};
    const std::string_view text = TrimBlanks(value);
    const auto isOneOf = [&](auto isAtEnd) {
        return std::any_of(kQuotes.begin(), kQuotes.end(), isAtEnd);
    };
    const bool begins =
        isOneOf([&](std::string_view quote) { return text.substr(0, quote.size()) == quote; });
    const bool ends = isOneOf([&](std::string_view quote) {
        return text.size() > quote.size() && text.substr(text.size() - quote.size()) == quote;
    });
    if (begins && ends) {
        findings.Add(Rule::kTypographicQuotes, line.Line(), text, line.Key(),
                     "these quotes are part of the text; only straight ones enclose a value");
    }
}

}  // namespace

void CheckBytes(const StringsLine& line, bool isLost, FindingCollector& findings) {
    const std::string_view text = line.text;
    if (text.substr(0, 3) == "\xEF\xBB\xBF") {
        findings.Add(Rule::kByteOrderMark, line, text, {},
                     "a byte-order mark is part of this line, so the library does not read it as "
                     "it was meant; remove the mark");
    }
    if (IsPlain(text)) {
        return;
    }
    if (const std::size_t nul = text.find('\0'); nul != std::string_view::npos) {
        findings.Add(Rule::kNulByte, line, text.substr(nul), {},
                     "a host sees only what comes before this NUL byte; remove it");
    }
    const auto* const control = std::find_if(text.begin(), text.end(), IsControl);
    if (control != text.end()) {
        const auto at = static_cast<std::size_t>(control - text.begin());
        if (isLost) {
            findings.AddError(Rule::kControlByte, line, text.substr(at), {},
                              "a carriage return ends no line, so the library does not read what "
                              "follows it as it was meant; add a line feed");
        } else {
            findings.Add(Rule::kControlByte, line, text.substr(at), {},
                         "the control character " + Hex(*control) +
                             (*control == '\r' ? " ends no line; remove it, or add a line feed"
                                               : " is part of what the library reads; remove it"));
        }
    }
    const std::size_t invalid = utf8::find_invalid(text);
    if (invalid < text.size()) {
        findings.Add(Rule::kNotUtf8, line, text.substr(invalid), {},
                     "the byte " + Hex(text[invalid]) +
                         " is not UTF-8, and a host gets it as it is; save the file in UTF-8");
    }
}

void CheckEntry(const MeantReader& line, FindingCollector& findings) {
    CheckKey(line, findings);
    if (!line.Entry()->isQuoted) {
        CheckUnquoted(line, findings);
        return;
    }
    std::string buffer;
    CheckQuotes(line, *ReadEntry(line.Text(), buffer), findings);
    CheckEscapes(line, findings);
}
