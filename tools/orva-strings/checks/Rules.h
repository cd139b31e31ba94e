// What check looks for. Help, explain, the formats, the tests and docs/checks.md all use this table.
#ifndef ORVALANGUAGE_TOOLS_CHECKS_RULES_H
#define ORVALANGUAGE_TOOLS_CHECKS_RULES_H

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "tools/orva-strings/cli/Finding.h"

enum class Rule {
    // The file as a whole.
    kNoSection,
    kUtf16,
    kCarriageReturn,
    kNulByte,
    // Lines.
    kByteOrderMark,
    kConflictMarker,
    kNearHeader,
    kUnreadLine,
    kBeforeFirstSection,
    kNotUtf8,
    kControlByte,
    // Sections.
    kSectionName,
    kRepeatedSection,
    kMissingSection,
    // Keys.
    kShortKey,
    kKeyBlanks,
    kQuotedKey,
    kCommentedEntry,
    kDuplicateKey,
    kDuplicateEntry,
    kKeyCase,
    // Values.
    kOneQuote,
    kTextBeforeQuote,
    kSwallowedText,
    kTextAfterQuote,
    kUnquotedNewLine,
    kUnknownEscape,
    kTypographicQuotes,
    // Protected entries.
    kProtectedByChance,
    kNearProtected,
    kStoredText,
    kDamagedText,
    kProtectedTextsDiffer,
    kReadableText,
    kLeakedText,
    kDevelopmentKey,
    // Translations, compared with the reference.
    kPlaceholder,
    kMissingKey,
    kStale,
    kExtraKey,
    kEmptyText,
    kOuterBlanks,
    kMixedProtection,
    kEndPunctuation,
    kLineCount,
    kSameText,
    // Directives.
    kMaxLength,
    kBadDirective,
    kUnusedDirective,
    kCheckEnd,
    // What the command usage finds, not check.
    kUnknownKey = kCheckEnd,
    kBuiltKey,
    kUnusedKey,
    kEnd
};

// How many rules check has.
constexpr std::size_t kRuleCount = static_cast<std::size_t>(Rule::kCheckEnd);
constexpr std::size_t kAllRuleCount = static_cast<std::size_t>(Rule::kEnd);

// A file that breaks a rule, and the same file mended.
struct RuleExample {
    std::string_view wrong;
    std::string_view right;
    const char* options = "";       // of check, separated by blanks
    std::string_view earlier = {};  // the file for --base, if that is needed
};

struct RuleText {
    const char* name;
    std::optional<Severity> severity;  // nothing: off unless asked for
    const char* summary;               // what breaks the rule: a phrase without a full stop
    const char* explanation;           // what a host gets, and what to do: sentences
    RuleExample example;
};

const RuleText& TextOf(Rule rule);

// The rule of check with this name, if there is one.
std::optional<Rule> FindRule(std::string_view name);

// "; did you mean 'A'?" for a name that no rule has, or an empty text if no rule's name is near.
std::string DidYouMeanRule(std::string_view name);

// How severe each rule's findings are; nothing: the rule is off.
using RuleSeverities = std::array<std::optional<Severity>, kRuleCount>;

RuleSeverities DefaultSeverities();

using RuleFlags = std::array<bool, kRuleCount>;

#endif
