#ifndef ORVALANGUAGE_TOOLS_CHECKS_CHECKSTRINGS_H
#define ORVALANGUAGE_TOOLS_CHECKS_CHECKSTRINGS_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "protection/ProtectedForm.h"
#include "tools/orva-strings/checks/RuleFinding.h"

struct CheckOptions {
    const ProtectionKeys& keys;     // must outlive the object
    bool isDevelopmentKey = false;  // whether they are derived from the development key, and
                                    // that is not allowed
    bool isShipped = false;         // the file is to be shipped as it is
    std::string reference = {};     // the section that others are compared with; empty: the first
    std::vector<std::string> required = {};     // sections that must exist and have every key
    std::optional<std::string_view> base = {};  // the bytes of an earlier state of the file
    RuleSeverities severities = DefaultSeverities();
};

// Finds what breaks the rules in the bytes of a strings file. Findings about the whole file come
// first, the others in the order of their lines.
RuleFindings CheckStrings(const std::string& bytes, const CheckOptions& options);

#endif
