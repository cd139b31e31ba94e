// What fix makes of any bytes: mended once, nothing is left to mend; a line changes only where it
// has something to mend; and a load gets the same texts as before, for keys without blanks at their
// ends.
//
// Input: the file.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "fuzz/Check.h"
#include "fuzz/NaiveStrings.h"
#include "tools/orva-strings/document/FixedStrings.h"

namespace {

const std::string kHeader = "QVLANG=";

std::string Fixed(const std::string& bytes) {
    std::string fixed;
    FixedStrings(bytes).WriteInPieces([&](std::string_view piece) { fixed += piece; });
    return fixed;
}

std::string WithoutMarks(std::string text) {
    while (text.compare(0, 3, "\xEF\xBB\xBF") == 0) {
        text.erase(0, 3);
    }
    return text;
}

// A text without the blanks at its ends.
std::string Trimmed(std::string text) {
    const auto isBlank = [](char c) { return c == ' ' || c == '\t'; };
    while (!text.empty() && isBlank(text.front())) {
        text.erase(0, 1);
    }
    while (!text.empty() && isBlank(text.back())) {
        text.pop_back();
    }
    return text;
}

// What is before the first equals sign, and what follows it.
std::pair<std::string, std::string> Split(const std::string& text) {
    const std::size_t equals = std::min(text.find('='), text.size());
    return {text.substr(0, equals), text.substr(equals)};
}

bool IsHeader(const std::string& text) {
    return naive::IsHeader(text, kHeader, "");
}

// Whether a line may have become another.
bool MayBecome(const std::string& before, const std::string& after) {
    const std::string text = WithoutMarks(before);
    if (after == text || after == before) {
        return true;
    }
    const auto [oldKey, oldRest] = Split(text);
    const auto [key, rest] = Split(after);
    if (!IsHeader(after)) {
        return key == Trimmed(oldKey) && rest == oldRest && key.size() >= 4;
    }
    if (oldRest.empty()) {
        return false;
    }
    // The keyword has six letters; a word that was meant as it has five to seven.
    const std::size_t size = Trimmed(oldKey).size();
    const std::string name = Trimmed(oldRest.substr(1));
    return size >= 5 && size <= 7 &&
           (after == kHeader + name ||
            (name.size() > 2 && name.front() == '"' && name.back() == '"' &&
             after == kHeader + Trimmed(name.substr(1, name.size() - 2))));
}

// A section as the file has it once mended, before and after: the first value of each key.
struct Tables {
    std::set<std::pair<std::string, std::string>> entries;
    std::map<std::string, std::string> before;
    std::map<std::string, std::string> after;
};

void CheckTables(const Tables& tables) {
    Check(tables.before.size() == tables.after.size(), "no key comes or goes");
    for (const auto& [key, value] : tables.before) {
        auto found = tables.after.find(key);
        found = found == tables.after.end() ? tables.after.find(Trimmed(key)) : found;
        Check(found != tables.after.end() && found->second == value, "every key keeps its value");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const FixedStrings strings(bytes);
    std::string before;
    std::string after;
    bool isInSection = false;
    Tables tables;
    strings.VisitLines([&](const FixedLine& line) {
        const std::string oldText(line.line.text);
        const std::string text(line.text);
        before += oldText;
        before += line.line.ending;
        Check(MayBecome(oldText, text), "a line changes only where it has something to mend");
        if (IsHeader(text)) {
            Check(!line.isDuplicate, "no header goes");
            CheckTables(tables);
            tables = {};
            isInSection = true;
        } else if (const auto entry = naive::Entry(text == oldText ? text : WithoutMarks(oldText));
                   entry && isInSection) {
            const bool isNew = tables.entries.insert(*entry).second;
            Check(!line.isDuplicate || !isNew, "only what comes again goes");
            tables.before.insert(*entry);
        } else {
            Check(!line.isDuplicate, "only entries go");
        }
        if (line.isDuplicate) {
            return;
        }
        after += text;
        after += line.line.ending;
        if (const auto entry = naive::Entry(text); entry && isInSection && !IsHeader(text)) {
            tables.after.insert(*entry);
        }
    });
    CheckTables(tables);

    std::string lines = bytes;
    if (strings.HasNewLineEnds()) {
        Check(bytes.find('\n') == std::string::npos, "line feeds are not replaced");
        std::replace(lines.begin(), lines.end(), '\r', '\n');
    }
    Check(before == lines, "every line is visited");
    const std::string fixed = Fixed(bytes);
    Check(fixed == after, "what is visited is what is written");
    Check(Fixed(fixed) == fixed, "a second run changes nothing");
    return 0;
}
