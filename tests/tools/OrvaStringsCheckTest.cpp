// The commands check and explain, run in this process.
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/StoredForm.h"
#include "tests/tools/ToolTest.h"
#include "tools/orva-strings/checks/Rules.h"
#include "tools/orva-strings/system/Files.h"

namespace {

using Words = std::vector<std::string>;

class OrvaStringsCheck : public ToolTest {
protected:
    // check, with the options of a rule's example, on the given bytes.
    int RunExample(const RuleExample& example, std::string_view bytes, const Words& options) {
        Words arguments = {"check"};
        std::istringstream words(example.options);
        for (std::string word; words >> word;) {
            arguments.push_back(word);
        }
        if (!example.earlier.empty()) {
            arguments.insert(arguments.end(), {"--base", Write("earlier", example.earlier)});
        }
        arguments.insert(arguments.end(), options.begin(), options.end());
        arguments.push_back(Write("file", bytes));
        return Run(arguments);
    }
};

const char kClean[] = "QVLANG=en\nMENU_OPEN=\"Open\"\n";
const char kWrong[] = "QVLANG=en\nOK=\"OK\"\nMENU_OPEN=\"Open\" file\n";

std::size_t Count(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

TEST_F(OrvaStringsCheck, FindsExactlyWhatEachExampleBreaks) {
    for (std::size_t i = 0; i < kRuleCount; ++i) {
        const RuleText& rule = TextOf(static_cast<Rule>(i));
        SCOPED_TRACE(rule.name);
        const bool isError = !rule.severity || *rule.severity == Severity::kError ||
                             static_cast<Rule>(i) == Rule::kSwallowedText;
        const bool fails = isError && rule.severity.has_value();

        EXPECT_EQ(RunExample(rule.example, rule.example.wrong, {}), fails ? 1 : 0);
        EXPECT_EQ(Count(m_out, "\n"), 2U) << m_out;
        EXPECT_EQ(Count(m_out, std::string("[") + rule.name + "]\n"), 1U) << m_out;
        EXPECT_EQ(Count(m_out, fails ? ": error: " : ": warning: "), 1U) << m_out;
        EXPECT_EQ(m_err, "");

        EXPECT_EQ(RunExample(rule.example, rule.example.wrong, {"--format", "json"}),
                  fails ? 1 : 0);
        const auto json = nlohmann::json::parse(m_out);
        ASSERT_EQ(json["findings"].size(), 1U);
        EXPECT_EQ(json["findings"][0]["rule"], rule.name);

        RunExample(rule.example, rule.example.wrong, {"--format", "sarif"});
        const auto results = nlohmann::json::parse(m_out)["runs"][0]["results"];
        ASSERT_EQ(results.size(), 1U);
        EXPECT_EQ(results[0]["ruleId"], rule.name);

        RunExample(rule.example, rule.example.wrong, {"--format", "github"});
        EXPECT_EQ(Count(m_out, std::string("title=") + rule.name + "::"), 1U) << m_out;
        EXPECT_EQ(Count(m_out, "\n"), 2U) << m_out;

        EXPECT_EQ(RunExample(rule.example, rule.example.right, {"--fail-on", "warning"}), 0);
        EXPECT_EQ(m_out, "no findings in 1 file\n");
    }
}

TEST_F(OrvaStringsCheck, FindsNothingInCleanFilesOfManyLanguages) {
    std::string source;
    std::string shipped;
    for (int language = 0; language < 30; ++language) {
        const std::string head = "QVLANG=Language " + std::to_string(language) + "\n" +
                                 "MENU_OPEN=\"Text " + std::to_string(language) + "…\"\n" +
                                 "FILE_COUNT=\"" + std::to_string(language) +
                                 ": %d of {total}\\n\"\n";
        source += head + "IDE_TITLE=\"Title\"\n";
        shipped += head + "IDE_TITLE=\"" + Stored("Title", DevelopmentKey()) + "\"\n";
    }
    EXPECT_EQ(Run({"check", "--fail-on", "warning", Write("source", source)}), 0);
    EXPECT_EQ(m_out, "no findings in 1 file\n");
    EXPECT_EQ(Run({"check", "--fail-on", "warning", "--shipped", "--allow-development-key",
                   "--require", "language 29", Write("shipped", shipped)}),
              0);
    EXPECT_EQ(m_out, "no findings in 1 file\n");
}

TEST_F(OrvaStringsCheck, ReportsEachFile) {
    const std::string clean = Write("clean", kClean);
    const std::string wrong = Write("wrong", kWrong);
    EXPECT_EQ(Run({"check", wrong, clean, "-"}, kWrong), 1);
    const std::string first =
        ":2:1: error: OK: lookups answer null, since a key needs four bytes or more; choose a "
        "longer "
        "one [short-key]\n";
    const std::string second =
        ":3:18: warning: MENU_OPEN: the text after the last quote is not part of the value; put a "
        "note on a line of its own [text-after-quote]\n";
    EXPECT_EQ(m_out, wrong + first + wrong + second + '-' + first + '-' + second +
                         "2 errors and 2 warnings in 3 files\n");
    EXPECT_EQ(m_err, "");
    EXPECT_EQ(Run({"check", "--stdin-name", "Sample.strings", "-"}, kWrong), 1);
    EXPECT_EQ(m_out, "Sample.strings" + first + "Sample.strings" + second +
                         "1 error and 1 warning in 1 file\n");
}

TEST_F(OrvaStringsCheck, TakesOneValueAfterEachOption) {
    const std::string clean = Write("clean", kClean);
    EXPECT_EQ(Run({"check", "--require", "en", "--require", "EN", clean, clean}), 0);
    EXPECT_EQ(m_out, "no findings in 2 files\n");
    EXPECT_EQ(Run({"check", clean, "--disable", "stale", "--disable", "utf-16", clean}), 0);
    EXPECT_EQ(m_out, "no findings in 2 files\n");
}

TEST_F(OrvaStringsCheck, EscapesWhatCouldDriveTheTerminal) {
    const std::string file = Write("a\x1b[31m", "QVLANG=en\nOK\x1b=\"\"\n");
    EXPECT_EQ(Run({"check", "--disable", "control-byte", file}), 1);
    EXPECT_EQ(m_out,
              Path("a\\x1B[31m") +
                  ":2:1: error: OK\\x1B: lookups answer null, since a key needs four bytes or "
                  "more; choose a longer one [short-key]\n1 error in 1 file\n");
}

TEST_F(OrvaStringsCheck, SetsWhatFails) {
    const std::string file = Write("wrong", kWrong);
    EXPECT_EQ(Run({"check", "--disable", "short-key", file}), 0);
    EXPECT_EQ(Run({"check", "--disable", "short-key", "--fail-on", "warning", file}), 1);
    EXPECT_EQ(Run({"check", "--warn", "short-key", file}), 0);
    EXPECT_EQ(Run({"check", "--disable", "short-key", "--error", "text-after-quote", file}), 1);
    EXPECT_EQ(Run({"check", "--disable", "short-key", "--disable", "text-after-quote", "--fail-on",
                   "warning", file}),
              0);
    EXPECT_EQ(Run({"check", "--fail-on", "error", Write("clean", kClean)}), 0);
}

TEST_F(OrvaStringsCheck, LowersWhatIsAnErrorOnlySometimes) {
    const std::string file = Write("file", "QVLANG=en\nMENU=\"Open\" ; as in \"x\"\nQVLANG=de\n");
    EXPECT_EQ(Run({"check", "--require", "de", file}), 1);
    EXPECT_EQ(Count(m_out, ": error: "), 2U) << m_out;
    EXPECT_EQ(Run({"check", "--require", "de", "--warn", "swallowed-text", "--warn", "missing-key",
                   file}),
              0);
    EXPECT_EQ(Count(m_out, ": warning: "), 2U) << m_out;
}

TEST_F(OrvaStringsCheck, ReportsOnlyWhatIsNotInTheBaseline) {
    const std::string file = Write("wrong", kWrong);
    const std::string known = Path("known");
    EXPECT_EQ(Run({"check", "--write-baseline", known, file}), 0);
    EXPECT_EQ(m_out, "");
    EXPECT_EQ(ReadFile(known),
              "orva-strings baseline, version 1: rule, section, key\n"
              "short-key\ten\tOK\ntext-after-quote\ten\tMENU_OPEN\n");
    EXPECT_EQ(Run({"check", "--baseline", known, file}), 0);
    EXPECT_EQ(m_out, "no findings in 1 file\n");

    Write("wrong", "\n\nQVLANG=en\n\nMENU_OPEN=\"Opened\" file\nOK=\"OK\"\nOK=\"OK\"\n");
    EXPECT_EQ(Run({"check", "--baseline", known, file}), 1) << "the second short key is new";
    EXPECT_EQ(Count(m_out, "\n"), 2U) << m_out;
    EXPECT_NE(m_out.find(":7:1: error: OK: "), std::string::npos) << m_out;

    EXPECT_EQ(Run({"check", "--baseline", file, file}), 2);
    EXPECT_EQ(m_err, "orva-strings: error: " + file + ": this is not a baseline\n");
    EXPECT_EQ(Run({"check", "--baseline", Write("empty", ""), file}), 2);
}

TEST_F(OrvaStringsCheck, ReplacesNoFileButABaseline) {
    const std::string file = Write("wrong", kWrong);
    EXPECT_EQ(Run({"check", "--write-baseline", file, file}), 2);
    EXPECT_EQ(m_err, "orva-strings: error: " + file +
                         ": not replaced, since 'orva-strings check' has not written it\n");
    EXPECT_EQ(ReadFile(file), kWrong);
    EXPECT_EQ(Run({"check", "--write-baseline", Path(""), file}), 2);
    EXPECT_EQ(m_err,
              "orva-strings: error: " + Path("") + ": only a regular file can be replaced\n");
    const std::string longName = Path(std::string(300, 'x'));
    EXPECT_EQ(Run({"check", "--write-baseline", longName, file}), 2);
    EXPECT_EQ(m_err, "orva-strings: error: " + longName + ": File name too long\n");
    EXPECT_EQ(Run({"check", "--write-baseline", Path("known"), file}), 0);
    EXPECT_EQ(Run({"check", "--write-baseline", Path("known"), Write("clean", kClean)}), 0);
    EXPECT_EQ(ReadFile(Path("known")), "orva-strings baseline, version 1: rule, section, key\n");
    EXPECT_EQ(Run({"check", "--write-baseline", "-", file}), 0);
    EXPECT_EQ(m_out,
              "orva-strings baseline, version 1: rule, section, key\n"
              "short-key\ten\tOK\ntext-after-quote\ten\tMENU_OPEN\n");
}

TEST_F(OrvaStringsCheck, GoesOnAfterAFileThatItCannotRead) {
    const std::string bad = Write("bad", "QVLANG=en\nABC=\"x\"\n");
    const std::string missing =
        "orva-strings: error: " + Path("missing") + ": No such file or directory\n";
    EXPECT_EQ(Run({"check", Path("missing"), bad}), 2);
    EXPECT_EQ(m_err, missing);
    EXPECT_EQ(m_out.rfind(bad + ":2:1: error: ", 0), 0U) << m_out;
    EXPECT_EQ(Run({"check", Path("missing"), "--format", "json", Write("clean", kClean)}), 2);
    EXPECT_EQ(m_err, missing);

    EXPECT_EQ(Run({"check", "--write-baseline", Path("known"), bad, Path("missing")}), 2);
    EXPECT_EQ(m_err, missing);
    EXPECT_FALSE(std::filesystem::exists(Path("known"))) << "it would lack a file's findings";
}

TEST_F(OrvaStringsCheck, KeepsTabsAndLineFeedsOfNamesApartInABaseline) {
    const std::string file = Write("wrong", "QVLANG=a\tb\nO\tK=\"\"\n");
    EXPECT_EQ(Run({"check", "--write-baseline", Path("known"), file}), 0);
    EXPECT_EQ(ReadFile(Path("known")),
              "orva-strings baseline, version 1: rule, section, key\n"
              "short-key\ta\\tb\tO\\tK\n");
    EXPECT_EQ(Run({"check", "--baseline", Path("known"), file}), 0);
}

TEST_F(OrvaStringsCheck, DecodesWithTheKeyGiven) {
    const Bytes key = CountingBytes(32, 7);
    const std::string keyFile = Write("key", ToHex(key) + "\n");
    const std::string file =
        Write("shipped", "QVLANG=en\nIDE_TITLE=\"" + Stored("Title", key) + "\"\n");
    EXPECT_EQ(Run({"check", "--shipped", "--key-file", keyFile, file}), 0) << m_out;
    EXPECT_EQ(Run({"check", "--shipped", file}), 1);
    EXPECT_EQ(Count(m_out, "[damaged-text]"), 1U) << m_out;
    EXPECT_EQ(Run({"check", "--shipped", "--key-file", "-", file}, ToHex(key)), 0) << m_out;
}

TEST_F(OrvaStringsCheck, ColoursOnlyForATerminal) {
    const std::string file = Write("wrong", kWrong);
    const auto isColored = [&](const Words& options, bool isTerminal) {
        Words arguments = {"check"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        arguments.push_back(file);
        Run(arguments, "", {isTerminal, false});
        return m_out.find('\x1b') != std::string::npos;
    };
    EXPECT_TRUE(isColored({"--color", "always"}, false));
    EXPECT_FALSE(isColored({"--color", "never"}, true));
    EXPECT_FALSE(isColored({}, false));
    EXPECT_FALSE(isColored({"--color", "always", "--format", "github"}, true));
}

TEST_F(OrvaStringsCheck, RefusesWhatItCannotUse) {
    const std::string file = Write("clean", kClean);
    const auto error = [&](const Words& arguments) {
        EXPECT_EQ(Run(arguments), 2);
        EXPECT_EQ(m_out, "");
        return m_err;
    };
    EXPECT_EQ(error({"check", "--base", file, file, file}),
              "orva-strings: error: --base can be compared with only one FILE\n");
    EXPECT_EQ(error({"check", "--disable", "placehodler", file}),
              "orva-strings: error: unknown rule 'placehodler'; did you mean 'placeholder'? "
              "('orva-strings explain' lists the rules)\n");
    EXPECT_NE(error({"check", "--warn", "", file}), "");
    EXPECT_NE(error({"check", Path("missing")}), "");
    EXPECT_NE(error({"check", "--base", Path("missing"), file}), "");
    EXPECT_NE(error({"check", "--format", "xml", file}), "");
    EXPECT_NE(error({"check", "--baseline", file, "--write-baseline", Path("x"), file}), "");
    EXPECT_NE(error({"check"}), "");
    EXPECT_NE(error({"check", "-", "-"}), "");
}

TEST_F(OrvaStringsCheck, ExplainsEachRule) {
    EXPECT_EQ(Run({"explain", "stale"}), 0);
    EXPECT_EQ(
        m_out,
        "## stale\n\n"
        "With --base, a translation of a text that has changed since: warning. The reference's "
        "text is not what it was in the earlier file, but the translation is.\n\n"
        "If the earlier file was\n\n"
        "    QVLANG=en\n    MENU_OPEN=\"Open\"\n    QVLANG=de\n    MENU_OPEN=\"Öffnen\"\n\n"
        "there is a finding in\n\n"
        "    QVLANG=en\n    MENU_OPEN=\"Open…\"\n    QVLANG=de\n    MENU_OPEN=\"Öffnen\"\n\n"
        "and none in\n\n"
        "    QVLANG=en\n    MENU_OPEN=\"Open…\"\n    QVLANG=de\n    MENU_OPEN=\"Öffnen …\"\n\n");
    EXPECT_EQ(Run({"explain", "byte-order-mark"}), 0);
    EXPECT_NE(m_out.find("    \\xEF\\xBB\\xBFQVLANG=en\n"), std::string::npos) << m_out;
    EXPECT_EQ(Run({"explain", "not-utf-8"}), 0);
    EXPECT_NE(m_out.find("\"\\xD6ffnen\""), std::string::npos) << m_out;
    EXPECT_EQ(Run({"explain", "nothing"}), 2);
}

// On failure: orva-strings explain > RULES, and put that into the document.
TEST_F(OrvaStringsCheck, IsDocumentedAsItExplains) {
    const std::string document = ReadFile(ORVA_CHECKS_DOCUMENT);
    EXPECT_EQ(Run({"explain"}), 0);
    const std::size_t table = document.find("| rule |");
    ASSERT_NE(table, std::string::npos);
    EXPECT_EQ(document.substr(table), m_out);
}

}  // namespace
