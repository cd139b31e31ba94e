#include "tools/orva-strings/exchange/XliffWriter.h"

#include <algorithm>
#include <utf8cpp/utf8.h>
#include <utility>

#include "tools/orva-strings/document/Directive.h"
#include "tools/orva-strings/document/LineText.h"
#include "tools/orva-strings/document/MeantProtected.h"
#include "tools/orva-strings/document/NearMisses.h"
#include "tools/orva-strings/document/PieceWriter.h"
#include "tools/orva-strings/protection/ProtectedText.h"

namespace {

constexpr char kNotXml[] =
    "XML can't hold it: it has control characters, or bytes that are not UTF-8";

bool CanStandInXml(std::string_view text) {
    const auto isForbidden = [](char c) {
        return static_cast<unsigned char>(c) < ' ' && c != '\t' && c != '\n' && c != '\r';
    };
    // The last two are U+FFFE and U+FFFF.
    return utf8::find_invalid(text) == std::string_view::npos &&
           std::none_of(text.begin(), text.end(), isForbidden) &&
           text.find("\xEF\xBF\xBE") == std::string_view::npos &&
           text.find("\xEF\xBF\xBF") == std::string_view::npos;
}

// What stands for a character that has a meaning in XML, or that a parser would change. Empty for
// any other.
std::string_view ReferenceFor(char c) {
    switch (c) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '"':
            return "&quot;";
        case '\t':  // in an attribute, it and line feeds would become blanks
            return "&#9;";
        case '\n':
            return "&#10;";
        case '\r':
            return "&#13;";
        default:
            return "";
    }
}

// The text of a line that was meant as a comment.
std::string_view NoteText(std::string_view line) {
    line = TrimBlanks(line);
    const char mark = line.front();
    const bool isBlock = mark == '/' || mark == '*';
    if (isBlock && line.size() >= 2 && line.substr(line.size() - 2) == "*/") {
        line.remove_suffix(2);
    }
    const auto removeAll = [&](char c) {
        line.remove_prefix(std::min(line.find_first_not_of(c), line.size()));
    };
    removeAll(mark);
    if (mark == '/') {
        removeAll('*');
    }
    return TrimBlanks(line);
}

bool HasProtectedText(std::string_view comment) {
    bool hasText = false;
    FindNearProtected(comment, [&](const StringsEntry&) { hasText = true; });
    return hasText;
}

// Collects the comment right above an entry.
class NoteReader {
public:
    // If there are secrets, comments that hold one of them, or what was meant as a protected entry,
    // are passed over.
    explicit NoteReader(const std::optional<SecretTexts>& secrets) : m_secrets(secrets) {}

    // Takes a line that is not an entry.
    void Read(std::string_view line) {
        if (!IsCommentLike(line)) {
            m_note.clear();
        } else if (!ReadDirective(line) && !HoldsSecret(line)) {
            const std::string_view text = NoteText(line);
            m_note += m_note.empty() || text.empty() ? "" : "\n";
            m_note += text;
        }
    }

    // The comment above the entry that follows.
    std::string Take() { return std::exchange(m_note, ""); }

private:
    bool HoldsSecret(std::string_view line) const {
        return m_secrets && (HasProtectedText(line) || m_secrets->AreIn(line));
    }

    const std::optional<SecretTexts>& m_secrets;
    std::string m_note;
};

Finding LeftOut(const StringsLine& line, std::string_view key, const char* reason) {
    return {Severity::kError, line.number, std::string(key) + ": left out, since " + reason};
}

// Reads the limits of a whole file, whose bytes must outlive them. lines is at its start.
LengthLimits ReadLengthLimits(StringsReader lines) {
    LengthLimits limits;
    std::optional<std::size_t> next;
    while (lines.Next()) {
        if (const auto directive = ReadDirective(lines.Line().text)) {
            const std::optional<std::size_t> number = ReadNumber(directive->value);
            next = directive->name == kMaxLengthDirective && number ? number : next;
        } else if (next) {
            if (const auto entry = lines.Entry()) {
                limits[entry->key] = *next;
            }
            next.reset();
        }
    }
    return limits;
}

}  // namespace

std::optional<std::string> AsXml(std::string_view text) {
    if (!CanStandInXml(text)) {
        return std::nullopt;
    }
    std::string xml;
    xml.reserve(text.size());
    for (const char c : text) {
        const std::string_view reference = ReferenceFor(c);
        xml += reference.empty() ? std::string_view(&c, 1) : reference;
    }
    return xml;
}

XliffWriter::XliffWriter(StringsReader reference, std::string_view bytes,
                         const ProtectionKeys* keys, Findings& findings)
    : m_keys(keys) {
    if (m_keys == nullptr) {
        m_secrets = FindSecretTexts(bytes);
    }
    const LengthLimits limits = ReadLengthLimits(StringsReader(bytes));
    KeySet seen;
    NoteReader notes(m_secrets);
    while (reference.Next() && !reference.IsHeader()) {
        const StringsLine& line = reference.Line();
        const auto entry = IsCommentLike(line.text) ? std::nullopt : reference.Entry();
        if (!entry) {
            notes.Read(line.text);
            continue;
        }
        const std::string note = notes.Take();
        if (!seen.insert(entry->key).second) {
            continue;
        }
        if (m_secrets && IsProtectedKey(entry->key.data())) {
            ++m_protectedCount;
        } else {
            AddUnit(line, *entry, note, limits, findings);
        }
    }
}

void XliffWriter::AddUnit(const StringsLine& line, const StringsEntry& entry,
                          const std::string& note, const LengthLimits& limits, Findings& findings) {
    std::optional<std::string> source = TextAsXml(line, entry, findings);
    if (!source) {
        return;
    }
    const std::optional<std::string> key = AsXml(entry.key);
    if (!key) {
        findings.push_back(LeftOut(line, entry.key, kNotXml));
        return;
    }
    std::optional<std::string> noteXml = AsXml(note);
    if (!noteXml) {
        std::string text(entry.key);
        text += ": the comment above it is left out, since ";
        findings.push_back({Severity::kWarning, line.number, text + kNotXml});
        noteXml = "";
    }
    std::string attributes = "id=\"" + *key + "\" resname=\"" + *key + "\" xml:space=\"preserve\"";
    if (const auto limit = limits.find(entry.key); limit != limits.end()) {
        attributes += " maxwidth=\"" + std::to_string(limit->second) + "\" size-unit=\"char\"";
    }
    m_positions.emplace(entry.key, m_units.size());
    m_units.push_back({std::move(attributes), std::move(*source), std::move(*noteXml)});
}

// The text that an entry is exported with. Nothing, with a finding, if it is left out.
std::optional<std::string> XliffWriter::TextAsXml(const StringsLine& line,
                                                  const StringsEntry& entry,
                                                  Findings& findings) const {
    if (m_secrets) {
        const bool isKeySecret = HoldsProtected(line.text) || m_secrets->AreShownBy(entry.key);
        if (isKeySecret || m_secrets->AreShownBy(entry.value)) {
            std::string name(isKeySecret ? "" : entry.key);
            name += isKeySecret ? "" : ": ";
            findings.push_back({Severity::kWarning, line.number,
                                name + "left out, since it may hold a protected text"});
            return std::nullopt;
        }
    }
    std::optional<std::string> text(entry.value);
    if (IsProtectedKey(entry.key.data()) && LooksStored(entry.value)) {
        text = DecodeProtectedText(*m_keys, entry.value);
    }
    if (!text) {
        findings.push_back(LeftOut(line, entry.key,
                                   "its value looks stored but does not decode: it was damaged or "
                                   "made with another key"));
        return std::nullopt;
    }
    std::optional<std::string> xml = AsXml(*text);
    if (!xml) {
        findings.push_back(LeftOut(line, entry.key, kNotXml));
    }
    return xml;
}

XliffTargets XliffWriter::ReadTargets(StringsReader section, const KeySet& stale,
                                      Findings& findings) const {
    const std::size_t count = m_units.size();
    XliffTargets targets = {std::vector<XliffTarget>(count), count, count};
    std::vector<bool> isSeen(count);
    while (section.Next() && !section.IsHeader()) {
        const auto entry = section.Entry();
        const auto found = entry ? m_positions.find(entry->key) : m_positions.end();
        if (found == m_positions.end() || isSeen[found->second]) {
            continue;
        }
        isSeen[found->second] = true;
        --targets.missing;
        XliffTarget& target = targets.all[found->second];
        target.text = TextAsXml(section.Line(), *entry, findings);
        if (!target.text) {
            target.isLeftOut = true;
            --targets.units;
        } else if (stale.count(entry->key) > 0) {
            target.isStale = true;
            ++targets.stale;
        }
    }
    return targets;
}

void XliffWriter::Write(const std::string& original, const std::string& sourceLanguage,
                        const std::string& targetLanguage, const XliffTargets& targets,
                        const TakePiece& take) const {
    PieceWriter out(take);
    const auto write = [&](std::initializer_list<std::string_view> parts) {
        std::for_each(parts.begin(), parts.end(), [&](std::string_view part) { out.Write(part); });
    };
    out.Write(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<xliff version=\"1.2\" xmlns=\"urn:oasis:names:tc:xliff:document:1.2\">\n");
    write({"  <file original=\"", original, "\" source-language=\"", sourceLanguage});
    write({"\" target-language=\"", targetLanguage, "\" datatype=\"plaintext\">\n"});
    if (m_keys != nullptr) {
        out.Write(
            "    <header>\n"
            "      <note>Protected texts are readable in this file. Keep it from others.</note>\n"
            "    </header>\n");
    }
    out.Write("    <body>\n");
    for (std::size_t i = 0; i < m_units.size(); ++i) {
        const Unit& unit = m_units[i];
        const auto& [text, isLeftOut, isStale] = targets.all[i];
        if (isLeftOut) {
            continue;
        }
        const bool isDone = text && !isStale && (!text->empty() || unit.source.empty());
        write({"      <trans-unit ", unit.attributes, isDone ? " approved=\"yes\">\n" : ">\n"});
        write({"        <source>", unit.source, "</source>\n"});
        if (text) {
            const char* const state = isStale ? " state=\"needs-review-translation\"" : "";
            write({"        <target", state, ">", *text, "</target>\n"});
        }
        if (!unit.note.empty()) {
            write({"        <note from=\"developer\">", unit.note, "</note>\n"});
        }
        out.Write("      </trans-unit>\n");
    }
    out.Write(
        "    </body>\n"
        "  </file>\n"
        "</xliff>\n");
    out.Finish();
}
