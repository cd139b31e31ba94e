// Any bytes can be imported as XLIFF into any strings file: the pieces in which they are read do not
// matter; the library then answers each text that was imported, and all others as before; and what
// is imported a second time changes nothing.
//
// Input: a byte of options, the XLIFF file, a NUL, the strings file.
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "fuzz/Check.h"
#include "fuzz/NaiveStrings.h"
#include "fuzz/TwoInputs.h"
#include "tools/orva-strings/document/FindSection.h"
#include "tools/orva-strings/exchange/Importer.h"
#include "tools/orva-strings/protection/MasterKey.h"
#include "tools/orva-strings/protection/ProtectedText.h"

namespace {

const ProtectionKeys& Keys() {
    static const ProtectionKeys keys = MasterKey::BuiltIn().Derive();
    return keys;
}

// What a document holds, and whether it can be read.
struct Parts {
    std::vector<std::tuple<std::string, std::string, std::optional<std::string>>> units;
    bool isGood = true;
};

Parts Read(const std::string& document, std::size_t pieceSize) {
    Parts parts;
    XliffReader reader([](const XliffFile&) {},
                       [&](const XliffUnit& unit) {
                           parts.units.emplace_back(unit.id, unit.resname, unit.target);
                       });
    try {
        for (std::size_t i = 0; i < document.size(); i += pieceSize) {
            reader.Read(std::string_view(document).substr(i, pieceSize));
        }
        reader.Finish();
    } catch (const XliffError&) {
        parts.isGood = false;
    }
    return parts;
}

// Imports a document. Returns the new file; nothing if there is no reference, or if the document is
// refused.
std::optional<std::string> Imported(const std::string& file, const std::string& xliff,
                                    const ImportOptions& options, ImportCounts& counts) {
    Findings findings;
    const auto reference = FindSection(file, "", false, findings);
    if (!reference) {
        return std::nullopt;
    }
    const std::string name(reference->SectionName());
    if (name.empty() || naive::IsHeader(name, "", "Deutsch")) {
        return std::nullopt;  // it would have no code, or a second one
    }
    const LanguageCodes codes({name + "=en", "Deutsch=de"}, StringsReader(file), findings);
    StringsDocument document(file);
    Importer importer(document, file, *reference, codes, Keys(), options);
    importer.BeginDocument();
    try {
        XliffReader reader([&](const XliffFile& part) { importer.BeginFile(part); },
                           [&](const XliffUnit& unit) { importer.Take(unit); });
        reader.Read(xliff);
        reader.Finish();
    } catch (const XliffError&) {
        return std::nullopt;
    }
    if (importer.HasDoubled()) {
        return std::nullopt;
    }
    importer.Apply();
    counts = importer.Counts();
    Check(document.IsChanged() == (counts.changed + counts.added > 0), "it knows what it changes");
    return document.Bytes();
}

bool HasGerman(const std::string& file) {
    const auto lines = naive::Lines(file);
    return std::any_of(lines.begin(), lines.end(), [](const std::string& line) {
        return naive::IsHeader(line, "QVLANG=", "Deutsch");
    });
}

// What a host reads.
std::string TextOf(const std::string& key, const std::string& value) {
    return IsProtectedKey(key.c_str()) ? DecodeProtectedText(Keys(), value).value_or(value) : value;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const auto [xliff, file] = TwoInputs(data + 1, size - 1);
    ImportOptions options;
    options.creates = (data[0] & 1U) != 0;
    options.acceptsStale = (data[0] & 2U) != 0;
    if ((data[0] & 4U) != 0) {
        options.acceptedStates = {"new"};
    }

    const Parts parts = Read(xliff, 65'536);
    const Parts again = Read(xliff, 1 + data[0] / 8U);
    Check(parts.isGood == again.isGood, "what can be read does not depend on the pieces");
    Check(!parts.isGood || parts.units == again.units, "the units do not depend on the pieces");

    ImportCounts counts;
    const auto changed = Imported(file, xliff, options, counts);
    if (!changed) {
        return 0;
    }
    Check(parts.isGood, "only a good document is imported");
    Check(naive::Table(*changed, "") == naive::Table(file, ""), "the reference stays");
    const auto before =
        HasGerman(file) ? naive::Table(file, "Deutsch") : std::map<std::string, std::string>();
    auto after = HasGerman(*changed) ? naive::Table(*changed, "Deutsch")
                                     : std::map<std::string, std::string>();
    after.erase(before.empty() ? "QVLANG" : "");
    std::size_t differences = 0;
    for (const auto& [key, value] : after) {
        const auto old = before.find(key);
        if (old != before.end() && old->second == value) {
            continue;
        }
        ++differences;
        Check(std::any_of(parts.units.begin(), parts.units.end(),
                          [&, name = key, text = TextOf(key, value)](const auto& unit) {
                              const auto& [id, resname, target] = unit;
                              return (id == name || resname == name) && target == text;
                          }),
              "a text that changes is one of the document's");
    }
    Check(differences == counts.changed + counts.added, "the counts");
    Check(std::all_of(before.begin(), before.end(),
                      [&](const auto& entry) { return after.count(entry.first) == 1; }),
          "no entry goes");
    const std::size_t lines = naive::Lines(*changed).size() - naive::Lines(file).size();
    Check(lines == counts.added + (before.empty() && counts.added > 0 ? 1 : 0), "no line goes");

    ImportCounts none;
    Check(Imported(*changed, xliff, options, none) == changed, "a second import changes nothing");
    Check(none.same == counts.same + counts.changed + counts.added, "what was imported is there");
    return 0;
}
