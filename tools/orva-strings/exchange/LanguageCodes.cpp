#include "tools/orva-strings/exchange/LanguageCodes.h"

#include <algorithm>
#include <utility>

#include "tools/orva-strings/Ascii.h"
#include "tools/orva-strings/cli/UsageError.h"
#include "tools/orva-strings/document/Directive.h"
#include "tools/orva-strings/document/SectionNames.h"

namespace {

// Equal for names that the library takes for equal.
std::string Folded(std::string_view name) {
    std::string folded(ComparedName(name));
    std::transform(folded.begin(), folded.end(), folded.begin(), ToLower);
    return folded;
}

std::optional<std::string> Find(const std::map<std::string, std::string>& texts,
                                std::string_view name) {
    const auto found = texts.find(Folded(name));
    return found != texts.end() ? std::optional(found->second) : std::nullopt;
}

}  // namespace

LanguageCodes::LanguageCodes(const std::vector<std::string>& arguments, StringsReader lines,
                             Findings& findings) {
    for (const std::string& argument : arguments) {
        AddArgument(argument);
    }
    AddDirectives(std::move(lines), findings);
}

void LanguageCodes::AddArgument(const std::string& argument) {
    const std::size_t equals = std::min(argument.rfind('='), argument.size());
    const std::string section = argument.substr(0, equals);
    std::string problem = "is not SECTION=CODE";
    if (equals < argument.size() && !section.empty()) {
        problem = CodeOf(section) ? "gives the section a second code"
                                  : Add(section, argument.substr(equals + 1));
    }
    if (!problem.empty()) {
        throw UsageError("--code: '" + argument + "' " + problem);
    }
}

void LanguageCodes::AddDirectives(StringsReader lines, Findings& findings) {
    const auto arguments = m_codes;
    SectionNames names;
    std::string_view section;
    bool isReachable = false;
    bool isBelowHeader = false;
    while (lines.Next()) {
        if (lines.IsHeader()) {
            section = lines.SectionName();
            isReachable = names.Add(section);
        }
        const auto directive = ReadDirective(lines.Line().text);
        if (isBelowHeader && isReachable && directive && directive->name == kLanguageDirective &&
            !Find(arguments, section)) {
            const std::string problem = CodeOf(section) ? "gives the section a second code"
                                                        : Add(section, directive->value);
            if (!problem.empty()) {
                findings.push_back(
                    {Severity::kError, lines.Line().number,
                     "the directive 'language " + std::string(directive->value) + "' " + problem});
            }
        }
        isBelowHeader = IsRightBelowHeader(lines, isBelowHeader);
    }
}

std::string LanguageCodes::Add(std::string_view section, std::string_view code) {
    if (!IsLanguageCode(code)) {
        return "has no language code, such as de, pt-BR or zh-Hant";
    }
    const auto [place, isNew] = m_sections.emplace(Folded(code), section);
    if (!isNew) {
        return "gives the section a code that " + place->second + " has";
    }
    m_codes.emplace(Folded(section), code);
    return "";
}

std::optional<std::string> LanguageCodes::CodeOf(std::string_view section) const {
    return Find(m_codes, section);
}

std::optional<std::string> LanguageCodes::SectionOf(std::string_view code) const {
    return Find(m_sections, code);
}
