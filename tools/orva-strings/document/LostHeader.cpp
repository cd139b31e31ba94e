#include "tools/orva-strings/document/LostHeader.h"

#include <string>
#include <string_view>

#include "tools/orva-strings/document/LineText.h"
#include "tools/orva-strings/document/NearHeader.h"
#include "tools/orva-strings/document/NearMisses.h"

namespace {

const char* WhyLost(HeaderFault fault) {
    switch (fault) {
        case HeaderFault::kBlankInFront:
            return "blanks come before it";
        case HeaderFault::kBlankBeforeEquals:
            return "blanks come before its equals sign";
        case HeaderFault::kCase:
            return "QVLANG must be in capital letters";
        case HeaderFault::kMisspelt:
            break;
    }
    return "QVLANG is misspelt";
}

Finding LostHeader(const StringsReader& lines, Severity severity, std::string_view name,
                   const char* why) {
    return {severity, lines.Line().number,
            "this looks like the header of section '" + std::string(name) +
                "' but is not read as one: " + why};
}

}  // namespace

void FindLostHeaders(const StringsReader& lines, Findings& findings) {
    const std::string_view text = lines.Line().text;
    FindMisplaced(lines, [&](std::string_view key, Obstacle obstacle) {
        const std::string_view header =
            text.substr(static_cast<std::size_t>(key.data() - text.data()));
        if (IsHeader(header)) {
            std::string_view name = header.substr(key.size() + 1);
            name = name.substr(0, name.find('\r'));
            findings.push_back(LostHeader(lines, Severity::kError, name,
                                          obstacle == Obstacle::kByteOrderMark
                                              ? "a byte-order mark comes right before it"
                                              : "it follows a carriage return, which does not end "
                                                "a line"));
        }
    });
    if (const auto near = FindNearHeader(WithoutByteOrderMarks(text))) {
        findings.push_back(LostHeader(lines,
                                      near->isUnmistakable ? Severity::kError : Severity::kWarning,
                                      near->name, WhyLost(near->fault)));
    }
}
