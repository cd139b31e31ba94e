#ifndef ORVALANGUAGE_TOOLS_CHECKS_PROTECTEDCHECKS_H
#define ORVALANGUAGE_TOOLS_CHECKS_PROTECTEDCHECKS_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "protection/ProtectedForm.h"
#include "tools/orva-strings/checks/CheckStrings.h"
#include "tools/orva-strings/checks/FindingCollector.h"
#include "tools/orva-strings/checks/MeantReader.h"
#include "tools/orva-strings/document/SecretTexts.h"

// Whether a key is a protected entry's.
bool IsProtected(std::string_view key);

// The text that a host should see for an entry: its value, decoded if it is protected and stored;
// in buffer if that is not what is written. Nothing if it does not decode.
std::optional<std::string_view> DecodedText(const LineEntry& entry, const ProtectionKeys& keys,
                                            std::string& buffer);

// The rules about protected entries.
class ProtectedChecks {
public:
    // Both must outlive the object.
    ProtectedChecks(const CheckOptions& options, FindingCollector& findings)
        : m_options(options), m_findings(findings) {}

    // Checks an entry in a section. isFirst says whether it is the first of its key there; reference
    // is that of the same key in the section that others are compared with, if there is one.
    void Check(const MeantReader& line, bool isFirst, const LineEntry* reference);

    // Call when all entries have been checked: looks for their texts in the rest of the file.
    void CheckRest(std::string_view bytes);

private:
    void CheckStored(const MeantReader& line, std::string_view value, bool isFirst,
                     const LineEntry* reference);
    void CheckReadable(const MeantReader& line, const LineEntry* reference);
    void CompareText(const MeantReader& line, std::string_view text, bool isFirst);
    void FindMisplacedTexts(const MeantReader& line);
    bool FindNear(const MeantReader& line, Rule rule, const char* effect);
    void FindLeak(const MeantReader& line);

    struct Text {
        std::size_t hash;
        bool isReported;
    };

    const CheckOptions& m_options;
    FindingCollector& m_findings;
    std::unordered_map<std::string_view, Text> m_firstTexts;  // by key
    SecretTexts m_texts;                                      // of all entries, for --shipped
    bool m_hasStored = false;
};

#endif
