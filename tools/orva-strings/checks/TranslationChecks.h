#ifndef ORVALANGUAGE_TOOLS_CHECKS_TRANSLATIONCHECKS_H
#define ORVALANGUAGE_TOOLS_CHECKS_TRANSLATIONCHECKS_H

#include <cstddef>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "protection/ProtectedForm.h"
#include "tools/orva-strings/checks/FindingCollector.h"
#include "tools/orva-strings/checks/MeantReader.h"
#include "tools/orva-strings/checks/SectionKeys.h"

// The entries of one section, the first of each key.
class SectionEntries {
public:
    SectionEntries() = default;

    // Reads the section at whose header the reader is.
    explicit SectionEntries(MeantReader section);

    struct Entry {
        std::string_view key;
        LineEntry entry;
        std::size_t line;                                     // from 0
        std::size_t lastSeen = static_cast<std::size_t>(-1);  // the section that had it, too
    };

    // The entry of a key, or null.
    Entry* Find(std::string_view key);
    const Entry* Find(std::string_view key) const;

    const std::vector<Entry>& All() const { return m_entries; }

private:
    std::vector<Entry> m_entries;  // in file order
    std::unordered_map<std::string_view, std::size_t> m_indices;
};

// An earlier state of the file, to find translations of texts that have changed since.
class EarlierFile {
public:
    // reference is the name of the section that others are compared with. The bytes must outlive
    // the object.
    EarlierFile(std::string_view bytes, std::string_view reference);

    bool HasReference() const { return !m_reference.All().empty(); }

    void EnterSection(std::string_view name) { m_section = Section(name); }

    // Whether the reference's text of a key was another one, and this section's is as it was.
    bool IsStale(std::string_view key, std::string_view referenceText, std::string_view text,
                 const ProtectionKeys& keys);

private:
    SectionEntries Section(std::string_view name) const;

    std::string_view m_bytes;
    std::unordered_map<std::string_view, std::size_t, HashWithoutCase, EqualWithoutCase>
        m_sections;  // where the first of each name begins
    SectionEntries m_reference;
    SectionEntries m_section;
};

// The rules that compare a section with the reference.
class TranslationChecks {
public:
    // All must outlive the object. earlier may be null.
    TranslationChecks(SectionEntries& reference, EarlierFile* earlier, const ProtectionKeys& keys,
                      FindingCollector& findings)
        : m_reference(reference), m_earlier(earlier), m_keys(keys), m_findings(findings) {}

    // Begins a section. If it is required, it is an error if it lacks a key.
    void EnterSection(const StringsLine& header, std::string_view name, bool isRequired);

    // Checks an entry, the first of its key in the section.
    void Check(const MeantReader& line);

    // Ends the section that was begun: adds findings about the keys that it or the reference lacks.
    void LeaveSection();

private:
    struct ExtraKey {
        StringsLine line;
        std::string_view key;
    };

    void Compare(const MeantReader& line, std::string_view reference, std::string_view text);
    void AddMissingKeys();
    void AddExtraKeys();

    SectionEntries& m_reference;
    EarlierFile* m_earlier;
    const ProtectionKeys& m_keys;
    FindingCollector& m_findings;
    StringsLine m_header = {};
    bool m_isRequired = false;
    std::vector<std::string_view> m_missing;
    std::vector<ExtraKey> m_extra;
};

#endif
