#include "tools/orva-strings/document/FindSection.h"

#include <utility>

#include <OrvaLanguage/KorString.h>

#include "strings/Line.h"
#include "tools/orva-strings/cli/Nearest.h"
#include "tools/orva-strings/document/Directive.h"
#include "tools/orva-strings/document/LostHeader.h"
#include "tools/orva-strings/document/NoSection.h"

std::optional<StringsReader> FindSection(std::string_view bytes, const std::string& language,
                                         bool hasFallback, Findings& findings) {
    std::optional<StringsReader> first;
    Nearest nearest(language);
    Findings lost;
    StringsReader lines(bytes);
    std::string_view section;
    bool isBelowHeader = false;
    while (lines.Next()) {
        const auto directive = ReadDirective(lines.Line().text);
        if (isBelowHeader && directive && directive->name == kLanguageDirective) {
            nearest.Offer(section, directive->value);
        }
        isBelowHeader = IsRightBelowHeader(lines, isBelowHeader);
        if (!lines.IsHeader()) {
            FindLostHeaders(lines, lost);
            continue;
        }
        section = lines.SectionName();
        if (IsHeader(lines.Line().text, KorString::LANG_STATEMENT, language.c_str())) {
            return lines;
        }
        first = first ? first : lines;
        nearest.Offer(section);
    }
    findings = AsWarnings(std::move(lost));
    if (!first) {
        findings.push_back(NoSection());
        return std::nullopt;
    }
    findings.push_back({hasFallback ? Severity::kNote : Severity::kError, std::nullopt,
                        "there is no section " + language +
                            (hasFallback ? ", so this is the first section" : "") +
                            nearest.DidYouMean()});
    return hasFallback ? first : std::nullopt;
}
