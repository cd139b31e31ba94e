#ifndef ORVALANGUAGE_TOOLS_EXCHANGE_XLIFFWRITER_H
#define ORVALANGUAGE_TOOLS_EXCHANGE_XLIFFWRITER_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "protection/ProtectedForm.h"
#include "tools/orva-strings/cli/Finding.h"
#include "tools/orva-strings/document/KeySet.h"
#include "tools/orva-strings/document/SecretTexts.h"
#include "tools/orva-strings/document/StringsReader.h"
#include "tools/orva-strings/system/Files.h"

// A text as XML, in an element or an attribute. Nothing if XML can't hold it: it is not UTF-8, or has
// control characters other than tabs and line ends.
std::optional<std::string> AsXml(std::string_view text);

// The greatest number of characters that a text may have, by key, as directives say.
using LengthLimits = std::unordered_map<std::string_view, std::size_t>;

// The translation of a unit.
struct XliffTarget {
    std::optional<std::string> text;  // as XML
    bool isLeftOut = false;
    bool isStale = false;
};

// The translations in one section, for the units of an XliffWriter.
struct XliffTargets {
    std::vector<XliffTarget> all;  // by the unit's position
    std::size_t units;             // how many are written
    std::size_t missing;           // how many of these have no translation
    std::size_t stale = 0;         // how many have one of an earlier text
};

// Writes the entries of a reference section, each with its translation in another section, as XLIFF
// 1.2. Of repeated keys, the first is written, as the library answers it. A line that was meant as a
// comment is not an entry, even where the library reads one.
class XliffWriter {
public:
    // The reader is at the header of the reference section in the bytes of a file, which must outlive
    // the object. Without keys, protected entries are left out and, with a warning, entries that may
    // hold a text of these. Adds an error for each entry that is left out
    // because XML can't hold its key or text, or its text does not decode, and a warning for each
    // comment that XML can't hold.
    XliffWriter(StringsReader reference, std::string_view bytes, const ProtectionKeys* keys,
                Findings& findings);

    // The number of protected entries that are left out without keys.
    std::size_t ProtectedCount() const { return m_protectedCount; }

    // The translations in the section at whose header the reader is; those of stale keys are of an
    // earlier text of the reference. Adds errors likewise.
    XliffTargets ReadTargets(StringsReader section, const KeySet& stale, Findings& findings) const;

    // Calls take with a document in pieces. original is the name of the strings file; it and the
    // languages are given as XML.
    void Write(const std::string& original, const std::string& sourceLanguage,
               const std::string& targetLanguage, const XliffTargets& targets,
               const TakePiece& take) const;

private:
    // An entry of the reference, as XML.
    struct Unit {
        std::string attributes;
        std::string source;
        std::string note;
    };

    void AddUnit(const StringsLine& line, const StringsEntry& entry, const std::string& note,
                 const LengthLimits& limits, Findings& findings);
    std::optional<std::string> TextAsXml(const StringsLine& line, const StringsEntry& entry,
                                         Findings& findings) const;

    const ProtectionKeys* m_keys;
    std::optional<SecretTexts> m_secrets;  // absent if there are keys
    std::vector<Unit> m_units;
    std::unordered_map<std::string_view, std::size_t> m_positions;  // of the units, by key
    std::size_t m_protectedCount = 0;
};

#endif
