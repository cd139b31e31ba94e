#ifndef ORVALANGUAGE_TOOLS_HOSTS_KEYUSAGE_H
#define ORVALANGUAGE_TOOLS_HOSTS_KEYUSAGE_H

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "tools/orva-strings/formats/Report.h"
#include "tools/orva-strings/hosts/HostKeys.h"
#include "tools/orva-strings/hosts/SourceReader.h"

struct UsageOptions {
    std::vector<std::string> calls;  // more functions whose first argument is a key, as IsCallName
    std::string scope;               // of constants; empty: the default
    std::vector<std::string> kept;   // patterns of fnmatch(3) for keys that are used elsewhere
};

// Whether a function may have this name: words with :: or . between them.
bool IsCallName(std::string_view name);

// Finds which keys of a section a host's sources mention. A key is mentioned by a string literal that
// is the key, or by the name of its constant: a macro, a qualified name or, if any source uses the
// namespace of the constants, any word.
class KeyUsage {
public:
    // The options and what the keys refer to must outlive the object.
    KeyUsage(std::vector<HostKey> keys, const UsageOptions& options);

    // Reads a source. Finds the literals in calls that are not keys.
    void Read(const std::string& file, std::string_view bytes, SourceLanguage language);

    // What was found in each source, and then in the strings file: its keys that no source mentions.
    // Call at the end.
    Report Finish(const std::string& stringsFile);

private:
    struct Built {  // the beginning of keys that are put together at run time
        std::string text;
        std::size_t file;  // in the report
        Place place;
    };
    class Scan;

    bool Mention(std::string_view key);
    using Constants = std::unordered_multimap<std::string, std::size_t>;  // by name
    void MentionConstant(const std::string& word, bool isQualified);
    void MentionAll(const std::string& word, Constants& constants);
    void UseNamespace(const std::string& name);
    bool IsCall(std::string_view name) const;
    bool IsBeginning(std::string_view text) const;
    void AddBuilt(std::string_view text, const Place& place);
    void AddUnknown(std::string_view text, const Place& place);
    void AddUnknownBeginning(std::string_view text, const Place& place);
    void ReportBuilt(const Built& built);
    std::string NearKeys(std::string_view text);

    const UsageOptions& m_options;
    std::vector<HostKey> m_keys;
    std::vector<bool> m_areMentioned;
    std::unordered_map<std::string_view, std::size_t> m_indexes;
    Constants m_macros;                           // of C
    Constants m_names;                            // of C++ and Swift
    std::unordered_set<std::string> m_bareNames;  // of m_names, where nothing qualifies them
    bool m_usesNamespace = false;
    std::vector<std::size_t> m_sorted;  // by key
    std::unordered_set<std::string> m_calls;
    std::vector<Built> m_built;
    std::unordered_set<std::string> m_builtTexts;
    std::unordered_map<std::string, std::string> m_near;  // what was found near unknown keys
    std::size_t m_compared = 0;                           // keys, to find that
    Report m_report;
};

#endif
