// What check finds in the bytes of a file, and where.
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/StoredForm.h"
#include "tools/orva-strings/checks/CheckStrings.h"
#include "tools/orva-strings/protection/MasterKey.h"

using namespace std::string_literals;  // for texts that hold NUL bytes

namespace {

using Set = std::function<void(CheckOptions&)>;

RuleFindings Find(
    std::string_view bytes, const Set& set = [](CheckOptions&) {}) {
    const ProtectionKeys keys = MasterKey::BuiltIn().Derive();
    CheckOptions options(keys);
    set(options);
    return CheckStrings(bytes, options);
}

// The findings' places, severities and rules, in order: "2:1 error short-key", each with a line feed.
std::string Check(
    std::string_view bytes, const Set& set = [](CheckOptions&) {}) {
    std::string found;
    for (const RuleFinding& finding : Find(bytes, set)) {
        if (finding.place) {
            found += std::to_string(finding.place->line + 1) + ':' +
                     std::to_string(finding.place->column + 1) + ' ';
        }
        found += finding.severity == Severity::kError ? "error " : "warning ";
        found += TextOf(finding.rule).name;
        found += '\n';
    }
    return found;
}

// The findings in a line within a section.
std::string CheckLine(const std::string& line) {
    return Check("QVLANG=en\n" + line + '\n');
}

// The sentence of the only finding.
std::string Sentence(
    std::string_view bytes, const Set& set = [](CheckOptions&) {}) {
    const RuleFindings findings = Find(bytes, set);
    return findings.size() == 1 ? findings[0].text : std::to_string(findings.size()) + " findings";
}

void Ship(CheckOptions& options) {
    options.isShipped = true;
}

Set Enable(Rule rule) {
    return [rule](CheckOptions& options) {
        options.severities[static_cast<std::size_t>(rule)] = Severity::kWarning;
    };
}

const Bytes kKey = DevelopmentKey();

TEST(CheckStrings, FindsNothingInARightFile) {
    EXPECT_EQ(
        Check("Notes: see x = y\nQVLANG=en\n\n# comment\n// comment\n; comment\n/* c */\n-- c\n"
              "MENU_OPEN=\"Open\"\nASK_SAVE=\"Save?\\nReally?\"\nIDE_TITLE=\"Title\"\n"
              "QVLANG=de\nMENU_OPEN=\"Öffnen\"\nASK_SAVE=\"Sichern?\\nWirklich?\"\n"
              "IDE_TITLE=\"Title\"\n"),
        "");
    EXPECT_EQ(Check("QVLANG=en\r\nMENU_OPEN=\"Open\"\r\n"), "");
    EXPECT_EQ(Check("QVLANG=en\nMENU_OPEN=\"Open\""), "");
    EXPECT_EQ(Check("QVLANG=en\r"), "") << "one line, whose ending is a carriage return";
}

TEST(CheckStrings, FindsFilesWithoutASection) {
    EXPECT_EQ(Check(""), "error no-section\n");
    EXPECT_EQ(Check("MENU_OPEN=\"Open\"\n"), "error no-section\n");
    EXPECT_EQ(Check("QVLAND=\"Open\"\n"), "error no-section\n1:1 error near-header\n");
}

TEST(CheckStrings, FindsUtf16) {
    EXPECT_EQ(Check("\xFF\xFEQ\0"s), "error utf-16\n");
    EXPECT_EQ(Check("\xFE\xFF\0Q"s), "error utf-16\n");
    EXPECT_EQ(Check("Q\0V\0"s), "error utf-16\n");
    EXPECT_EQ(Check("\0Q\0V"s), "error utf-16\n");
    EXPECT_EQ(Check("QVLANG=en\nAAAA=\"\0\0\"\n"s), "2:7 error nul-byte\n");
    EXPECT_EQ(Check("\0"s), "error no-section\n1:1 error nul-byte\n");
    EXPECT_EQ(Check("\0\0\0\0"s), "error no-section\n1:1 error nul-byte\n");
    EXPECT_EQ(Check("Q"), "error no-section\n");
}

TEST(CheckStrings, FindsCarriageReturnsAsLineEnds) {
    EXPECT_EQ(Check("QVLANG=en\rMENU_OPEN=\"Open\"\r"), "error carriage-return\n");
    EXPECT_EQ(Check("\rMENU_OPEN=\"Open\""), "error carriage-return\n");
    EXPECT_EQ(Check("QVLANG=en\nMENU=\"Open\rFile\"\n"), "2:11 warning control-byte\n");
    EXPECT_EQ(Check("\r"), "error no-section\n");
}

TEST(CheckStrings, FindsByteOrderMarks) {
    EXPECT_EQ(Check("\xEF\xBB\xBFQVLANG=en\nMENU=\"Open\"\n"), "1:1 error byte-order-mark\n");
    EXPECT_EQ(Check("QVLANG=en\n\xEF\xBB\xBFMENU=\"Open\"\n"), "2:1 error byte-order-mark\n");
    EXPECT_EQ(Check("QVLANG=en\nMENU=\"\xEF\xBB\xBFOpen\"\n"), "") << "not at a line's start";
}

TEST(CheckStrings, FindsBytesThatAreNoText) {
    EXPECT_EQ(CheckLine("MENU=\"Op\x1B"
                        "en\""),
              "2:9 warning control-byte\n");
    EXPECT_EQ(CheckLine("MENU=\"Op\x7F"
                        "en\""),
              "2:9 warning control-byte\n");
    EXPECT_EQ(CheckLine("MENU=\"Op\ten\""), "");
    EXPECT_EQ(CheckLine("MENU=\"\xD6"
                        "ffnen\""),
              "2:7 warning not-utf-8\n");
    EXPECT_EQ(CheckLine("MENU=\"\xC3\""), "2:7 warning not-utf-8\n");
    EXPECT_EQ(CheckLine("MENU=\"ÖÖ\xED\xA0\x80\""), "2:9 warning not-utf-8\n");
    EXPECT_EQ(Sentence("QVLANG=en\nMENU=\"\x1B\"\n"),
              "the control character 1B is part of what the library reads; remove it");
    EXPECT_EQ(Sentence("QVLANG=en\nMENU=\"\xD6\"\n"),
              "the byte D6 is not UTF-8, and a host gets it as it is; save the file in UTF-8");
}

TEST(CheckStrings, CountsColumnsInCharacters) {
    EXPECT_EQ(CheckLine("ÄÖÜß=\"\xFF\xFF\x01\""),
              "2:7 warning not-utf-8\n2:9 warning control-byte\n");
}

TEST(CheckStrings, FindsConflicts) {
    EXPECT_EQ(Check("QVLANG=en\n<<<<<<< HEAD\nMENU=\"a\"\n||||||| base\nMENU=\"b\"\n=======\n"
                    "MENU=\"c\"\n>>>>>>> other\n"),
              "2:1 error conflict-marker\n4:1 error conflict-marker\n5:1 error duplicate-key\n"
              "6:1 error conflict-marker\n7:1 error duplicate-key\n8:1 error conflict-marker\n");
    EXPECT_EQ(CheckLine("======="), "2:1 error conflict-marker\n");
    EXPECT_EQ(CheckLine("========"), "2:1 warning unread-line\n");
    EXPECT_EQ(CheckLine(">>>>>>>"), "2:1 warning unread-line\n");
}

TEST(CheckStrings, FindsLinesThatAreNearlyHeaders) {
    for (const char* const header : {" QVLANG=de", "QVLANG =de", "qvlang=de", "Qvlang=de",
                                     "QVLAN=de", "QVLNAG=de", "\tQVLANG = de"}) {
        EXPECT_EQ(Check("QVLANG=en\nMENU=\"Open\"\n"s + header + "\nMENU=\"Öffnen\"\n"),
                  "3:1 error near-header\n")
            << header;
    }
    EXPECT_EQ(
        Sentence("QVLANG=en\n QVLANG=\"de\"\n"),
        "this is nearly a header, but opens no section, so no host can load the entries below "
        "as one; write QVLANG=de");
    EXPECT_EQ(CheckLine("QVLAND=\"text\""), "2:1 error near-header\n") << "it may be an entry";
    EXPECT_EQ(CheckLine("# QVLANG"), "");
}

TEST(CheckStrings, FindsSectionNamesThatNobodyAsksFor) {
    EXPECT_EQ(Check("QVLANG=\n"), "1:1 error section-name\n");
    EXPECT_EQ(Check("QVLANG= en\n"), "1:8 error section-name\n");
    EXPECT_EQ(Check("QVLANG=en \n"), "1:8 error section-name\n");
    EXPECT_EQ(Check("QVLANG=\"en\"\n"), "1:8 error section-name\n");
    EXPECT_EQ(Check("QVLANG=e n\n"), "");
    EXPECT_EQ(Check("QVLANG=  \n"), "1:8 error section-name\n");
    for (const char* const name :
         {"'en'", "\"en\";", "“en”", "en # x", "en // x", "=en", "en;", "en\r\r"}) {
        EXPECT_NE(Check("QVLANG="s + name + '\n').find("1:8 error section-name\n"),
                  std::string::npos)
            << name;
    }
}

TEST(CheckStrings, FindsSectionsThatCannotBeLoaded) {
    EXPECT_EQ(Check("QVLANG=en\nQVLANG=EN\nQVLANG=de\nQVLANG=En\n"),
              "2:1 error repeated-section\n4:1 error repeated-section\n");
    EXPECT_EQ(Check("QVLANG=é\nQVLANG=É\n"), "") << "only ASCII letters have cases here";
    EXPECT_EQ(Check("QVLANG=en\0x\nQVLANG=en\n"s),
              "1:10 error nul-byte\n2:1 error repeated-section\n")
        << "the library compares names up to a NUL byte";
    EXPECT_EQ(Sentence("QVLANG=en\nQVLANG=EN\n"),
              "this section can never be loaded, since the one on line 1 has the same name; move "
              "its entries there");
}

TEST(CheckStrings, KnowsWhatTheLibraryReads) {
    EXPECT_EQ(Check("QVLANG=en\nMENU=\"a\"\n QVLANG=de\nMENU=\"a\"\nQVLANG=de\nMENU=\"b\"\n",
                    [](CheckOptions& options) { options.reference = "de"; }),
              "3:1 error near-header\n")
        << "what is no header hides no section";
    EXPECT_EQ(CheckLine("MENU =\"%s\"\nMENU=\"%d\"\nQVLANG=de\nMENU=\"%d\""),
              "2:1 error key-blanks\n")
        << "lookups find the key without blanks";
    EXPECT_EQ(CheckLine("MENU=\"%d\"\nMENU=\"%s\"\nQVLANG=de\nMENU=\"%d\""),
              "3:1 error duplicate-key\n")
        << "the first entry of a key is the reference's";
    EXPECT_EQ(CheckLine("MENU =\"a\"\nMENU =\"b\""),
              "2:1 error key-blanks\n3:1 error key-blanks\n3:1 error duplicate-key\n");
    EXPECT_EQ(CheckLine("MENU=a\rQVLANG=de"), "2:7 error control-byte\n");
    EXPECT_EQ(CheckLine("MENU=a\rIDE_X=b"), "2:7 error control-byte\n");
    EXPECT_EQ(CheckLine("QLANG=7"), "2:1 error near-header\n") << "maybe an entry";
}

TEST(CheckStrings, FindsMissingSections) {
    const auto require = [](CheckOptions& options) { options.required = {"de", "EN", "fr"}; };
    EXPECT_EQ(Check("QVLANG=en\nQVLANG=fr\n", require), "error missing-section\n");
    EXPECT_EQ(Check("QVLANG=en\nQVLANG=DE\nQVLANG=FR\n", require), "");
    EXPECT_EQ(Check("QVLANG=en\n", [](CheckOptions& options) { options.reference = "de"; }),
              "error missing-section\n");
    const RuleFindings findings = Find("QVLANG=en\nQVLANG=fr\n", require);
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].section, "de");
    EXPECT_EQ(findings[0].text,
              "there is no section de, so a host that asks for it gets the first one; add it");
}

TEST(CheckStrings, FindsLinesThatAreNotRead) {
    EXPECT_EQ(CheckLine("some words"), "2:1 warning unread-line\n");
    EXPECT_EQ(CheckLine("=value"), "2:1 warning unread-line\n");
    EXPECT_EQ(CheckLine(" \t"), "");
    EXPECT_EQ(Check("some words\nQVLANG=en\n"), "") << "notes before the first section";
    EXPECT_EQ(Check("MENU=\"Open\"\nQVLANG=en\n"), "1:1 warning before-first-section\n");
    EXPECT_EQ(Check("a note = b\nQVLANG=en\n"), "");
    EXPECT_EQ(Check("OK=\"OK\"\nQVLANG=en\n"), "");
}

TEST(CheckStrings, FindsKeysThatCannotBeLookedUp) {
    EXPECT_EQ(CheckLine("OK=\"OK\""), "2:1 error short-key\n");
    EXPECT_EQ(CheckLine(" A =\"x\""), "2:2 error short-key\n");
    EXPECT_EQ(CheckLine("MENU =\"x\""), "2:1 error key-blanks\n");
    EXPECT_EQ(CheckLine("\tMENU=\"x\""), "2:1 error key-blanks\n");
    EXPECT_EQ(CheckLine("ME NU=\"x\""), "") << "a blank within";
    EXPECT_EQ(CheckLine("\"MENU\"=\"x\""), "2:1 error quoted-key\n");
    EXPECT_EQ(CheckLine("\"MENU=\"x\""), "");
    EXPECT_EQ(CheckLine("// MENU=\"x\""), "2:1 warning commented-entry\n");
    EXPECT_EQ(CheckLine("#a=b"), "");
}

TEST(CheckStrings, FindsRepeatedKeys) {
    EXPECT_EQ(CheckLine("MENU=\"a\"\nMENU=\"a\""), "3:1 warning duplicate-entry\n");
    EXPECT_EQ(CheckLine("MENU=\"a\"\nMENU=a"), "3:1 warning duplicate-entry\n") << "the same text";
    EXPECT_EQ(CheckLine("MENU=\"a\"\nMENU=\"b\"\nMENU=\"a\""),
              "3:1 error duplicate-key\n4:1 warning duplicate-entry\n");
    EXPECT_EQ(CheckLine("MENU=\"a\"\nMenu=\"a\"\nmenu=\"b\""),
              "3:1 warning key-case\n4:1 warning key-case\n");
    EXPECT_EQ(CheckLine("MENÜ=\"a\"\nMENü=\"a\""), "");
    EXPECT_EQ(Check("QVLANG=en\nMENU=\"a\"\nQVLANG=de\nMENU=\"b\"\n"), "");
    EXPECT_EQ(Sentence("QVLANG=en\nMENU=\"a\"\nMENU=\"b\"\n"),
              "MENU: lookups answer the text of line 2, which has this key, too; remove one of "
              "them, or rename its key");
    EXPECT_EQ(Sentence("QVLANG=en\nMENU=\"a\"\nMenu=\"b\"\n"),
              "Menu: the key differs from MENU on line 2 only by case; they are two entries");
}

TEST(CheckStrings, FindsQuotesThatAreMissing) {
    EXPECT_EQ(CheckLine("MENU=\"Open"), "2:6 error one-quote\n");
    EXPECT_EQ(CheckLine("MENU=Open\""), "2:10 error one-quote\n");
    EXPECT_EQ(CheckLine("MENU=Op \"en\" file"),
              "2:6 error text-before-quote\n2:14 warning text-after-quote\n");
    EXPECT_EQ(CheckLine("MENU= \"Open\" "), "");
    EXPECT_EQ(CheckLine("MENU=\"Open\" ; note"), "2:13 warning text-after-quote\n");
    EXPECT_NE(Sentence("QVLANG=en\nMENU=\"Open\n"), Sentence("QVLANG=en\nMENU=Open\"\n"));
}

TEST(CheckStrings, FindsTextThatAQuoteSwallows) {
    EXPECT_EQ(CheckLine("MENU=\"Open\" ; \"note\""), "2:11 error swallowed-text\n");
    EXPECT_EQ(CheckLine("MENU=\"Open\"# \"note\""), "2:11 error swallowed-text\n");
    EXPECT_EQ(CheckLine("MENU=\"Open\" // \"note\""), "2:11 error swallowed-text\n");
    EXPECT_EQ(CheckLine("MENU=\"Open\" / \"note\""), "");
    EXPECT_EQ(CheckLine("MENU=\"Open\" FILE_OPEN=\"note\""), "2:11 warning swallowed-text\n");
    EXPECT_EQ(CheckLine("MENU=\"Say \"hi\" now\""), "");
    EXPECT_EQ(CheckLine("MENU=\"a 5\" disk\""), "");
    EXPECT_EQ(CheckLine("MENU=\"no \"%s\"; try \"a\" or \"b\"\""), "");
    EXPECT_EQ(CheckLine("MENU=\"expected \";\" or \"#\" here\""), "");
    EXPECT_EQ(CheckLine("MENU=\"a \"b\" c\" ; \"note\""), "2:14 error swallowed-text\n");
    EXPECT_EQ(CheckLine("MENU=\"set \"name=value\" here\""), "");
    EXPECT_EQ(CheckLine("MENU=\"lines \"#: file\" only\""), "") << "a quoted word";
    EXPECT_EQ(CheckLine("MENU=\"\"#if\" only\""), "");
    EXPECT_EQ(CheckLine("MENU=\"a\\n\"#if\" only\""), "");
    EXPECT_EQ(CheckLine("MENU=\"Open \" ; \"note\""), "2:12 error swallowed-text\n");
    EXPECT_EQ(CheckLine("MENU=\"say \"hi\" NAME=\"x\"\""), "");
    EXPECT_EQ(Check("QVLANG=en\nMENU=\"Open\" ; \"note\"\n",
                    [](CheckOptions& options) {
                        options.severities[static_cast<std::size_t>(Rule::kSwallowedText)] =
                            std::nullopt;
                    }),
              "");
}

TEST(CheckStrings, FindsEscapesThatAreNone) {
    for (const char* const escape : {"\\t", "\\\"", "\\\\", "\\r", "\\u00e4"}) {
        EXPECT_EQ(CheckLine("MENU=\"a"s + escape + " b\""), "2:8 warning unknown-escape\n")
            << escape;
    }
    EXPECT_EQ(CheckLine("MENU=\"a\\n\\N\\x\""), "");
    EXPECT_EQ(CheckLine("MENU=\"a\\\""), "2:8 warning unknown-escape\n") << "the closing quote";
    EXPECT_EQ(CheckLine("MENU=\"a \\\""), "") << "the character itself";
    EXPECT_EQ(CheckLine("MENU=\"in \"\\\" and \"/\"\""), "");
    EXPECT_EQ(CheckLine("MENU=\"use \\t for tabs\""), "") << "a word of its own";
    EXPECT_EQ(CheckLine("MENU=\"\\t text\""), "2:7 warning unknown-escape\n");
    EXPECT_EQ(CheckLine("MENU=\"\\text\""), "2:7 warning unknown-escape\n");
    EXPECT_EQ(CheckLine("MENU=\"\\unset and \\u{x}\""), "2:18 warning unknown-escape\n");
    EXPECT_EQ(CheckLine("MENU=\"a\\u00e\""), "");
    EXPECT_EQ(CheckLine("MENU=a\\tb"), "") << "no escapes without quotes";
    EXPECT_EQ(CheckLine("MENU=a\\nb"), "2:7 warning unquoted-newline\n");
}

TEST(CheckStrings, FindsTypographicQuotes) {
    for (const char* const value : {"“Open”", "„Open“", "«Open»", "‘Open’", " ‹Open› "}) {
        EXPECT_EQ(CheckLine("MENU="s + value), value[0] == ' ' ? "2:7 warning typographic-quotes\n"
                                                               : "2:6 warning typographic-quotes\n")
            << value;
    }
    EXPECT_EQ(CheckLine("MENU=\"“Open”\""), "");
    EXPECT_EQ(CheckLine("MENU=“Open” it"), "");
    EXPECT_EQ(CheckLine("MENU=“"), "");
}

TEST(CheckStrings, KnowsProtectedKeys) {
    EXPECT_EQ(CheckLine("IDEA=\"x\""), "2:1 warning protected-by-chance\n");
    EXPECT_EQ(CheckLine("IDE1=\"x\"\nIDE_=\"x\"\nIDE x=\"x\"\nIDE =\"x\""),
              "5:1 error key-blanks\n");
    EXPECT_EQ(CheckLine("ide_x=\"x\""), "2:1 warning near-protected\n");
    EXPECT_EQ(CheckLine("ideal=\"x\""), "");
    EXPECT_EQ(CheckLine("ide_x=\" \""), "") << "nothing to read";
    EXPECT_EQ(CheckLine("// IDE_X=\"x\""), "2:1 warning commented-entry\n");
}

TEST(CheckStrings, FindsStoredTextsInASource) {
    const std::string stored = Stored("text", kKey);
    EXPECT_EQ(CheckLine("IDE_X=\"" + stored + '"'), "2:8 warning stored-text\n");
    EXPECT_EQ(Check("QVLANG=en\nIDE_X=\"text\"\nQVLANG=de\nIDE_X=\"" + stored + "\"\n"),
              "4:8 warning mixed-protection\n");
    EXPECT_EQ(Check("QVLANG=en\nIDE_X=\"" + stored + "\"\nQVLANG=de\nIDE_X=\"text\"\n"),
              "2:8 warning stored-text\n4:8 warning mixed-protection\n");
    EXPECT_EQ(CheckLine("MENU=\"" + stored + '"'), "");
}

TEST(CheckStrings, FindsTextsThatDoNotDecode) {
    std::string stored = Stored("text", kKey);
    for (const bool isShipped : {false, true}) {
        const auto check = [&](const std::string& value) {
            return Check("QVLANG=en\nIDE_X=\"" + value + "\"\n",
                         [&](CheckOptions& options) { options.isShipped = isShipped; });
        };
        EXPECT_EQ(check(stored.substr(1)), "2:8 error damaged-text\n");
        EXPECT_EQ(check(stored.substr(2)), "2:8 error damaged-text\n");
        EXPECT_EQ(check('0' + stored), "2:8 error damaged-text\n");
        EXPECT_EQ(check("00" + stored), "2:8 error damaged-text\n");
        EXPECT_EQ(check("00" + stored.substr(2)), "2:8 error damaged-text\n");
        EXPECT_EQ(check(std::string(64, 'a')), "2:8 error damaged-text\n") << "small digits";
        EXPECT_EQ(check(std::string(94, '0')), "2:8 error damaged-text\n");
        const char* const readable = isShipped ? "2:8 error readable-text\n" : "";
        EXPECT_EQ(check(stored.substr(3)), readable) << "too short to be meant";
        EXPECT_EQ(check("000" + stored), readable);
        EXPECT_EQ(check(std::string(32, '0')), readable);
        EXPECT_EQ(check('x' + stored), "2:8 error damaged-text\n") << "a slip";
        EXPECT_EQ(check("xx" + stored.substr(2)), "2:8 error damaged-text\n");
        EXPECT_EQ(check("xxx" + stored.substr(3)), readable) << "a text of this length";
    }
}

TEST(CheckStrings, FindsProtectedTextsThatDiffer) {
    EXPECT_EQ(Check("QVLANG=a\nIDE_X=\"x\"\nQVLANG=b\nIDE_X=\"y\"\nQVLANG=c\nIDE_X=\"z\"\n"),
              "4:8 warning protected-texts-differ\n")
        << "once for each key";
    EXPECT_EQ(Check("QVLANG=a\nIDE_X=\"x\"\nIDE_X=\"y\"\n"), "3:1 error duplicate-key\n")
        << "the second is never loaded";
    EXPECT_EQ(Check("QVLANG=a\nIDE_X=\"" + Stored("x", kKey) + "\"\nQVLANG=b\nIDE_X=\"" +
                        Stored("y", kKey) + "\"\n",
                    Ship),
              "4:8 warning protected-texts-differ\n");
}

TEST(CheckStrings, HoldsWhatIsShippedToItsKey) {
    const std::string file = "QVLANG=en\nIDE_X=\"" + Stored("x", kKey) + "\"\n";
    EXPECT_EQ(Check(file, Ship), "");
    EXPECT_EQ(Check(file,
                    [](CheckOptions& options) {
                        options.isShipped = true;
                        options.rejectsKey = true;
                    }),
              "error development-key\n");
    EXPECT_EQ(Check("QVLANG=en\nMENU=\"x\"\n",
                    [](CheckOptions& options) {
                        options.isShipped = true;
                        options.rejectsKey = true;
                    }),
              "")
        << "nothing is protected";
    EXPECT_EQ(Check("QVLANG=en\nIDE_X=\"x\"\nQVLANG=de\nIDE_X=\"\"\n", Ship),
              "2:8 error readable-text\n4:8 error readable-text\n"
              "4:8 warning protected-texts-differ\n4:8 warning empty-text\n");
}

TEST(CheckStrings, FindsTextsThatWereProtectedTwice) {
    const std::string once = Stored("x", kKey);
    for (const std::string& text : {once, once.substr(1), 'x' + once.substr(1)}) {
        EXPECT_EQ(Check("QVLANG=en\nIDE_X=\"" + Stored(text, kKey) + "\"\n", Ship),
                  "2:8 error damaged-text\n")
            << text;
    }
}

TEST(CheckStrings, FindsProtectedEntriesThatAreNeverRead) {
    EXPECT_EQ(Check("IDE_X=\"x\"\nQVLANG=en\n", Ship),
              "1:1 warning before-first-section\n1:1 error leaked-text\n");
    EXPECT_EQ(Check("QVLANG=en\nMENU=a\rIDE_X=x\n", Ship),
              "2:7 error control-byte\n2:8 error leaked-text\n");
}

TEST(CheckStrings, FindsProtectedTextsThatAreReadableElsewhere) {
    const std::string stored = "IDE_X=\"" + Stored("A secret", kKey) + '"';
    for (const char* const line :
         {"# A secret", "# was: A secret", "/* A secret */", "// IDE_X=\"A secret\"",
          "ide_x=\"A secret\"", "A secret", "# see \"A secret\" here"}) {
        const std::string found = Check("QVLANG=en\n" + stored + '\n' + line + '\n', Ship);
        EXPECT_NE(found.find("error leaked-text\n"), std::string::npos) << line << '\n' << found;
        const std::string before = Check(line + ("\nQVLANG=en\n" + stored + '\n'), Ship);
        EXPECT_NE(before.find("error leaked-text\n"), std::string::npos) << line << '\n' << before;
    }
    EXPECT_EQ(Check("QVLANG=en\n" + stored + "\nMENU=\"A secret\"\n", Ship),
              "3:7 error leaked-text\n");
    EXPECT_EQ(Check("QVLANG=en\n" + stored + " ; A secret\n", Ship),
              "2:74 warning text-after-quote\n2:76 error leaked-text\n");
    EXPECT_EQ(Check("QVLANG=en\n" + stored + "\nMENU=\"Not A secret\"\n", Ship), "")
        << "another text";
    EXPECT_EQ(Check("QVLANG=en\n" + stored + "\n# it was A secret once\n", Ship),
              "3:3 error leaked-text\n");
    EXPECT_EQ(Check("QVLANG=en\n" + stored + "\n# it was A secre\n", Ship), "");
    EXPECT_EQ(
        Check("QVLANG=en\nIDE_X=\"" + Stored("A secr", kKey) + "\"\n# it was A secret\n", Ship), "")
        << "too short to be meant";
    EXPECT_EQ(Check("QVLANG=en\n" + stored + "\nMENU=\"Open\" the A secret\n", Ship),
              "3:13 warning text-after-quote\n3:13 error leaked-text\n");
    EXPECT_EQ(Check("QVLANG=en\nIDE_X=\"" + Stored("", kKey) + "\"\nMENU=\"\"\n", Ship), "");
    EXPECT_EQ(Check("QVLANG=en\n# IDE_Y=\"other\"\n", Ship),
              "2:1 warning commented-entry\n2:3 error leaked-text\n")
        << "probably meant as a protected entry";
    EXPECT_EQ(Check("QVLANG=en\n# see IDE_Y=\"" + Stored("other", kKey) + "\"\n", Ship),
              "2:1 warning commented-entry\n");
}

TEST(CheckStrings, ComparesPlaceholders) {
    const auto check = [](const char* reference, const char* text) {
        return Sentence("QVLANG=en\nMENU=\""s + reference + "\"\nQVLANG=de\nMENU=\"" + text +
                        "\"\n");
    };
    EXPECT_EQ(check("%d of %d", "%d von %d"), "0 findings");
    EXPECT_EQ(check("%s", "%s%s"), "MENU: the reference has no %s (argument 2)");
    EXPECT_EQ(check("%d files", "Dateien"), "MENU: the reference has %d, which is missing here");
    EXPECT_EQ(check("%d files", "%s Dateien"), "MENU: the reference has %d, but this text has %s");
    EXPECT_EQ(check("files", "{0} Dateien"), "MENU: the reference has no {0}");
    EXPECT_EQ(check("%H:%M %s", "%H.%M"), "0 findings") << "a time";
}

TEST(CheckStrings, NamesWhatMayHaveBeenMeant) {
    const auto sentence = [](const char* keys) {
        return Sentence("QVLANG=en\nMENU_OPEN=\"a\"\nMENU_QUIT=\"b\"\nQVLANG=de\n"s + keys,
                        [](CheckOptions& options) {
                            options.severities[static_cast<std::size_t>(Rule::kMissingKey)].reset();
                        });
    };
    const std::string extra = "the reference has no such key; add it there, or remove this entry";
    EXPECT_EQ(sentence("MENU_OPNE=\"a\"\nMENU_QUIT=\"b\"\n"),
              "MENU_OPNE: " + extra + "; did you mean 'MENU_OPEN'?");
    EXPECT_EQ(sentence("MENU_OPEN=\"a\"\nMENU_OPENS=\"b\"\n"), "MENU_OPENS: " + extra)
        << "one that the section has is not meant";
    EXPECT_EQ(sentence("MENU_QUIT=\"b\"\nQVLANG=fr\nMENU_OPEN=\"a\"\nMENU_OPNE=\"b\"\n"),
              "MENU_OPNE: " + extra)
        << "one that another section lacks is not meant";
    EXPECT_EQ(sentence("MENU_OPNE=\"a\"\nQVLANG=fr\nMENU_OPEN=\"a\"\n"),
              "MENU_OPNE: " + extra + "; did you mean 'MENU_OPEN'?")
        << "once, not again for the next section";
    EXPECT_EQ(
        Sentence("QVLANG=English\n", [](CheckOptions& options) { options.required = {"Englsh"}; }),
        "there is no section Englsh, so a host that asks for it gets the first one; add it; "
        "did you mean 'English'?");
    EXPECT_EQ(Sentence("QVLANG=en\n# orva: disable-next-line shortkey\nMENU=\"a\"\n"),
              "there is no rule shortkey; did you mean 'short-key'?");
}

TEST(CheckStrings, GuessesOnlyForFewKeys) {
    const auto guesses = [](int extra) {
        std::string reference = "QVLANG=en\nMENU_A=\"a\"\n";
        std::string translation = "QVLANG=de\n";
        for (int i = 0; i < extra; ++i) {
            translation += "MENU_" + std::to_string(i) + "=\"a\"\n";
        }
        const RuleFindings findings = Find(reference + translation);
        return std::count_if(findings.begin(), findings.end(), [](const RuleFinding& finding) {
            return finding.rule == Rule::kExtraKey &&
                   finding.text.find("did you mean 'MENU_A'?") != std::string::npos;
        });
    };
    EXPECT_EQ(guesses(20), 20);
    EXPECT_EQ(guesses(21), 0);
}

TEST(CheckStrings, ComparesWithTheReference) {
    EXPECT_EQ(Check("QVLANG=en\nAAAA=\"a\"\nBBBB=\"b\"\nQVLANG=de\nBBBB=\"x\"\nCCCC=\"c\"\n"),
              "4:1 warning missing-key\n6:1 warning extra-key\n");
    EXPECT_EQ(Check("QVLANG=en\nAAAA=\"a\"\nBBBB=\"b\"\nQVLANG=de\nBBBB=\"x\"\nCCCC=\"c\"\n",
                    [](CheckOptions& options) { options.reference = "DE"; }),
              "1:1 warning missing-key\n2:1 warning extra-key\n");
    EXPECT_EQ(Check("QVLANG=en\nAAAA=\"a\"\nQVLANG=de\nBBBB=\"x\"\n",
                    [](CheckOptions& options) { options.required = {"DE"}; }),
              "3:1 error missing-key\n4:1 warning extra-key\n");
    EXPECT_EQ(Check("QVLANG=en\nAAAA=\"a\"\nQVLANG=de\nAAAA=\"x\"\nQVLANG=DE\nBBBB=\"x\"\n"),
              "5:1 error repeated-section\n")
        << "a section that is never loaded is compared with nothing";
    const RuleFindings findings = Find("QVLANG=en\nAAAA=\"a\"\nQVLANG=de\n");
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].section, "de");
    EXPECT_EQ(findings[0].key, "AAAA");
}

TEST(CheckStrings, ComparesTexts) {
    const auto check = [](const std::string& reference, const std::string& text, const Set& set) {
        return Check("QVLANG=en\nMENU=\"" + reference + "\"\nQVLANG=de\nMENU=\"" + text + "\"\n",
                     set);
    };
    const Set none = [](CheckOptions&) {};
    EXPECT_EQ(check("a", "", none), "4:7 warning empty-text\n");
    EXPECT_EQ(check("", "", none), "");
    EXPECT_EQ(check("a ", "b", none), "4:7 warning outer-blanks\n");
    EXPECT_EQ(check(" a", "b", none), "4:7 warning outer-blanks\n");
    EXPECT_EQ(check("a\\n", "b", none), "4:7 warning outer-blanks\n");
    EXPECT_EQ(check("a\\n", "b\\n\\n", none), "4:7 warning outer-blanks\n");
    EXPECT_EQ(check(" a\\n", " b\\n", none), "");
    EXPECT_EQ(check("  a  ", " b ", none), "") << "alignment";
    EXPECT_EQ(check("a\\n", "b \\n", none), "") << "a blank that nobody sees";
    EXPECT_EQ(check("Name: ", "名前：", none), "") << "a wide colon needs no blank";
    EXPECT_EQ(check("Name: ", "Имя:", none), "4:7 warning outer-blanks\n");
    EXPECT_EQ(check("a.", "b", none), "");
    EXPECT_EQ(check("a.", "b", Enable(Rule::kEndPunctuation)), "4:7 warning end-punctuation\n");
    EXPECT_EQ(check("a.", "b。", Enable(Rule::kEndPunctuation)), "");
    EXPECT_EQ(check("a...", "b…", Enable(Rule::kEndPunctuation)), "");
    EXPECT_EQ(check("a...", "b.", Enable(Rule::kEndPunctuation)), "4:7 warning end-punctuation\n");
    EXPECT_EQ(check("a\\nb", "c", Enable(Rule::kLineCount)), "4:7 warning line-count\n");
    EXPECT_EQ(check("a\\nb", "c\\nd", Enable(Rule::kLineCount)), "");
    EXPECT_EQ(check("a", "a", Enable(Rule::kSameText)), "4:7 warning same-text\n");
    EXPECT_EQ(check("a", "b", Enable(Rule::kSameText)), "");
}

TEST(CheckStrings, ComparesProtectedTextsDecoded) {
    const auto entry = [](const char* text) { return "IDE_X=\"" + Stored(text, kKey) + "\"\n"; };
    EXPECT_EQ(Check("QVLANG=en\n" + entry("%d") + "QVLANG=de\n" + entry("%s"), Ship),
              "4:8 warning protected-texts-differ\n4:8 error placeholder\n");
}

TEST(CheckStrings, DoesNotCompareWhatDoesNotDecode) {
    const std::string damaged = "IDE_X=\"" + std::string(64, '0') + "\"\n";
    const std::string readable = "IDE_X=\"%d\"\n";
    EXPECT_EQ(Check("QVLANG=en\n" + damaged + "QVLANG=de\n" + readable),
              "2:8 error damaged-text\n4:8 warning mixed-protection\n");
    EXPECT_EQ(Check("QVLANG=en\n" + readable + "QVLANG=de\n" + damaged),
              "4:8 error damaged-text\n");
}

TEST(CheckStrings, FindsStaleTranslations) {
    const std::string earlier =
        "QVLANG=en\nAAAA=\"a\"\nBBBB=\"b\"\nQVLANG=de\nAAAA=\"x\"\nBBBB=\"y\"\n"
        "QVLANG=fr\nAAAA=\"x\"\n";
    const auto check = [&](const char* file) {
        return Check(file, [&](CheckOptions& options) { options.base = earlier; });
    };
    EXPECT_EQ(check("QVLANG=en\nAAAA=\"new\"\nQVLANG=de\nAAAA=\"x\"\nQVLANG=FR\nAAAA=\"x\"\n"),
              "4:7 warning stale\n6:7 warning stale\n");
    EXPECT_EQ(check("QVLANG=en\nAAAA=\"new\"\nQVLANG=de\nAAAA=\"neu\"\n"), "");
    EXPECT_EQ(check("QVLANG=en\nAAAA=\"a\"\nQVLANG=de\nAAAA=\"x\"\n"), "");
    EXPECT_EQ(check("QVLANG=en\nCCCC=\"c\"\nQVLANG=de\nCCCC=\"x\"\nQVLANG=it\nCCCC=\"x\"\n"), "");
}

TEST(CheckStrings, WantsAnEarlierFileWithTheReference) {
    EXPECT_EQ(Check("QVLANG=en\nMENU=\"x\"\n", [](CheckOptions& options) { options.base = ""; }),
              "error missing-section\n");
}

TEST(CheckStrings, FollowsDirectives) {
    EXPECT_EQ(Check("QVLANG=en\n# orva: disable-next-line key-blanks\nMENU =\"x\"\n"), "");
    EXPECT_EQ(Check("QVLANG=en\n// orva: disable-next-line one-quote key-blanks\nMENU =\"x\n"), "");
    EXPECT_EQ(Check("QVLANG=en\n/* orva: disable-next-line key-blanks */\n"
                    "; orva: max-length 5\nMENU =\"x\"\n"),
              "")
        << "one directive after another";
    EXPECT_EQ(Check("QVLANG=en\n# orva: disable-next-line key-blanks\n\nMENU =\"x\"\n"),
              "2:27 warning unused-directive\n4:1 error key-blanks\n");
    EXPECT_EQ(Check("QVLANG=en\n# orva: disable-next-line key-blanks short-key\nMENU =\"x\"\n"),
              "2:38 warning unused-directive\n");
    EXPECT_EQ(Check("QVLANG=en\n# orva: disable-next-line key-blanks key-blanks\nMENU =\"x\"\n"),
              "2:38 warning unused-directive\n");
    EXPECT_EQ(Check("QVLANG=en\n# orva: disable-next-line missing-section\nMENU=\"x\"\n",
                    [](CheckOptions& options) { options.required = {"de"}; }),
              "error missing-section\n2:27 warning unused-directive\n")
        << "it is about no line";
    EXPECT_EQ(Check("QVLANG=en\n# orva: disable-next-line same-text\nMENU=\"x\"\n"), "")
        << "that rule is off";
    EXPECT_EQ(Check("QVLANG=en\n# orva: disable-next-line key-blanks\n"),
              "2:27 warning unused-directive\n");
    EXPECT_EQ(Check("QVLANG=en\nAAAA=\"a\"\n# orva: disable-next-line missing-key\nQVLANG=de\n"),
              "");
}

TEST(CheckStrings, FindsDirectivesThatCannotBeFollowed) {
    EXPECT_EQ(CheckLine("# orva: max-length"), "2:9 warning bad-directive\n");
    EXPECT_EQ(CheckLine("# orva: max-length -1"), "2:9 warning bad-directive\n");
    EXPECT_EQ(CheckLine("# orva: max-length 1 2"), "2:9 warning bad-directive\n");
    EXPECT_EQ(CheckLine("# orva: disable-next-line"), "2:9 warning bad-directive\n");
    EXPECT_EQ(CheckLine("# orva: disable-next-line nothing"), "2:27 warning bad-directive\n");
    EXPECT_EQ(CheckLine("# orva: "), "2:9 warning bad-directive\n");
    EXPECT_EQ(CheckLine("# orva: max-length=5"),
              "2:1 warning bad-directive\n2:1 warning commented-entry\n"
              "2:9 warning bad-directive\n");
    EXPECT_EQ(CheckLine("# orvaline: nothing"), "");
    EXPECT_EQ(CheckLine("# orva: language"), "2:9 warning bad-directive\n");
    EXPECT_EQ(CheckLine("# orva: language Deutsch"), "2:9 warning bad-directive\n");
    EXPECT_EQ(CheckLine("# orva: language de AT"), "2:9 warning bad-directive\n");
}

TEST(CheckStrings, WantsTheLanguageOfASectionRightBelowItsHeader) {
    const std::string language = "# orva: language en\n";
    EXPECT_EQ(Check("QVLANG=en\n" + language + "MENU=\"x\"\n"), "");
    EXPECT_EQ(Check("QVLANG=en\n# x\n\n# orva: max-length 1\n" + language + "MENU=\"x\"\n"), "");
    EXPECT_EQ(Check("QVLANG=en\nMENU=\"x\"\n" + language), "3:9 warning unused-directive\n");
    EXPECT_EQ(Check("QVLANG=en\nMENU=\"x\"\n# x\n" + language), "4:9 warning unused-directive\n");
    EXPECT_EQ(Check(language + "QVLANG=en\nMENU=\"x\"\n"), "1:9 warning unused-directive\n");
}

TEST(CheckStrings, WantsOneLanguageForEachSection) {
    const std::string english = "QVLANG=en\n# orva: language en\nMENU=\"x\"\n";
    EXPECT_EQ(Check(english + "QVLANG=de\n# orva: language de\nMENU=\"y\"\n"), "");
    EXPECT_EQ(Check(english + "QVLANG=de\n# orva: language EN\nMENU=\"y\"\n"),
              "5:9 warning bad-directive\n");
    EXPECT_EQ(Check("QVLANG=en\n# orva: language en\n\n# orva: language en-GB\nMENU=\"x\"\n"),
              "4:9 warning bad-directive\n");
    EXPECT_EQ(Check(english + "QVLANG=de\n# orva: language en\n# orva: language de\nMENU=\"y\"\n"),
              "5:9 warning bad-directive\n6:9 warning bad-directive\n")
        << "a second one after one that another section has";
    EXPECT_EQ(Check("QVLANG=en\n# orva: language en\nQVLANG=de\n# orva: language de\n"
                    "MENU=\"y\"\n# orva: language de\n"),
              "5:1 warning extra-key\n6:9 warning unused-directive\n");
    EXPECT_EQ(Check(english + "QVLANG=EN\n# orva: language en\nMENU=\"x\"\n"),
              "4:1 error repeated-section\n")
        << "the code of a section that is hidden";
}

TEST(CheckStrings, LimitsLengths) {
    const std::string limit = "# orva: max-length 4\n";
    EXPECT_EQ(Check("QVLANG=en\n" + limit +
                    "MENU=\"Open\"\nFILE=\"Opened\"\nQVLANG=de\n"
                    "MENU=\"Öff…n\"\nFILE=\"Geöffnet\"\n"),
              "6:7 error max-length\n");
    EXPECT_EQ(Check("QVLANG=en\n" + limit + "\nMENU=\"Opened\"\n"),
              "2:1 warning unused-directive\n")
        << "not before the entry";
    EXPECT_EQ(Check("QVLANG=en\n" + limit + "IDE_=\"" + Stored("fives", kKey) + "\"\n", Ship),
              "3:7 error max-length\n");
    EXPECT_EQ(Check("QVLANG=en\n#orva:max-length 4\nMENU=\"Opened\"\n"), "3:7 error max-length\n");
    EXPECT_EQ(Check("QVLANG=en\n" + limit), "2:1 warning unused-directive\n") << "no next line";
    EXPECT_EQ(Sentence("QVLANG=en\n" + limit + "MENU=\"Opened\"\n"),
              "MENU: the text has 6 characters; the limit is 4");
}

}  // namespace
