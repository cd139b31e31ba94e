#include "tools/orva-strings/exchange/LanguageCodes.h"

#include "strings/Line.h"
#include "tools/orva-strings/cli/UsageError.h"

LanguageCodes::LanguageCodes(const std::vector<std::string>& codes, StringsReader, Findings&) {
    for (const std::string& code : codes) {
        const std::size_t at = code.rfind('=');
        if (at == std::string::npos || at == 0 || at + 1 == code.size()) {
            throw UsageError("--code: '" + code + "' is not SECTION=CODE");
        }
        m_codes.emplace_back(code.substr(0, at), code.substr(at + 1));
    }
}

std::optional<std::string> LanguageCodes::CodeOf(std::string_view section) const {
    for (const auto& [name, code] : m_codes) {
        if (IsName(section, name.c_str())) {
            return code;
        }
    }
    return std::nullopt;
}

std::optional<std::string> LanguageCodes::SectionOf(std::string_view wanted) const {
    for (const auto& [name, code] : m_codes) {
        if (IsName(wanted, code.c_str())) {
            return name;
        }
    }
    return std::nullopt;
}
