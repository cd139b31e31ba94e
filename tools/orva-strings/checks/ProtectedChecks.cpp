#include "tools/orva-strings/checks/ProtectedChecks.h"

#include <algorithm>
#include <functional>

#include "tools/orva-strings/Ascii.h"
#include "tools/orva-strings/document/NearMisses.h"
#include "tools/orva-strings/protection/ProtectedText.h"

namespace {

// Whether a value nearly looks stored: at most two of its characters are wrong, missing or too many.
bool IsNearlyStored(std::string_view value) {
    constexpr std::size_t kShortest = 4 * kProtectedBlock;
    const std::size_t excess = (value.size() + 2) % (2 * kProtectedBlock);  // over two too few
    const auto isDigit = [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
    };
    return value.size() + 2 >= kShortest && excess <= 4 &&
           value.size() -
                   static_cast<std::size_t>(std::count_if(value.begin(), value.end(), isDigit)) <=
               2;
}

// What a comment says, without its marks.
std::string_view WithoutMarks(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t/#;*-"), text.size()));
    text = TrimBlanks(text);
    if (text.size() >= 2 && text.substr(text.size() - 2) == "*/") {
        text.remove_suffix(2);
    }
    return TrimBlanks(text);
}

// Calls visit with each part of a text that a person may have meant as the text of an entry.
void ForEachPart(std::string_view text, const std::function<void(std::string_view)>& visit) {
    text = WithoutMarks(text);
    visit(text);
    if (const std::size_t separator = text.find_first_of("=:");
        separator != std::string_view::npos) {
        visit(TrimBlanks(text.substr(separator + 1)));
    }
    const std::size_t quote = text.find('"');
    if (quote != text.rfind('"')) {
        visit(text.substr(quote + 1, text.rfind('"') - quote - 1));
    }
}

// Whether a line is an entry that can be loaded.
bool IsEntry(const MeantReader& line) {
    return line.Kind() == LineKind::kEntry && line.IsInSection();
}

}  // namespace

bool IsProtected(std::string_view key) {
    return key.size() >= 3 && IsProtectedKey(key.data());
}

std::optional<std::string_view> DecodedText(const LineEntry& entry, const ProtectionKeys& keys,
                                            std::string& buffer) {
    const std::string_view value = ValueOf(entry, buffer);
    if (!IsProtected(TrimBlanks(entry.key)) || !LooksStored(value)) {
        return value;
    }
    const auto text = DecodeProtectedText(keys, value);
    if (!text) {
        return std::nullopt;
    }
    buffer = *text;
    return buffer;
}

void ProtectedChecks::Check(const MeantReader& line, bool isFirst, const LineEntry* reference) {
    if (!IsProtected(line.Key())) {
        if (!m_options.isShipped) {
            FindNear(line, Rule::kNearProtected, "so its text stays readable");
        }
        return;
    }
    if (line.Key().size() > 3 && IsLetter(line.Key()[3])) {
        m_findings.Add(Rule::kProtectedByChance, line.Line(), line.Key(), line.Key(),
                       "every key that begins with IDE is protected, so this one is, too; choose "
                       "another if that is not meant");
    }
    std::string buffer;
    const std::string_view value = ValueOf(*line.Entry(), buffer);
    if (LooksStored(value) || IsNearlyStored(value)) {
        CheckStored(line, value, isFirst, reference);
    } else {
        CheckReadable(line, reference);
        CompareText(line, value, isFirst);
    }
}

void ProtectedChecks::CheckStored(const MeantReader& line, std::string_view value, bool isFirst,
                                  const LineEntry* reference) {
    const std::string_view at = line.Entry()->value;
    const auto text = DecodeProtectedText(m_options.keys, value);
    if (!text) {
        m_findings.Add(Rule::kDamagedText, line.Line(), at, line.Key(),
                       "lookups answer null, since the value does not decode: it was damaged or "
                       "made with another key");
        return;
    }
    m_hasStored = true;
    if (LooksStored(*text) || IsNearlyStored(*text)) {
        m_findings.Add(Rule::kDamagedText, line.Line(), at, line.Key(),
                       "a host shows digits, since a stored text was protected once more; protect "
                       "the readable text");
        return;
    }
    CompareText(line, *text, isFirst);
    if (m_options.isShipped) {
        return;
    }
    std::string buffer;
    if (reference != nullptr && !LooksStored(ValueOf(*reference, buffer))) {
        m_findings.Add(Rule::kMixedProtection, line.Line(), at, line.Key(),
                       "the text is stored here, but readable in the reference");
    } else {
        m_findings.Add(Rule::kStoredText, line.Line(), at, line.Key(),
                       "nobody can translate a stored text; reveal it");
    }
}

void ProtectedChecks::CheckReadable(const MeantReader& line, const LineEntry* reference) {
    const std::string_view at = line.Entry()->value;
    if (m_options.isShipped) {
        m_findings.Add(Rule::kReadableText, line.Line(), at, line.Key(),
                       "lookups answer null, and everyone can read the text; protect the file");
        return;
    }
    std::string buffer;
    if (reference != nullptr && LooksStored(ValueOf(*reference, buffer))) {
        m_findings.Add(Rule::kMixedProtection, line.Line(), at, line.Key(),
                       "the text is readable here, but stored in the reference");
    }
}

void ProtectedChecks::CompareText(const MeantReader& line, std::string_view text, bool isFirst) {
    if (m_options.isShipped) {
        m_texts.Add(text);
    }
    if (!isFirst) {
        return;  // never loaded
    }
    const std::size_t hash = std::hash<std::string_view>()(text);
    const auto [found, isNew] = m_firstTexts.try_emplace(line.Key(), Text{hash, false});
    if (!isNew && found->second.hash != hash && !found->second.isReported) {
        found->second.isReported = true;
        m_findings.Add(Rule::kProtectedTextsDiffer, line.Line(), line.Entry()->value, line.Key(),
                       "the text differs from that of another section, and the library keeps the "
                       "one that is looked up first until the process ends");
    }
}

// Looks for readable entries that were probably meant as protected ones. Returns whether there are
// any.
bool ProtectedChecks::FindNear(const MeantReader& line, Rule rule, const char* effect) {
    bool isFound = false;
    FindNearProtected(line.Text(), [&](const StringsEntry& entry) {
        if (!TrimBlanks(entry.value).empty() && !LooksStored(entry.value)) {
            isFound = true;
            m_findings.Add(
                rule, line.Line(), entry.key, entry.key,
                std::string("this looks like a protected entry but is not one, ") + effect);
        }
    });
    return isFound;
}

void ProtectedChecks::FindLeak(const MeantReader& line) {
    bool isFound = false;
    std::string buffer;
    const auto find = [&](std::string_view part, bool isWhole) {
        const std::string text(Unescape(part, buffer));
        if (!isFound && (m_texts.Has(text) || (!isWhole && m_texts.AreIn(text)))) {
            isFound = true;
            m_findings.Add(Rule::kLeakedText, line.Line(), part, {},
                           "here, everyone can read the text of a protected entry; remove it");
        }
    };
    if (!IsEntry(line)) {
        ForEachPart(line.Text(), [&](std::string_view part) { find(part, false); });
        return;
    }
    if (!IsProtected(line.Key())) {
        find(line.Entry()->value, true);
    }
    const StringsEntry entry = *ReadEntry(line.Text(), buffer);
    find(WithoutMarks(entry.beforeQuote), false);
    find(WithoutMarks(entry.afterQuote), false);
}

// Looks for readable protected entries that are never read: before the first section, or after a
// carriage return.
void ProtectedChecks::FindMisplacedTexts(const MeantReader& line) {
    FindMisplaced(line.Lines(), [&](std::string_view key, Obstacle obstacle) {
        if (IsProtected(key) && obstacle != Obstacle::kByteOrderMark) {
            m_findings.Add(Rule::kLeakedText, line.Line(), key, key,
                           "the library never reads this protected entry, but everyone else can; "
                           "remove it, or move it below a header");
        }
    });
}

void ProtectedChecks::CheckRest(std::string_view bytes) {
    if (!m_options.isShipped) {
        return;
    }
    if (m_options.rejectsKey && m_hasStored) {
        m_findings.AddForFile(Rule::kDevelopmentKey,
                              "the texts are stored with the development key, which is public; "
                              "build the library with another, or accept this one with "
                              "--allow-development-key");
    }
    for (MeantReader line(bytes); line.Next();) {
        FindMisplacedTexts(line);
        const bool isProtected = IsEntry(line) && IsProtected(line.Key());
        const bool isNear =
            !isProtected &&
            FindNear(line, Rule::kLeakedText, "so everyone can read its text; remove the line");
        if (!isNear && !m_texts.IsEmpty()) {
            FindLeak(line);
        }
    }
}
