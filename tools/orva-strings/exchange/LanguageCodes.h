#ifndef ORVALANGUAGE_TOOLS_EXCHANGE_LANGUAGECODES_H
#define ORVALANGUAGE_TOOLS_EXCHANGE_LANGUAGECODES_H

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/orva-strings/cli/Finding.h"
#include "tools/orva-strings/document/StringsReader.h"

// The language codes of sections, such as "de" for Deutsch, by which translators' programs know
// languages. A section's name says nothing about its code. An argument does, such as "Deutsch=de", or
// the directive "language de" right below the section's header; the argument has precedence. Names
// and codes are the same in either case of ASCII letters. No two sections have the same code.
class LanguageCodes {
public:
    // The arguments may name sections that the file does not have. lines is at the start of the
    // file. Adds an error for each directive that gives no code, one that another section has, or a
    // second one to its section. Throws UsageError if an argument does.
    LanguageCodes(const std::vector<std::string>& arguments, StringsReader lines,
                  Findings& findings);

    // The code of a section. Nothing if it has none.
    std::optional<std::string> CodeOf(std::string_view section) const;

    // The name of the section that has a code. Nothing if none has it.
    std::optional<std::string> SectionOf(std::string_view code) const;

private:
    void AddArgument(const std::string& argument);
    void AddDirectives(StringsReader lines, Findings& findings);

    // Returns why the code can't be that of the section, or an empty text.
    std::string Add(std::string_view section, std::string_view code);

    std::map<std::string, std::string> m_codes;     // by the section's name, folded
    std::map<std::string, std::string> m_sections;  // by the code, folded
};

#endif
