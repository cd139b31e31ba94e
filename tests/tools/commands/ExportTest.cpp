// The command export, run in this process. Its documents are compared whole.
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/StoredForm.h"
#include "tests/tools/ToolTest.h"
#include "tools/orva-strings/system/Files.h"

using namespace std::string_literals;  // for texts that hold NUL bytes

namespace {

class Export : public ToolTest {
protected:
    // Exports the section de of a file to standard output.
    int RunGerman(const std::string& bytes, std::vector<std::string> more = {}) {
        more.insert(more.begin(), {"export", Write("x", bytes), "--language=de", "-o-"});
        more.insert(more.end(), {"--code=en=en", "--code=de=de-AT"});
        return Run(more);
    }

    // What is reported about the file.
    std::string Reported(const std::string& finding) const { return Path("x") + finding + '\n'; }
};

// A document with these units.
std::string Document(const std::string& units, const std::string& header = "",
                     const std::string& code = "de-AT") {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<xliff version=\"1.2\" xmlns=\"urn:oasis:names:tc:xliff:document:1.2\">\n"
           "  <file original=\"x\" source-language=\"en\" target-language=\"" +
           code + "\" datatype=\"plaintext\">\n" + header + "    <body>\n" + units +
           "    </body>\n"
           "  </file>\n"
           "</xliff>\n";
}

// A unit with these elements and attributes.
std::string Unit(const std::string& key, const std::string& elements,
                 const std::string& attributes = "") {
    return "      <trans-unit id=\"" + key + "\" resname=\"" + key + "\" xml:space=\"preserve\"" +
           attributes + ">\n" + elements + "      </trans-unit>\n";
}

std::string Source(const std::string& text) {
    return "        <source>" + text + "</source>\n";
}

std::string Target(const std::string& text) {
    return "        <target>" + text + "</target>\n";
}

std::string Note(const std::string& text) {
    return "        <note from=\"developer\">" + text + "</note>\n";
}

std::string Translated(const std::string& key, const std::string& source,
                       const std::string& target) {
    return Unit(key, Source(source) + Target(target), " approved=\"yes\"");
}

TEST_F(Export, WritesTheReferencesEntriesWithTheirTranslations) {
    EXPECT_EQ(RunGerman("QVLANG=en\nMENU_OPEN=\"Open\"\nMENU_QUIT=Quit\nEMPTY=\"\"\n"
                        "QVLANG=de\nMENU_QUIT=\"Beenden\"\nUNKNOWN=\"x\"\nEMPTY=\"\"\n"
                        "QVLANG=fr\nMENU_OPEN=\"Ouvrir\"\n"),
              0);
    EXPECT_EQ(m_out,
              Document(Unit("MENU_OPEN", Source("Open")) +
                       Translated("MENU_QUIT", "Quit", "Beenden") + Translated("EMPTY", "", "")));
    EXPECT_EQ(m_err, "");
}

TEST_F(Export, WritesWhatTheLibraryAnswers) {
    EXPECT_EQ(RunGerman("QVLANG=en\nMENU=\"1\\n2\\\"3\\t\"\nMENU=\"second\"\nLAST= \"a\" b\n"
                        "QVLANG=de\nMENU=  x\nMENU=\"zweiter\"\nLAST=\"z\n"
                        "QVLANG=DE\nMENU=\"y\"\n"),
              0);
    EXPECT_EQ(m_out, Document(Translated("MENU", "1&#10;2\\&quot;3\\t", "  x") +
                              Translated("LAST", "a", "z")));
}

TEST_F(Export, AsksForAReviewOfWhatIsStale) {
    const std::string base =
        Write("base",
              "QVLANG=en\nMENU_OPEN=\"Open\"\nMENU_SAVE=\"Save\"\nMENU_QUIT=\"Quit\"\nNEW1=1\n"
              "QVLANG=de\nMENU_OPEN=\"Auf\"\nMENU_SAVE=\"Sichern\"\nMENU_QUIT=\"Ende\"\n");
    const std::string file =
        "QVLANG=en\nMENU_OPEN=\"Open\"\nMENU_SAVE=\"Save all\"\nMENU_QUIT=\"Exit\"\nNEW1=2\n"
        "QVLANG=de\nMENU_OPEN=\"Auf\"\nMENU_SAVE=\"Sichern\"\nMENU_QUIT=\"Verlassen\"\n";
    const std::string units = Translated("MENU_OPEN", "Open", "Auf") +
                              Unit("MENU_SAVE", Source("Save all") +
                                                    "        <target state=\"needs-review-"
                                                    "translation\">Sichern</target>\n") +
                              Translated("MENU_QUIT", "Exit", "Verlassen") +
                              Unit("NEW1", Source("2"));
    EXPECT_EQ(RunGerman(file, {"--base", base}), 0);
    EXPECT_EQ(m_out, Document(units));
    EXPECT_EQ(m_err, "");

    const std::string output = Path("de.xlf");
    EXPECT_EQ(Run({"export", Write("x", file), "--language=de", "--base", base, "-o", output,
                   "--code=en=en", "--code=de=de-AT"}),
              0);
    EXPECT_EQ(m_err, output + ": wrote 4 entries, 1 without a translation, 1 to review\n");
    EXPECT_EQ(ReadFile(output), Document(units));
}

TEST_F(Export, AsksForAReviewInEachLanguageApart) {
    const std::string base =
        Write("base", "QVLANG=en\nMENU=1\nQVLANG=de\nMENU=a\nQVLANG=fr\nMENU=b\n");
    const std::string file =
        Write("x", "QVLANG=en\nMENU=2\nQVLANG=de\nMENU=c\nQVLANG=fr\nMENU=b\n");
    const std::string folder = Path("out");
    EXPECT_EQ(Run({"export", file, "--all", "--base", base, "-o", folder, "--code=en=en",
                   "--code=de=de", "--code=fr=fr"}),
              0);
    EXPECT_EQ(m_err, folder + "/de.xlf: wrote 1 entry\n" + folder +
                         "/fr.xlf: wrote 1 entry, 1 to review\n");
    EXPECT_EQ(ReadFile(folder + "/de.xlf"), Document(Translated("MENU", "2", "c"), "", "de"));
}

TEST_F(Export, AsksForNoReviewInASectionThatAnotherHides) {
    const std::string base = Write("base",
                                   "QVLANG=en\nMENU=1\nQVLANG=\"de\"\nMENU=a\nQVLANG=de\nMENU=a\n"
                                   "QVLANG=fr\nMENU=b\n");
    const std::string file =
        "QVLANG=en\nMENU=2\nQVLANG=\"de\"\nMENU=c\nQVLANG=de\nMENU=a\n"
        "QVLANG=fr\nMENU=b\n";
    EXPECT_EQ(RunGerman(file, {"--base", base}), 0);
    EXPECT_EQ(m_out, Document(Translated("MENU", "2", "a")));
}

TEST_F(Export, RefusesABaseWithoutTheReference) {
    const std::string base = Write("base", "QVLANG=fr\nMENU=1\n");
    EXPECT_EQ(RunGerman("QVLANG=en\nMENU=2\nQVLANG=de\nMENU=a\n", {"--base", base}), 1);
    EXPECT_EQ(m_err, Reported(": error: the earlier file has no section en"));
    EXPECT_EQ(m_out, "");
    EXPECT_EQ(RunGerman("QVLANG=en\nMENU=2\nQVLANG=de\nMENU=a\n", {"--base", Path("none")}), 2);
}

TEST_F(Export, EscapesWhatXmlGivesAMeaning) {
    EXPECT_EQ(RunGerman("QVLANG=en\n<&\">'=\"a<b>&amp;\"'\"\nTA\tB\r=\"\t\r\\n\x7F \"\r\n"
                        "QVLANG=de\nTA\tB\r=\"]]>\"\n"),
              0);
    EXPECT_EQ(m_out, Document(Unit("&lt;&amp;&quot;&gt;'", Source("a&lt;b&gt;&amp;amp;&quot;'")) +
                              Translated("TA&#9;B&#13;", "&#9;&#13;&#10;\x7F ", "]]&gt;")));
}

TEST_F(Export, LeavesOutWhatXmlCannotHold) {
    const std::pair<std::string, bool> cases[] = {
        {"\x01", false},
        {"\x1F", false},
        {"\0"s, false},
        {"\x08", false},
        {"\x0B", false},
        {"\xFF", false},
        {"\xC3", false},
        {"\xED\xA0\x80", false},
        {"\xEF\xBF\xBE", false},
        {"\xEF\xBF\xBF", false},
        {"\xEF\xBF\xBD", true},
        {"\xF0\x9F\x98\x80", true},
        {" ", true},
    };
    const std::string why =
        ": left out, since XML can't hold it: it has control characters, or bytes that are not "
        "UTF-8";
    const std::string good = Unit("GOOD", Source("x"));
    for (const auto& [text, isHeld] : cases) {
        SCOPED_TRACE(testing::PrintToString(text));
        EXPECT_EQ(RunGerman("QVLANG=en\nMENU=\"" + text + "\"\nGOOD=\"x\"\nQVLANG=de\n"),
                  isHeld ? 0 : 1);
        EXPECT_EQ(m_out, Document((isHeld ? Unit("MENU", Source(text)) : "") + good));
        EXPECT_EQ(m_err, isHeld ? "" : Reported(":2: error: MENU" + why));

        EXPECT_EQ(
            RunGerman("QVLANG=en\nMENU=\"x\"\nGOOD=\"x\"\nQVLANG=de\nMENU=\"" + text + "\"\n"),
            isHeld ? 0 : 1);
        EXPECT_EQ(m_out, Document((isHeld ? Translated("MENU", "x", text) : "") + good));
        EXPECT_EQ(m_err, isHeld ? "" : Reported(":5: error: MENU" + why));
    }
    EXPECT_EQ(RunGerman("QVLANG=en\nME\x01NU=\"a\"\nGOOD=\"x\"\nQVLANG=de\n"), 1);
    EXPECT_EQ(m_out, Document(good));
    EXPECT_EQ(m_err, Reported(":2: error: ME\\x01NU" + why));
}

TEST_F(Export, CountsOnlyWhatItWrites) {
    const std::string file = Write("x",
                                   "QVLANG=en\nONE_=\"1\"\nTWO_=\"2\"\nNINE=\"9\"\n"
                                   "QVLANG=de\nONE_=\"\x01\"\nNINE=\"9\"\nONE_=\"2\"\n");
    const std::string output = Path("o");
    EXPECT_EQ(Run({"export", file, "--language=de", "-o", output, "--code=en=en", "--code=de=de"}),
              1);
    EXPECT_EQ(m_err, output + ": wrote 2 entries, 1 without a translation\n" + file +
                         ":6: error: ONE_: left out, since XML can't hold it: it has control "
                         "characters, or bytes that are not UTF-8\n");
}

TEST_F(Export, TakesTheCommentRightAboveAnEntryForANote) {
    EXPECT_EQ(RunGerman("# the file\nQVLANG=en\n# first\n; second & third\nONE_=\"1\"\n"
                        "// far\n\nTWO_=\"2\"\n"
                        "  /* -5 \xC2\xB0 */\n * middle\n */\nTHREE=\"3\"\n"
                        "# lost\nnothing\n-- x --\nFOUR=\"4\"\n"
                        "#\n# MENU=\"5\"\n##\nFIVE=\"5\"\n"
                        "# once\nFIVE=\"6\"\nSIX_=\"6\"\n"
                        "/\nSEVEN=\"7\"\n//* y*/\nEIGHT=\"8\"\n"
                        "*\n#*\nNINE=\"9\"\n# 1 */\nTEN_=\"10\"\n"
                        "QVLANG=de\n# Deutsch\nSIX_=\"6\"\n"),
              0);
    EXPECT_EQ(m_out, Document(Unit("ONE_", Source("1") + Note("first&#10;second &amp; third")) +
                              Unit("TWO_", Source("2")) +
                              Unit("THREE", Source("3") + Note("-5 \xC2\xB0&#10;middle")) +
                              Unit("FOUR", Source("4") + Note("x --")) +
                              Unit("FIVE", Source("5") + Note("MENU=&quot;5&quot;")) +
                              Translated("SIX_", "6", "6") + Unit("SEVEN", Source("7")) +
                              Unit("EIGHT", Source("8") + Note("y")) +
                              Unit("NINE", Source("9") + Note("*")) +
                              Unit("TEN_", Source("10") + Note("1 */"))));
}

TEST_F(Export, LeavesOutANoteThatXmlCannotHold) {
    EXPECT_EQ(RunGerman("QVLANG=en\n# \xE4\nMENU=\"x\"\nQVLANG=de\n"), 0);
    EXPECT_EQ(m_out, Document(Unit("MENU", Source("x"))));
    EXPECT_EQ(m_err,
              Reported(":3: warning: MENU: the comment above it is left out, since XML can't hold "
                       "it: it has control characters, or bytes that are not UTF-8"));
}

TEST_F(Export, WritesTheLimitsOfDirectives) {
    EXPECT_EQ(RunGerman("QVLANG=en\n# note\n# orva: max-length 12\n# orva: disable-next-line x\n"
                        "ONE_=\"1\"\nTWO_=\"2\"\n# orva: max-length x\n# orva: language 3\n"
                        "THREE=\"3\"\n# orva: max-length 4\n\nFOUR=\"4\"\n"
                        "QVLANG=de\n# orva: max-length 0\nTWO_=\"2\"\n"),
              0);
    EXPECT_EQ(m_out, Document(Unit("ONE_", Source("1") + Note("note"),
                                   " maxwidth=\"12\" size-unit=\"char\"") +
                              Unit("TWO_", Source("2") + Target("2"),
                                   " maxwidth=\"0\" size-unit=\"char\" approved=\"yes\"") +
                              Unit("THREE", Source("3")) + Unit("FOUR", Source("4"))));

    EXPECT_EQ(RunGerman("QVLANG=en\n# orva: max-length 5\nMENU=\"x\"\n"
                        "QVLANG=de\n# orva: max-length 3\nMENU=\"x\"\n"),
              0);
    EXPECT_EQ(m_out, Document(Unit("MENU", Source("x") + Target("x"),
                                   " maxwidth=\"3\" size-unit=\"char\" approved=\"yes\"")))
        << "the last limit of a key, as in check";
}

TEST_F(Export, LeavesOutProtectedEntries) {
    const std::string bytes =
        "QVLANG=en\n# IDE_OLD=\"old\"\nIDE_A=\"secret\"\n# ide_b: \"b\"\n"
        "MENU=\"x\"\nIDE_A=\"again\"\nQVLANG=de\nIDE_A=\"geheim\"\n";
    EXPECT_EQ(RunGerman(bytes), 0);
    EXPECT_EQ(m_out, Document(Unit("MENU", Source("x"))));
    EXPECT_EQ(m_err, "");
    const std::string output = Path("o");
    EXPECT_EQ(RunGerman(bytes, {"-o", output}), 2) << "-o twice";
    EXPECT_EQ(
        Run({"export", Path("x"), "--language=de", "-o", output, "--code=en=en", "--code=de=de"}),
        0);
    EXPECT_EQ(m_err, output + ": wrote 1 entry, 1 without a translation, left out 1 protected\n");
}

TEST_F(Export, LeavesOutWhatMayHoldAProtectedText) {
    EXPECT_EQ(RunGerman("QVLANG=en\n\"IDE_QUOTED\" = \"secret-1\"\n- IDE_DASH=\"secret-2\"\n"
                        "\"MENU_X\": \"IDE_IN=\"secret-3\"\nIDE_NAME:\"secret-4\"=\"\"\n"
                        "MENU_SAME=\"secret-1\"\n# Say secret-2 here\nMENU_OK=\"fine\"\n"
                        "MENU_NOT=\"x\"\nIDE_A=\"secret-5\"\nsecret-5=\"x\"\n"
                        "QVLANG=de\nMENU_NOT=\"secret-5\"\n"),
              0);
    EXPECT_EQ(m_out, Document(Unit("MENU_OK", Source("fine"))));
    EXPECT_EQ(m_err.find("secret"), std::string::npos) << m_err;
    EXPECT_NE(m_err.find(":6: warning: MENU_SAME: left out, since it may hold a protected text\n"),
              std::string::npos)
        << m_err;
    EXPECT_NE(m_err.find(":4: warning: left out, since it may hold a protected text\n"),
              std::string::npos)
        << m_err;
}

TEST_F(Export, ApprovesNoEmptyTranslation) {
    EXPECT_EQ(RunGerman("QVLANG=en\nMENU=\"x\"\nQVLANG=de\nMENU=\"\"\n"), 0);
    EXPECT_EQ(m_out, Document(Unit("MENU", Source("x") + Target(""))));
}

TEST_F(Export, RevealsProtectedEntriesIfAsked) {
    const std::string header =
        "    <header>\n"
        "      <note>Protected texts are readable in this file. Keep it from others.</note>\n"
        "    </header>\n";
    const std::string bytes = "QVLANG=en\nIDE_A=\"" + Stored("a & b", DevelopmentKey()) +
                              "\"\n# IDE_OLD=\"old\"\nIDE_B=\"readable\"\nQVLANG=de\nIDE_A=\"" +
                              Stored("x", DevelopmentKey()) + "\"\n";
    EXPECT_EQ(RunGerman(bytes, {"--reveal"}), 0);
    EXPECT_EQ(m_out,
              Document(Translated("IDE_A", "a &amp; b", "x") +
                           Unit("IDE_B", Source("readable") + Note("IDE_OLD=&quot;old&quot;")),
                       header));

    const std::string why =
        "error: IDE_A: left out, since its value looks stored but does not decode: it was damaged "
        "or made with another key";
    const std::string keyFile = Write("key", std::string(64, 'A') + '\n');
    EXPECT_EQ(RunGerman(bytes, {"--reveal", "--key-file", keyFile}), 1);
    EXPECT_EQ(m_out, Document(Unit("IDE_B", Source("readable") + Note("IDE_OLD=&quot;old&quot;")),
                              header));
    EXPECT_EQ(m_err, Reported(":2: " + why));

    const std::string control =
        "QVLANG=en\nIDE_A=\"" + Stored("a\x01", DevelopmentKey()) + "\"\nQVLANG=de\n";
    EXPECT_EQ(RunGerman(control, {"--reveal"}), 1);
    EXPECT_EQ(m_out, Document("", header));
    EXPECT_EQ(m_err, Reported(":2: error: IDE_A: left out, since XML can't hold it: it has control "
                              "characters, or bytes that are not UTF-8"));
}

const std::string kThree =
    "QVLANG=English\n# orva: language en\nMENU=\"Open\"\nNEXT=\"Next\"\n"
    "QVLANG=Deutsch\n# orva: language de\nMENU=\"\xC3\x96"
    "ffnen\"\n"
    "QVLANG=Polski\n# orva: language pl\n";

std::string German() {
    return Document(Translated("MENU", "Open",
                               "\xC3\x96"
                               "ffnen") +
                        Unit("NEXT", Source("Next")),
                    "", "de");
}

std::string Polish() {
    return Document(Unit("MENU", Source("Open")) + Unit("NEXT", Source("Next")), "", "pl");
}

TEST_F(Export, WritesAFileForEachLanguage) {
    const std::string file = Write("x", kThree + "QVLANG=deutsch\nMENU=\"x\"\n");
    const std::string folder = Path("out");
    EXPECT_EQ(Run({"export", file, "--all", "-o", folder}), 0);
    EXPECT_EQ(ReadFile(folder + "/de.xlf"), German());
    EXPECT_EQ(ReadFile(folder + "/pl.xlf"), Polish());
    EXPECT_EQ(m_err, folder + "/de.xlf: wrote 2 entries, 1 without a translation\n" + folder +
                         "/pl.xlf: wrote 2 entries, 2 without a translation\n" + file +
                         ":10: warning: no load can reach this section, so it is not "
                         "exported\n");
    EXPECT_FALSE(std::filesystem::exists(folder + "/en.xlf"));

    EXPECT_EQ(Run({"export", file, "--language", "polski", "--language", "Polski", "--language",
                   "English", "--reference", "Deutsch", "-o", folder}),
              0);
    EXPECT_EQ(m_err, folder + "/pl.xlf: wrote 1 entry, 1 without a translation\n" + folder +
                         "/en.xlf: wrote 1 entry\n");
}

TEST_F(Export, WritesOneLanguageToAFile) {
    const std::string file = Write("x", kThree);
    const std::string output = Write("o", "<!-- by another program --><xliff/>");
    EXPECT_EQ(Run({"export", file, "--language", "DEUTSCH", "-o", output}), 0);
    EXPECT_EQ(ReadFile(output), German());
    EXPECT_EQ(m_out, "");

    const std::string folder = Path("folder");
    std::filesystem::create_directory(folder);
    EXPECT_EQ(Run({"export", file, "--language", "Deutsch", "-o", folder}), 0);
    EXPECT_EQ(ReadFile(folder + "/de.xlf"), German());

    EXPECT_EQ(Run({"export", "-", "--language", "Polski", "-o", output}, kThree), 0);
    EXPECT_NE(ReadFile(output).find("<file original=\"-\" "), std::string::npos);
}

TEST_F(Export, NeedsALanguageCodeForEachSection) {
    const std::string file = Write("x", "QVLANG=English\nMENU=\"x\"\nQVLANG=Deutsch\n");
    EXPECT_EQ(Run({"export", file, "--all", "-o", Path("o")}), 1);
    EXPECT_EQ(m_err, file +
                         ":1: error: the section English has no language code; '# orva: "
                         "language CODE' below this line would say it, or --code English=CODE\n" +
                         file +
                         ":3: error: the section Deutsch has no language code; '# orva: "
                         "language CODE' below this line would say it, or --code Deutsch=CODE\n");
    EXPECT_FALSE(std::filesystem::exists(Path("o")));
    EXPECT_EQ(Run({"export", file, "--all", "-o", Path("o"), "--code", "English=e"}), 2);
    EXPECT_EQ(m_err,
              "orva-strings: error: --code: 'English=e' has no language code, such as de, "
              "pt-BR or zh-Hant\n");
}

TEST_F(Export, RefusesSectionsThatItCannotExport) {
    const std::string file = Write("x", kThree);
    EXPECT_EQ(Run({"export", file, "--language", "english", "-o-"}), 1);
    EXPECT_EQ(m_err, file +
                         ":1: error: this section is the reference, which has no translations "
                         "of its own\n");
    EXPECT_EQ(Run({"export", file, "--language", "Deutsh", "--language", "Polski", "-o-"}), 1);
    EXPECT_EQ(m_err, file + ": error: there is no section Deutsh; did you mean 'Deutsch'?\n");
    EXPECT_EQ(Run({"export", file, "--all", "--reference", "x", "-o", Path("o")}), 1);
    EXPECT_EQ(m_err, file + ": error: there is no section x\n");
    EXPECT_EQ(Run({"export", file, "--all", "--code", "Deutch=de", "-o", Path("o")}), 1);
    EXPECT_EQ(m_err, file + ": error: there is no section Deutch; did you mean 'Deutsch'?\n");
    EXPECT_EQ(
        Run({"export", Write("one", "QVLANG=en\n"), "--all", "--code=en=en", "-o", Path("o")}), 1);
    EXPECT_EQ(m_err, Path("one") + ": error: the file has no section but the reference\n");
    EXPECT_EQ(Run({"export", Write("none", "MENU=1\n"), "--all", "-o", Path("o")}), 1);
    EXPECT_EQ(m_err, Path("none") + ": error: the file has no section\n");
    EXPECT_EQ(m_out, "");
}

TEST_F(Export, RefusesWrongOutputs) {
    const std::string file = Write("x", kThree);
    const auto expectUsageError = [&](const std::vector<std::string>& arguments,
                                      const std::string& error) {
        std::vector<std::string> all = {"export", file};
        all.insert(all.end(), arguments.begin(), arguments.end());
        EXPECT_EQ(Run(all), 2);
        EXPECT_EQ(m_out, "");
        EXPECT_EQ(m_err, "orva-strings: error: " + error + '\n');
        EXPECT_EQ(ReadFile(file), kThree);
    };
    expectUsageError({"-o-"}, "--language or --all must say what to export");
    expectUsageError({"--all", "-o-"}, "-o: --all and several languages need a folder");
    expectUsageError({"--language=Deutsch", "--language=Polski", "-o-"},
                     "-o: --all and several languages need a folder");
    expectUsageError({"--language=Deutsch", "-o", file},
                     file + ": the output would overwrite this file");
    expectUsageError({"--all", "-o", file}, "-o: --all and several languages need a folder");
    expectUsageError({"--all", "-o", Path("no/folder")},
                     Path("no/folder") + ": No such file or directory");
    const std::string longName = Path(std::string(300, 'x'));
    expectUsageError({"--all", "-o", longName}, longName + ": File name too long");

    const std::string key = Write("de.xlf", std::string(64, 'A'));
    const std::string folder = std::filesystem::path(key).parent_path();
    expectUsageError({"--all", "--reveal", "--key-file", key, "-o", folder},
                     key + ": the output would overwrite this file");
    EXPECT_EQ(ReadFile(key), std::string(64, 'A'));

    expectUsageError(
        {"--language=Deutsch", "-o", Write("other", "x")},
        Path("other") + ": not replaced, since 'orva-strings export' has not written it");
    expectUsageError({"--language=Deutsch", "-o", Write("o", std::string(1000, ' ') + "<xliff")},
                     Path("o") + ": not replaced, since 'orva-strings export' has not written it");
    EXPECT_EQ(ReadFile(Path("other")), "x");
    const std::string base = Write("base", kThree);
    expectUsageError({"--language=Deutsch", "--base", base, "-o", base},
                     base + ": the output would overwrite this file");
    EXPECT_EQ(ReadFile(base), kThree);

    const std::string name = Write("\xFF", kThree);
    EXPECT_EQ(Run({"export", name, "--language=Deutsch", "-o-"}), 2);
    EXPECT_EQ(m_err, "orva-strings: error: " + name + ": XML can't hold this name\n");
}

}  // namespace
