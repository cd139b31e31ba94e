// What a line holds that was probably meant to be read, or to be protected, but is not.
#ifndef ORVALANGUAGE_TOOLS_DOCUMENT_NEARMISSES_H
#define ORVALANGUAGE_TOOLS_DOCUMENT_NEARMISSES_H

#include <functional>
#include <string_view>

#include "tools/orva-strings/document/StringsReader.h"

// Why the library does not read an entry or a header as it was meant.
enum class Obstacle { kNoSectionYet, kByteOrderMark, kCarriageReturn };

// Finds headers and protected entries in a line that the library does not read: those right after a
// byte-order mark or a carriage return, which ends no line, and a protected entry before the first
// section. Calls found with the key of each, in order.
void FindMisplaced(const StringsReader& lines,
                   const std::function<void(std::string_view key, Obstacle)>& found);

// Finds what was probably meant as a protected entry but is not one, other than what FindMisplaced
// finds, in a line's text. From its first letter, digit or underscore on, such a line, or such a
// part of it after a carriage return, has a one-word key that begins with "IDE", or with "ide" in
// any case and no letter after it. Then comes =, or a colon or blanks and a quote. Calls found with
// each, in order, with the key that was meant.
void FindNearProtected(std::string_view text,
                       const std::function<void(const StringsEntry&)>& found);

#endif
