#ifndef ORVALANGUAGE_TOOLS_CHECKS_BASELINE_H
#define ORVALANGUAGE_TOOLS_CHECKS_BASELINE_H

#include <cstddef>
#include <map>
#include <string>
#include <string_view>

#include "tools/orva-strings/checks/RuleFinding.h"

// Findings that are known and not reported any more. A finding is the same as before if its rule,
// section and key are the same, wherever its line is now.
//
// Its text is a heading and a line for each finding, in order: rule, section and key, separated by
// tabs and escaped by Printable. So it can be compared and merged like any text.
class Baseline {
public:
    Baseline() = default;

    static bool IsBaseline(std::string_view text);

    // Reads a baseline's text; name is for the message. Throws std::runtime_error if it is
    // not a baseline.
    Baseline(std::string_view text, const std::string& name);

    // Adds findings to the baseline.
    void Add(const RuleFindings& findings);

    // Removes the findings that the baseline has, each as many times as the baseline has it, from
    // the list, and from the baseline.
    void RemoveKnown(RuleFindings& findings);

    std::string Text() const;

private:
    std::map<std::string, std::size_t> m_counts;  // by line
};

#endif
