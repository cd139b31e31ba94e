#ifndef ORVALANGUAGE_TOOLS_EXCHANGE_IMPORTER_H
#define ORVALANGUAGE_TOOLS_EXCHANGE_IMPORTER_H

#include <cstddef>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "protection/ProtectedForm.h"
#include "tools/orva-strings/cli/Finding.h"
#include "tools/orva-strings/document/StringsDocument.h"
#include "tools/orva-strings/exchange/LanguageCodes.h"
#include "tools/orva-strings/exchange/XliffReader.h"

struct ImportOptions {
    bool acceptsStale = false;                // units whose source is not the reference's text
    bool creates = false;                     // sections and entries that are missing
    std::vector<std::string> acceptedStates;  // of those that say that a text is not finished
};

// What became of the units.
struct ImportCounts {
    std::size_t changed = 0;
    std::size_t added = 0;
    std::size_t same = 0;        // the entry has the text already
    std::size_t unfinished = 0;  // by their state
};

// Brings the translations of XLIFF documents into a strings file. They are collected first, since
// they come in an order of their own. What is refused or passed over leaves its entry as it is.
class Importer {
public:
    // The document is that of these bytes, the reference a reader at the header of its section. All
    // of these must outlive the object.
    Importer(StringsDocument& document, std::string_view bytes, StringsReader reference,
             const LanguageCodes& codes, const ProtectionKeys& keys, const ImportOptions& options);

    // Begins an XLIFF document.
    void BeginDocument() { m_findings.emplace_back(); }

    // Begins a <file>. Throws XliffError if its languages are not those of two sections.
    void BeginFile(const XliffFile& file);

    // Takes a unit of that file.
    void Take(const XliffUnit& unit);

    // Call after the last document, once, unless a text came twice. Makes the changes.
    void Apply();

    // Whether a text came twice, so that it is not clear which is meant.
    bool HasDoubled() const { return m_hasDoubled; }

    // What there is to say about each document.
    std::vector<Findings>& AllFindings() { return m_findings; }

    const ImportCounts& Counts() const { return m_counts; }

private:
    // A line of the file: one of an entry, or the one below which an entry is added.
    struct Place {
        std::size_t begin;
        std::size_t number;
    };

    // A section that translations go to. Its vectors are by position among the reference's keys.
    struct Target {
        std::string name;
        std::size_t rank;  // 0, or from 1 among the sections to be added
        bool hasHeader;
        std::vector<Place> places;
        std::vector<bool> hasEntry;
        std::vector<bool> isSeen;
    };

    struct Change {
        Place place;
        std::size_t rank;      // of the section
        std::size_t position;  // of an entry to be added, from 1; otherwise 0
        bool isNew;            // a line is added
        std::string text;      // the line, or the value that replaces the old one
        std::size_t document = 0;
        std::size_t unitLine = 0;
    };

    Target& TargetOf(const std::string& name, std::size_t fileLine);
    Target ReadTarget(StringsReader section) const;
    Target NewTarget(const std::string& name, std::size_t fileLine);
    Place PlaceOf(const StringsLine& line) const;
    StringsLine LineAt(const Place& place) const;
    const std::size_t* FindPosition(const XliffUnit& unit) const;
    bool IsAccepted(const std::string& state) const;
    void TakeText(const XliffUnit& unit, std::size_t position);
    void ChangeEntry(const XliffUnit& unit, const StringsLine& line, bool isStored);
    void AddEntry(const XliffUnit& unit, std::size_t position, bool isStored);
    std::optional<std::string> TextOf(const StringsEntry& entry) const;
    std::string ValueOf(const std::string& text, bool isStored) const;
    void AddChange(Change change, std::size_t unitLine);
    void Say(Severity severity, std::size_t line, std::string_view key, const char* text);

    StringsDocument& m_document;
    std::string_view m_bytes;
    const LanguageCodes& m_codes;
    const ProtectionKeys& m_keys;
    const ImportOptions& m_options;
    std::string m_referenceName;
    std::vector<Place> m_reference;                                 // by position
    std::unordered_map<std::string_view, std::size_t> m_positions;  // by key
    std::vector<StringsReader> m_sections;                          // at their headers
    Place m_lastLine = {};
    std::map<std::size_t, Target> m_targets;  // by the line of the header
    std::vector<std::string> m_newNames;
    Target* m_target = nullptr;
    std::deque<Change> m_changes;
    std::vector<Findings> m_findings;
    ImportCounts m_counts;
    bool m_hasDoubled = false;
    std::string m_value;  // as read
};

#endif
