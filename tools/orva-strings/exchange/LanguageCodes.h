#ifndef ORVALANGUAGE_TOOLS_EXCHANGE_LANGUAGECODES_H
#define ORVALANGUAGE_TOOLS_EXCHANGE_LANGUAGECODES_H

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/orva-strings/cli/Finding.h"
#include "tools/orva-strings/document/StringsReader.h"

class LanguageCodes {
public:
    LanguageCodes(const std::vector<std::string>& codes, StringsReader lines, Findings& findings);
    std::optional<std::string> CodeOf(std::string_view section) const;
    std::optional<std::string> SectionOf(std::string_view code) const;

private:
    std::vector<std::pair<std::string, std::string>> m_codes;
};

#endif
