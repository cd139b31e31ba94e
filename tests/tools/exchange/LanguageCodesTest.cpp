#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tools/orva-strings/cli/UsageError.h"
#include "tools/orva-strings/document/Directive.h"
#include "tools/orva-strings/exchange/LanguageCodes.h"

using namespace std::string_literals;  // for names that hold NUL bytes

namespace {

// The codes of a file without a wrong directive.
LanguageCodes CodesOf(const std::string& bytes, const std::vector<std::string>& arguments = {}) {
    Findings findings;
    LanguageCodes codes(arguments, StringsReader(bytes), findings);
    EXPECT_TRUE(findings.empty()) << bytes << ": " << findings.front().text;
    return codes;
}

std::string ErrorsIn(const std::string& bytes, const std::vector<std::string>& arguments = {}) {
    Findings findings;
    const LanguageCodes codes(arguments, StringsReader(bytes), findings);
    std::string text;
    for (const Finding& finding : findings) {
        EXPECT_EQ(finding.severity, Severity::kError);
        text += std::to_string(finding.line.value() + 1) + ": " + finding.text + '\n';
    }
    return text;
}

std::string UsageErrorOf(const std::vector<std::string>& arguments) {
    try {
        CodesOf("", arguments);
    } catch (const UsageError& error) {
        return error.what();
    }
    return "";
}

TEST(LanguageCodes, ComeFromArguments) {
    const LanguageCodes codes = CodesOf("", {"Deutsch=de", "a=b=pt-BR"});
    EXPECT_EQ(codes.CodeOf("Deutsch"), "de");
    EXPECT_EQ(codes.CodeOf("deutSCH"), "de");
    EXPECT_EQ(codes.CodeOf("Deutsch\0x"s), "de") << "as a host would request it";
    EXPECT_EQ(codes.CodeOf("a=b"), "pt-BR");
    EXPECT_EQ(codes.CodeOf("Deutsc"), std::nullopt);
    EXPECT_EQ(codes.CodeOf("de"), std::nullopt);
    EXPECT_EQ(codes.SectionOf("DE"), "Deutsch");
    EXPECT_EQ(codes.SectionOf("pt-br"), "a=b");
    EXPECT_EQ(codes.SectionOf("pt"), std::nullopt);
    EXPECT_EQ(codes.SectionOf("Deutsch"), std::nullopt);
}

TEST(LanguageCodes, ComeFromDirectivesRightBelowAHeader) {
    const LanguageCodes codes = CodesOf(
        "# orva: language zz\n"
        "QVLANG=English\n"
        "# orva: language en\n"
        "MENU=\"x\"\n"
        "# orva: language de\n"
        "QVLANG=Deutsch\n"
        "; texts\n"
        " \t\n"
        "# orva: disable-next-line missing-key\n"
        "/* orva: language de-AT */\n"
        "MENU=\"x\"\n"
        "QVLANG=Italiano\n"
        "# orva: max-length 5\n"
        "QVLANG=Polski\n"
        "MENU=\"x\"\n"
        "# x\n"
        "# orva: language pl\n"
        "QVLANG=deutsch\n"
        "# orva: language de\n");
    EXPECT_EQ(codes.CodeOf("English"), "en");
    EXPECT_EQ(codes.CodeOf("Deutsch"), "de-AT");
    EXPECT_EQ(codes.SectionOf("de-at"), "Deutsch");
    EXPECT_EQ(codes.CodeOf("Italiano"), std::nullopt);
    EXPECT_EQ(codes.CodeOf("Polski"), std::nullopt) << "not right below the header";
    EXPECT_EQ(codes.SectionOf("de"), std::nullopt) << "no load can reach that section";
    EXPECT_EQ(codes.SectionOf("zz"), std::nullopt) << "in no section";
}

TEST(LanguageCodes, ComeFromAnArgumentRatherThanFromADirective) {
    const LanguageCodes codes =
        CodesOf("QVLANG=Deutsch\n# orva: language x\n# orva: language de\n", {"DEUTSCH=de-CH"});
    EXPECT_EQ(codes.CodeOf("Deutsch"), "de-CH");
    EXPECT_EQ(codes.SectionOf("de"), std::nullopt);
}

TEST(LanguageCodes, RefuseWrongArguments) {
    EXPECT_EQ(UsageErrorOf({"de"}), "--code: 'de' is not SECTION=CODE");
    EXPECT_EQ(UsageErrorOf({"=de"}), "--code: '=de' is not SECTION=CODE");
    EXPECT_EQ(UsageErrorOf({"Deutsch=german"}),
              "--code: 'Deutsch=german' has no language code, such as de, pt-BR or zh-Hant");
    EXPECT_EQ(UsageErrorOf({"Deutsch=de", "deutsch=de-AT"}),
              "--code: 'deutsch=de-AT' gives the section a second code");
    EXPECT_EQ(UsageErrorOf({"Deutsch=de", "Dutch=DE"}),
              "--code: 'Dutch=DE' gives the section a code that Deutsch has");
}

TEST(LanguageCodes, AreNotTakenFromWrongDirectives) {
    EXPECT_EQ(ErrorsIn("QVLANG=Deutsch\n#orva:language\n"),
              "2: the directive '' has no language code, such as de, pt-BR or zh-Hant\n");
    EXPECT_EQ(ErrorsIn("QVLANG=Deutsch\n# orva: language de AT\n"),
              "2: the directive 'de AT' has no language code, such as de, pt-BR or zh-Hant\n");
    EXPECT_EQ(ErrorsIn("QVLANG=Deutsch\n# orva: language de\n# orva: language de\n"),
              "3: the directive 'de' gives the section a second code\n");
    EXPECT_EQ(ErrorsIn("QVLANG=Dutch\n# orva: language de\n", {"Deutsch=de"}),
              "2: the directive 'de' gives the section a code that Deutsch has\n");
}

TEST(LanguageCodes, HaveTheirForm) {
    for (const char* const code :
         {"de", "DEU", "yue", "pt-BR", "zh-Hant-TW", "es-419", "sl-rozaj-12345678", "en-x-a"}) {
        EXPECT_TRUE(IsLanguageCode(code)) << code;
    }
    for (const char* const code : {"", "d", "Deut", "d1", "1a", "de_AT", "de-", "-de", "de--AT",
                                   "de-123456789", "de-A_", "de AT", "dé", "{}", "@Z"}) {
        EXPECT_FALSE(IsLanguageCode(code)) << code;
    }
    for (const char* const edge : {"az", "AZ", "aa-09azAZ"}) {
        EXPECT_TRUE(IsLanguageCode(edge)) << edge;
    }
    for (const char* const edge : {"a`", "a{", "a@", "a[", "aa-/", "aa-:"}) {
        EXPECT_FALSE(IsLanguageCode(edge)) << edge;
    }
}

}  // namespace
