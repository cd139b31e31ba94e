#ifndef ORVALANGUAGE_TOOLS_CHECKS_CHECKSTRINGS_H
#define ORVALANGUAGE_TOOLS_CHECKS_CHECKSTRINGS_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "protection/ProtectedForm.h"
#include "tools/orva-strings/checks/RuleFinding.h"

struct CheckOptions {
    explicit CheckOptions(const ProtectionKeys& protectionKeys) : keys(protectionKeys) {}

    const ProtectionKeys& keys;  // must outlive the object
    bool rejectsKey = false;     // whether these keys must not be used for a release
    bool isShipped = false;      // whether the file is to be shipped as it is
    std::string reference;       // the section that others are compared with; empty: the first
    std::vector<std::string> required;     // the sections that must exist and have every key
    std::optional<std::string_view> base;  // the bytes of an earlier state of the file
    RuleSeverities severities = DefaultSeverities();
    RuleFlags areChosen = {};  // whose severity is the same for all findings
};

// Finds what breaks the rules in the bytes of a strings file. Findings about the whole file come
// first, the others in the order of their places.
RuleFindings CheckStrings(std::string_view bytes, const CheckOptions& options);

#endif
