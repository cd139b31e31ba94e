#ifndef ORVALANGUAGE_TOOLS_PAGE_TRANSLATIONPAGE_H
#define ORVALANGUAGE_TOOLS_PAGE_TRANSLATIONPAGE_H

#include <string>
#include <string_view>

#include "tools/orva-strings/checks/RuleFinding.h"
#include "tools/orva-strings/checks/Translations.h"
#include "tools/orva-strings/system/Files.h"

// What every page begins with.
constexpr std::string_view kPageBegin =
    "<!DOCTYPE html>\n<html lang=\"en\">\n<!-- Written by orva-strings report. -->\n";

// The part of the page about one file, given its bytes. No text of a protected entry, or of what was
// probably meant as one, is in it.
std::string FilePart(const std::string& file, std::string_view bytes,
                     const Translations& translations, const RuleFindings& findings);

// Calls take with the whole page with these parts. It loads nothing, and runs no script but its own.
void WritePage(const std::string& parts, const TakePiece& take);

#endif
