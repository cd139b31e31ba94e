#include "tools/orva-strings/checks/EntryChecks.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <utf8.h>

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
}

// Whether a text begins with a note: a comment's mark that is not quoted itself.
bool BeginsWithNote(std::string_view text) {
    const std::size_t mark = text.substr(0, 2) == "//" ? 2 : 1;
    return (mark == 2 || text.substr(0, 1) == ";" || text.substr(0, 1) == "#") &&
           text.substr(mark, 1) != "\"";
}

// Whether a text begins with an entry: a word, an equals sign and a quote.
bool BeginsWithEntry(std::string_view text) {
    const std::size_t equals = std::min(text.find_first_of("= \t\""), text.size());
    return equals >= 4 && text.substr(equals, 2) == "=\"";
}

// Looks for what a later quote has made part of a quoted value. Only each second quote in it may be
// the closing one: those between are the ends of quoted words.
void CheckInnerQuotes(const MeantReader& line, FindingCollector& findings) {
    const std::string_view value = line.Entry()->value;
    bool mayClose = true;
    for (std::size_t quote = value.find('"'); quote != std::string_view::npos;
         quote = value.find('"', quote + 1), mayClose = !mayClose) {
        const std::string_view rest = TrimBlanks(value.substr(quote + 1));
        if (mayClose && BeginsWithNote(rest)) {
            findings.AddError(Rule::kSwallowedText, line.Line(), value.substr(quote), line.Key(),
                              "the value reaches to the last quote of the line, so the note after "
                              "this quote is part of the text; remove the quotes in the note");
            return;
        }
        if (mayClose && BeginsWithEntry(rest)) {
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

// Looks for an escape other than \n. The closing quote may belong to one.
void CheckEscapes(const MeantReader& line, FindingCollector& findings) {
    const std::string_view value = line.Entry()->value;
    for (std::size_t at = value.find('\\'); at != std::string_view::npos;
         at = value.find('\\', at + 1)) {
        const char next = at + 1 < value.size() ? value[at + 1] : '"';
        if (std::string_view("t\"\\ru").find(next) != std::string_view::npos) {
            findings.Add(
                Rule::kUnknownEscape, line.Line(), value.substr(at), line.Key(),
                std::string("\\") + next + " is shown as it is written; the only escape is \\n");
            return;
        }
    }
}

void CheckUnquoted(const MeantReader& line, FindingCollector& findings) {
    const std::string_view value = line.Entry()->value;
    if (const std::size_t escape = value.find("\\n"); escape != std::string_view::npos) {
        findings.Add(Rule::kUnquotedNewLine, line.Line(), value.substr(escape), line.Key(),
                     "\\n is shown as these two characters, since the value has no quotes; add "
                     "them if a line break is meant");
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
                     "these quotes are part of the text; only straight ones (\") enclose a value");
    }
}

}  // namespace

void CheckBytes(const StringsLine& line, FindingCollector& findings) {
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
        findings.Add(Rule::kControlByte, line, text.substr(at), {},
                     "the control character " + Hex(*control) +
                         (*control == '\r' ? " ends no line; remove it, or add a line feed"
                                           : " is part of what the library reads; remove it"));
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
