#include "tools/orva-strings/checks/Rules.h"

#include <algorithm>

#include "tools/orva-strings/cli/Nearest.h"

using namespace std::string_view_literals;  // for examples that hold NUL bytes

namespace {

constexpr auto kError = Severity::kError;
constexpr auto kWarning = Severity::kWarning;
constexpr auto kOff = std::nullopt;

// "Secret" and "Geheim", stored with the development key.
#define ORVA_SECRET "E5B33046BD92A503781D343F932D0D54C26BD0B57E67A6FCEE606B28133027E9"
#define ORVA_GEHEIM "0E1BB6599480C94DC59E21A3E95530EDE28DBC03D93C5D969FDBFC3E2A63E132"

// In the order of the enumeration.
const RuleText kRules[] = {
    {"no-section",
     kError,
     "a file without a section",
     "No load finds anything. A section begins with a line QVLANG=NAME.",
     {"MENU_OPEN=\"Open\"\n", "QVLANG=English\nMENU_OPEN=\"Open\"\n"}},
    {"utf-16",
     kError,
     "a file in UTF-16",
     "No load finds a section, since the library looks for headers byte by byte. Save the file in "
     "UTF-8, without a byte-order mark. Nothing else is checked in such a file.",
     {"\xFF\xFEQ\0V\0L\0A\0N\0G\0=\0e\0n\0\n\0"sv, "QVLANG=en\n"}},
    {"carriage-return",
     kError,
     "a file whose lines end in carriage returns only",
     "To the library, the whole file is a single line. End lines with a line feed. Nothing else is "
     "checked in such a file; 'orva-strings fix' mends it.",
     {"QVLANG=en\rMENU_OPEN=\"Open\"\r", "QVLANG=en\nMENU_OPEN=\"Open\"\n"}},
    {"nul-byte",
     kError,
     "a NUL byte",
     "A host sees a text up to its first NUL byte, and cannot look up a key that contains one.",
     {"QVLANG=en\nMENU_OPEN=\"Op\0en\"\n"sv, "QVLANG=en\nMENU_OPEN=\"Open\"\n"}},
    {"byte-order-mark",
     kError,
     "a byte-order mark at the start of a line",
     "The mark belongs to its line, so a header after it is not a header, and a key after it is "
     "another key. Editors write the mark at the start of a file; joining files leaves it in the "
     "middle. 'orva-strings fix' removes it.",
     {"\xEF\xBB\xBFQVLANG=en\nMENU_OPEN=\"Open\"\n", "QVLANG=en\nMENU_OPEN=\"Open\"\n"}},
    {"conflict-marker",
     kError,
     "a conflict marker of a version control system",
     "A merge was not finished, so entries of both sides are in the file and the first of each "
     "key counts.",
     {"QVLANG=en\nMENU_OPEN=\"Open\"\n>>>>>>> feature\n", "QVLANG=en\nMENU_OPEN=\"Open\"\n"}},
    {"near-header",
     kError,
     "a line that is nearly a header",
     "It opens no section: the entries below it belong to the section before, and the section that "
     "was meant can't be loaded. A header is QVLANG=NAME, in capitals, without a blank in front "
     "of it or before the equals sign.",
     {"QVLANG=en\nMENU_OPEN=\"Open\"\n QVLANG=de\nMENU_OPEN=\"Öffnen\"\n",
      "QVLANG=en\nMENU_OPEN=\"Open\"\nQVLANG=de\nMENU_OPEN=\"Öffnen\"\n"}},
    {"unread-line",
     kWarning,
     "a line in a section that is neither entry, blank nor comment",
     "The library ignores it. An entry needs an equals sign; mark a comment with # or //.",
     {"QVLANG=en\nMENU_OPEN \"Open\"\n", "QVLANG=en\nMENU_OPEN=\"Open\"\n"}},
    {"before-first-section",
     kWarning,
     "an entry before the first section",
     "It is never loaded. Move it below a header.",
     {"MENU_OPEN=\"Open\"\nQVLANG=en\nMENU_CLOSE=\"Close\"\n",
      "QVLANG=en\nMENU_OPEN=\"Open\"\nMENU_CLOSE=\"Close\"\n"}},
    {"not-utf-8",
     kWarning,
     "bytes that are not UTF-8",
     "The library passes them on as they are, and a host that expects UTF-8 shows something else, "
     "or nothing.",
     {"QVLANG=de\nMENU_OPEN=\"\xD6"
      "ffnen\"\n",
      "QVLANG=de\nMENU_OPEN=\"Öffnen\"\n"}},
    {"control-byte",
     kWarning,
     "a control character",
     "It becomes part of the key or the text. A line break is written \\n; a carriage return "
     "within "
     "a line ends no line.",
     {"QVLANG=en\nMENU_OPEN=\"Op\ben\"\n", "QVLANG=en\nMENU_OPEN=\"Open\"\n"}},
    {"section-name",
     kError,
     "a section's name that is empty, or has quotes or blanks around it",
     "The name is everything after the equals sign, so a host that asks for the name without them "
     "gets the first section instead.",
     {"QVLANG=\"en\"\nMENU_OPEN=\"Open\"\n", "QVLANG=en\nMENU_OPEN=\"Open\"\n"}},
    {"repeated-section",
     kError,
     "a section whose name an earlier one has",
     "It can never be loaded. Names are compared without regard to the case of ASCII letters. Move "
     "its entries to the first one.",
     {"QVLANG=en\nMENU_OPEN=\"Open\"\nQVLANG=EN\nMENU_CLOSE=\"Close\"\n",
      "QVLANG=en\nMENU_OPEN=\"Open\"\nMENU_CLOSE=\"Close\"\n"}},
    {"missing-section",
     kError,
     "a section that --require or --reference names and the file lacks",
     "A host that asks for it gets the first section instead.",
     {"QVLANG=en\nMENU_OPEN=\"Open\"\n",
      "QVLANG=en\nMENU_OPEN=\"Open\"\nQVLANG=de\nMENU_OPEN=\"Öffnen\"\n", "--require de"}},
    {"short-key",
     kError,
     "a key of fewer than four bytes",
     "The line is not an entry, so lookups of the key answer null. Choose a longer key.",
     {"QVLANG=en\nOK=\"OK\"\n", "QVLANG=en\nBTN_OK=\"OK\"\n"}},
    {"key-blanks",
     kError,
     "a key with blanks at its start or end",
     "They are part of the key, so lookups of the key without them answer null. Write the equals "
     "sign right after the key; 'orva-strings fix' does.",
     {"QVLANG=en\nMENU_OPEN = \"Open\"\n", "QVLANG=en\nMENU_OPEN=\"Open\"\n"}},
    {"quoted-key",
     kError,
     "a key in quotes",
     "The quotes are part of the key, so lookups of the key without them answer null.",
     {"QVLANG=en\n\"MENU_OPEN\"=\"Open\"\n", "QVLANG=en\nMENU_OPEN=\"Open\"\n"}},
    {"commented-entry",
     kWarning,
     "a comment that is an entry",
     "The format has no comments: any line with four bytes or more before an equals sign is an "
     "entry. It does no harm unless a host looks that key up, but it takes memory and, if it is "
     "protected, stays readable. Write the comment without an equals sign.",
     {"QVLANG=en\n// OLD_OPEN=\"Open\"\nMENU_OPEN=\"Open\"\n",
      "QVLANG=en\n// OLD_OPEN: \"Open\"\nMENU_OPEN=\"Open\"\n"}},
    {"duplicate-key",
     kError,
     "a key with two different texts in one section",
     "The first entry counts. Remove the other, or give it another key.",
     {"QVLANG=en\nMENU_OPEN=\"Open\"\nMENU_OPEN=\"Open file\"\n",
      "QVLANG=en\nMENU_OPEN=\"Open\"\n"}},
    {"duplicate-entry",
     kWarning,
     "the same entry twice in one section",
     "The second one does nothing until someone changes one of the two. 'orva-strings fix' removes "
     "it.",
     {"QVLANG=en\nMENU_OPEN=\"Open\"\nMENU_OPEN=\"Open\"\n", "QVLANG=en\nMENU_OPEN=\"Open\"\n"}},
    {"key-case",
     kWarning,
     "two keys in one section that differ only by case",
     "They are two entries: keys are compared byte by byte. Often one of them is a slip.",
     {"QVLANG=en\nMENU_OPEN=\"Open\"\nMenu_Open=\"Open\"\n", "QVLANG=en\nMENU_OPEN=\"Open\"\n"}},
    {"one-quote",
     kError,
     "a value with only one quote",
     "If the closing quote is missing, the text runs to the end of the line; if the opening one "
     "is, "
     "the text is what follows the closing one, usually nothing.",
     {"QVLANG=en\nMENU_OPEN=\"Open\n", "QVLANG=en\nMENU_OPEN=\"Open\"\n"}},
    {"text-before-quote",
     kError,
     "text between the equals sign and the first quote",
     "It is not part of the value and is lost. Put the whole text in quotes; quotes within it need "
     "no escape.",
     {"QVLANG=en\nASK_OVERWRITE=Overwrite \"it\"\n",
      "QVLANG=en\nASK_OVERWRITE=\"Overwrite \"it\"\"\n"}},
    {"swallowed-text",
     kWarning,
     "text that a later quote makes part of the value",
     "A value reaches to the last quote of its line. A quote in a note after it, or a second entry "
     "on the line, makes all before that part of the text. It is an error if a comment's mark "
     "follows the inner quote.",
     {"QVLANG=en\nMENU_OPEN=\"Open\" ; as in \"Open file\"\n",
      "QVLANG=en\n# as in \"Open file\"\nMENU_OPEN=\"Open\"\n"}},
    {"text-after-quote",
     kWarning,
     "text after the last quote",
     "It is not part of the value and is never shown. Put a note on a line of its own.",
     {"QVLANG=en\nMENU_OPEN=\"Open\" file\n", "QVLANG=en\nMENU_OPEN=\"Open file\"\n"}},
    {"unquoted-newline",
     kWarning,
     "a backslash and n in a value without quotes",
     "It is shown as these two characters, since escapes count only between quotes. It may be "
     "part of a path, so nothing mends it for you.",
     {"QVLANG=en\nASK_SAVE=Save?\\nReally?\n", "QVLANG=en\nASK_SAVE=\"Save?\\nReally?\"\n"}},
    {"unknown-escape",
     kWarning,
     "an escape that the format does not have",
     "It is shown as it is written: only \\n has a meaning. In \\\\n, the backslash stays and the "
     "rest becomes a line break. Quotes need no escape.",
     {"QVLANG=en\nASK_SAVE=\"Save \\\"it\\\"?\"\n", "QVLANG=en\nASK_SAVE=\"Save \"it\"?\"\n"}},
    {"typographic-quotes",
     kWarning,
     "typographic quotes around a value that has no others",
     "They become part of the text. An editor may have put them there; the format's quotes are the "
     "straight ones.",
     {"QVLANG=en\nMENU_OPEN=“Open”\n", "QVLANG=en\nMENU_OPEN=\"Open\"\n"}},
    {"protected-by-chance",
     kWarning,
     "a key whose first word only begins with IDE",
     "Every key that begins with IDE is protected: readable, its lookup answers null. If that is "
     "not meant, choose another key.",
     {"QVLANG=en\nIDEAS_TITLE=\"Ideas\"\n", "QVLANG=en\nTITLE_IDEAS=\"Ideas\"\n"}},
    {"near-protected",
     kWarning,
     "a readable entry that was probably meant as a protected one",
     "Only keys that begin with IDE, in capitals, are protected. This text stays readable when the "
     "file is protected.",
     {"QVLANG=en\nide_title=\"Secret\"\n", "QVLANG=en\nIDE_TITLE=\"Secret\"\n"}},
    {"stored-text",
     kWarning,
     "a protected entry in its stored form",
     "Nobody can read or translate it. Keep readable texts in the source file, and protect a copy "
     "for the release. With --shipped, this is what is expected.",
     {"QVLANG=en\nIDE_TITLE=\"" ORVA_SECRET "\"\n", "QVLANG=en\nIDE_TITLE=\"Secret\"\n"}},
    {"damaged-text",
     kError,
     "a value that looks stored, or nearly, and does not decode",
     "Its lookup answers null. It was damaged, or made with another key.",
     {"QVLANG=en\nIDE_TITLE=\"F" ORVA_SECRET "\"\n", "QVLANG=en\nIDE_TITLE=\"Secret\"\n"}},
    {"protected-texts-differ",
     kWarning,
     "a protected key whose text is not the same in every section",
     "The library keeps the text that it decoded first for as long as the process runs, even if "
     "the host loads another language. Use a key for each language, or one text for all.",
     {"QVLANG=en\nIDE_TITLE=\"Secret\"\nQVLANG=de\nIDE_TITLE=\"Geheim\"\n",
      "QVLANG=en\nIDE_TITLE=\"Secret\"\nQVLANG=de\nIDE_TITLE=\"Secret\"\n"}},
    {"readable-text",
     kError,
     "with --shipped, a protected entry that is readable",
     "Its lookup answers null, and everyone who has the file can read it. 'orva-strings protect' "
     "stores it.",
     {"QVLANG=en\nIDE_TITLE=\"Secret\"\n", "QVLANG=en\nIDE_TITLE=\"" ORVA_SECRET "\"\n",
      "--shipped --allow-development-key"}},
    {"leaked-text",
     kError,
     "with --shipped, a protected text that is readable elsewhere in the file",
     "Everyone who has the file can read it: in a comment or another line that is not an entry, in "
     "a "
     "line that is nearly a protected entry, before the first section, or as the whole text of "
     "another key. Remove it. Within longer lines, only texts of eight bytes or more are found.",
     {"QVLANG=en\n# was: Secret\nIDE_TITLE=\"" ORVA_SECRET "\"\n",
      "QVLANG=en\nIDE_TITLE=\"" ORVA_SECRET "\"\n", "--shipped --allow-development-key"}},
    {"development-key",
     kError,
     "with --shipped, texts stored with the development key",
     "The development key is public: anyone can read the texts. Build with a key of your own, or "
     "give --allow-development-key.",
     {"QVLANG=en\nIDE_TITLE=\"" ORVA_SECRET "\"\n", "QVLANG=en\nMENU_OPEN=\"Open\"\n",
      "--shipped"}},
    {"placeholder",
     kError,
     "a translation whose placeholders are not those of the reference",
     "A host that fills them in shows something wrong, or crashes. Compared are those of printf, "
     "%@, %1, %(name)s, {0} and {name}; their order counts only if they have no number or name.",
     {"QVLANG=en\nFILE_COUNT=\"%d files\"\nQVLANG=de\nFILE_COUNT=\"%s Dateien\"\n",
      "QVLANG=en\nFILE_COUNT=\"%d files\"\nQVLANG=de\nFILE_COUNT=\"%d Dateien\"\n"}},
    {"missing-key",
     kWarning,
     "a key that the reference has and a translation lacks",
     "In that language, its lookup answers null, not the reference's text. It is an error in a "
     "section that --require names. Each is reported at the section's header.",
     {"QVLANG=en\nMENU_OPEN=\"Open\"\nQVLANG=de\nMENU_QUIT=\"Beenden\"\n",
      "QVLANG=en\nMENU_OPEN=\"Open\"\nQVLANG=de\nMENU_OPEN=\"Öffnen\"\n", "--disable extra-key"}},
    {"stale",
     kWarning,
     "with --base, a translation of a text that has changed since",
     "The reference's text is not what it was in the earlier file, but the translation is.",
     {"QVLANG=en\nMENU_OPEN=\"Open…\"\nQVLANG=de\nMENU_OPEN=\"Öffnen\"\n",
      "QVLANG=en\nMENU_OPEN=\"Open…\"\nQVLANG=de\nMENU_OPEN=\"Öffnen …\"\n", "",
      "QVLANG=en\nMENU_OPEN=\"Open\"\nQVLANG=de\nMENU_OPEN=\"Öffnen\"\n"}},
    {"extra-key",
     kWarning,
     "a key that the reference lacks",
     "It may be misspelt, or left over. In the reference's language, its lookup answers null.",
     {"QVLANG=en\nMENU_OPEN=\"Open\"\nQVLANG=de\nMENU_OPEN=\"Öffnen\"\nMENU_QUIT=\"Beenden\"\n",
      "QVLANG=en\nMENU_OPEN=\"Open\"\nQVLANG=de\nMENU_OPEN=\"Öffnen\"\n"}},
    {"empty-text",
     kWarning,
     "an empty text whose reference is not empty",
     "Its lookup answers an empty text, not the reference's.",
     {"QVLANG=en\nMENU_OPEN=\"Open\"\nQVLANG=de\nMENU_OPEN=\"\"\n",
      "QVLANG=en\nMENU_OPEN=\"Open\"\nQVLANG=de\nMENU_OPEN=\"Öffnen\"\n"}},
    {"outer-blanks",
     kWarning,
     "blanks or line breaks at the ends of a text that are not those of the reference",
     "Texts that a host joins run together or apart.",
     {"QVLANG=en\nLABEL_NAME=\"Name: \"\nQVLANG=de\nLABEL_NAME=\"Name:\"\n",
      "QVLANG=en\nLABEL_NAME=\"Name: \"\nQVLANG=de\nLABEL_NAME=\"Name: \"\n"}},
    {"mixed-protection",
     kWarning,
     "a protected entry that is stored in one section and readable in another",
     "Of one of them, the lookup answers null or a translator sees nothing. Reveal or protect the "
     "whole file.",
     {"QVLANG=en\nIDE_TITLE=\"Secret\"\nQVLANG=de\nIDE_TITLE=\"" ORVA_SECRET "\"\n",
      "QVLANG=en\nIDE_TITLE=\"Secret\"\nQVLANG=de\nIDE_TITLE=\"Secret\"\n"}},
    {"end-punctuation",
     kOff,
     "a text that does not end with the punctuation of the reference",
     "A sentence, a question or a label was translated as another kind of text.",
     {"QVLANG=en\nLABEL_NAME=\"Name:\"\nQVLANG=de\nLABEL_NAME=\"Name\"\n",
      "QVLANG=en\nLABEL_NAME=\"Name:\"\nQVLANG=de\nLABEL_NAME=\"Name:\"\n",
      "--warn end-punctuation"}},
    {"line-count",
     kOff,
     "a text with more or fewer lines than the reference",
     "It may not fit where the host shows it.",
     {"QVLANG=en\nASK_SAVE=\"Save?\\nReally?\"\nQVLANG=de\nASK_SAVE=\"Wirklich sichern?\"\n",
      "QVLANG=en\nASK_SAVE=\"Save?\\nReally?\"\nQVLANG=de\nASK_SAVE=\"Sichern?\\nWirklich?\"\n",
      "--warn line-count"}},
    {"same-text",
     kOff,
     "a text that is the same as the reference's",
     "It may not have been translated.",
     {"QVLANG=en\nMENU_OPEN=\"Open\"\nQVLANG=de\nMENU_OPEN=\"Open\"\n",
      "QVLANG=en\nMENU_OPEN=\"Open\"\nQVLANG=de\nMENU_OPEN=\"Öffnen\"\n", "--warn same-text"}},
    {"max-length",
     kError,
     "a text that is longer than a directive allows",
     "The line '# orva: max-length 12' before an entry limits the text of its key to 12 "
     "characters, in every section.",
     {"QVLANG=en\n# orva: max-length 6\nMENU_OPEN=\"Open\"\nQVLANG=de\nMENU_OPEN=\"Öffnen …\"\n",
      "QVLANG=en\n# orva: max-length 6\nMENU_OPEN=\"Open\"\nQVLANG=de\nMENU_OPEN=\"Öffnen\"\n"}},
    {"bad-directive",
     kWarning,
     "a directive that can't be followed, or is an entry itself",
     "A directive is a comment: '# orva: disable-next-line RULE', '# orva: max-length NUMBER' or, "
     "right below a section's header, '# orva: language CODE'. It contains no equals sign.",
     {"QVLANG=en\n# orva: max-length twelve\nMENU_OPEN=\"Open\"\n",
      "QVLANG=en\n# orva: max-length 12\nMENU_OPEN=\"Open\"\n"}},
    {"unused-directive",
     kWarning,
     "a directive that has no effect where it stands",
     "What it was for is gone, or on another line. Remove it, before it hides something else.",
     {"QVLANG=en\n# orva: disable-next-line key-blanks\nMENU_OPEN=\"Open\"\n",
      "QVLANG=en\nMENU_OPEN=\"Open\"\n"}},
};
static_assert(std::size(kRules) == kRuleCount);

constexpr RuleText kUsageRules[] = {
    {"unknown-key",
     kError,
     "a key in a host's source that the reference lacks",
     "A lookup of it answers null. Correct the key, or add it to the strings file.",
     {}},
    {"built-key",
     Severity::kNote,
     "the beginning of keys that a host puts together at run time",
     "The keys that begin so and that no source has whole are not reported as unused.",
     {}},
    {"unused-key",
     kWarning,
     "a key that no source of the host mentions",
     "Remove it, or keep it with --keep if hosts get it elsewhere.",
     {}},
};
static_assert(std::size(kUsageRules) == kAllRuleCount - kRuleCount);

}  // namespace

const RuleText& TextOf(Rule rule) {
    const auto index = static_cast<std::size_t>(rule);
    return index < kRuleCount ? kRules[index] : kUsageRules[index - kRuleCount];
}

std::optional<Rule> FindRule(std::string_view name) {
    const auto* const found = std::find_if(std::begin(kRules), std::end(kRules),
                                           [&](const RuleText& rule) { return rule.name == name; });
    return found != std::end(kRules)
               ? std::optional<Rule>(static_cast<Rule>(found - std::begin(kRules)))
               : std::nullopt;
}

std::string DidYouMeanRule(std::string_view name) {
    Nearest nearest(name);
    for (const RuleText& rule : kRules) {
        nearest.Offer(rule.name);
    }
    return nearest.DidYouMean();
}

RuleSeverities DefaultSeverities() {
    RuleSeverities severities;
    std::transform(std::begin(kRules), std::end(kRules), severities.begin(),
                   [](const RuleText& rule) { return rule.severity; });
    return severities;
}
