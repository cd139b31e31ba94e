#ifndef ORVALANGUAGE_TOOLS_DOCUMENT_NEARHEADER_H
#define ORVALANGUAGE_TOOLS_DOCUMENT_NEARHEADER_H

#include <optional>
#include <string_view>

// What is wrong with a line that was probably meant as a header. If several things are, the last of
// them here.
enum class HeaderFault { kBlankInFront, kBlankBeforeEquals, kCase, kMisspelt };

struct NearHeader {
    HeaderFault fault;
    std::string_view name;  // of the section that was meant; see MeantSectionName
    bool isUnmistakable;    // whether it can't have been meant otherwise
};

// What a line's text, without byte-order marks, was meant as if it nearly is a header: blanks beside
// the keyword, its letters in another case, or one letter missing, added or another, or two swapped.
// A line that looks like a comment was meant as one.
std::optional<NearHeader> FindNearHeader(std::string_view text);

// The name that was meant, in a header's name as written: without blanks and tabs at its ends, and
// without a pair of quotes around it if those are the only ones.
std::string_view MeantSectionName(std::string_view name);

#endif
