// The command import, run in this process. What it makes of the strings file is compared whole.
#include <algorithm>
#include <cstddef>
#include <iterator>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <OrvaLanguage/KorString.h>
#include <gtest/gtest.h>

#include "strings/LocalizedStrings.h"
#include "tests/support/StoredForm.h"
#include "tests/tools/ToolTest.h"
#include "tools/orva-strings/document/FindSection.h"
#include "tools/orva-strings/document/LoadedSection.h"
#include "tools/orva-strings/system/Files.h"

namespace {

// What XML needs, and nothing else.
std::string Escaped(const std::string& text) {
    std::string escaped;
    for (const char c : text) {
        escaped += c == '&'    ? "&amp;"
                   : c == '\n' ? "&#10;"
                   : c == '<'  ? "&lt;"
                   : c == '>'  ? "&gt;"
                   : c == '"'  ? "&quot;"
                   : c == '\r' ? "&#13;"
                               : std::string(1, c);
    }
    return escaped;
}

struct Unit {
    std::string id;
    std::string source;
    std::string target;
    std::string state = "translated";
};

std::string Xml(const Unit& unit) {
    return "<trans-unit id=\"" + Escaped(unit.id) + "\">\n<source>" + Escaped(unit.source) +
           "</source>\n<target state=\"" + unit.state + "\">" + Escaped(unit.target) +
           "</target>\n</trans-unit>\n";
}

// A <file> of these units, from line 1 on: the first unit is on line 2.
std::string Part(const std::string& language, const std::string& units,
                 const std::string& sourceLanguage = "en") {
    return "<file source-language=\"" + sourceLanguage + "\" target-language=\"" + language +
           "\"><body>\n" + units + "</body></file>";
}

std::string Whole(const std::string& parts) {
    return "<xliff version=\"1.2\" xmlns=\"urn:oasis:names:tc:xliff:document:1.2\">" + parts +
           "</xliff>\n";
}

const std::string kSource =
    "Notes\n"
    "QVLANG=English\n"
    "MENU_OPEN=\"Open\"\n"
    "MENU_SAVE=\"Save\\nnow\"\n"
    "MENU_QUIT=\"Quit\"\n"
    "QVLANG=Deutsch\n"
    "# of the menu\n"
    "MENU_QUIT = \"not this\"\n"
    "MENU_QUIT=\"Ende\" ; short\n"
    "MENU_OPEN=\"Auf\"\n"
    "MENU_OPEN=\"zweites Mal\"\n"
    "NUR_HIER=\"x\"\n"
    "QVLANG=deutsch\n"
    "MENU_OPEN=\"unerreichbar\"\n"
    "QVLANG=Français\n"
    "MENU_OPEN=\"Ouvrir\"";

class Import : public ToolTest {
protected:
    void SetUp() override { Write("s.strings", kSource); }
    void TearDown() override { gMapLocalizedStrings.Clear(); }

    // Imports one document.
    int RunOn(const std::string& document, const std::vector<std::string>& options = {}) {
        Write("x.xlf", document);
        return RunWith({"x.xlf"}, options);
    }

    int RunWith(const std::vector<std::string>& documents,
                const std::vector<std::string>& options = {}) {
        std::vector<std::string> arguments = {"import"};
        for (const char* const code :
             {"English=en", "Deutsch=de", "Français=fr", "Italiano=it", "Nederlands=nl"}) {
            arguments.insert(arguments.end(), {"--code", code});
        }
        arguments.insert(arguments.end(), options.begin(), options.end());
        arguments.push_back(Path("s.strings"));
        for (const std::string& document : documents) {
            arguments.push_back(Path(document));
        }
        const int status = Run(arguments);
        EXPECT_EQ(m_out, "");
        // Without the folder.
        const std::string folder = Path("");
        for (std::size_t at = m_err.find(folder); at != std::string::npos;
             at = m_err.find(folder)) {
            m_err.erase(at, folder.size());
        }
        return status;
    }

    int RunOnUnits(const std::vector<Unit>& units, const std::vector<std::string>& options = {}) {
        std::string xml;
        for (const Unit& unit : units) {
            xml += Xml(unit);
        }
        return RunOn(Whole(Part("de", xml)), options);
    }

    std::string Strings() const { return ReadFile(Path("s.strings")); }

    // The source with one text in place of another.
    static std::string With(const std::vector<std::pair<std::string, std::string>>& changes,
                            std::string text = kSource) {
        for (const auto& [before, after] : changes) {
            text.replace(text.find(before), before.size(), after);
        }
        return text;
    }
};

TEST_F(Import, ChangesTheTextsThatTheLibraryAnswers) {
    EXPECT_EQ(RunOnUnits({{"MENU_OPEN", "Open", "Öffnen"},
                          {"MENU_SAVE", "Save\nnow", ""},
                          {"MENU_QUIT", "Quit", "Ende"}}),
              0);
    EXPECT_EQ(m_err, "s.strings: changed 1 entry, 1 was the same\n");
    EXPECT_EQ(Strings(), With({{"\"Auf\"", "\"Öffnen\""}}));

    EXPECT_EQ(RunOnUnits({{"MENU_QUIT", "Quit", "a\nb"}, {"MENU_OPEN", "Open", " "}}), 0);
    EXPECT_EQ(m_err, "s.strings: changed 2 entries\n");
    EXPECT_EQ(Strings(), With({{"\"Auf\"", "\" \""}, {"\"Ende\"", "\"a\\nb\""}}));
}

TEST_F(Import, ChangesNothingIfEachTextIsTheSame) {
    const std::vector<Unit> units = {{"MENU_OPEN", "Open", "Auf"}, {"MENU_QUIT", "Quit", "Ende"}};
    for (const std::vector<std::string>& options :
         {std::vector<std::string>{}, std::vector<std::string>{"--create"}}) {
        EXPECT_EQ(RunOnUnits(units, options), 0);
        EXPECT_EQ(m_err, "s.strings: changed 0 entries, 2 were the same\n");
        EXPECT_EQ(Strings(), kSource);
    }
    EXPECT_EQ(RunOnUnits(units, {"--check"}), 0);
    EXPECT_EQ(m_err, "");
}

TEST_F(Import, OnlySaysWhatWouldChange) {
    EXPECT_EQ(RunOnUnits({{"MENU_OPEN", "Open", "Öffnen"}, {"MENU_SAVE", "Save\nnow", "Sichern"}},
                         {"--check", "--create"}),
              1);
    EXPECT_EQ(m_err, "s.strings: would change 1 entry, add 1\n");
    EXPECT_EQ(Strings(), kSource);
}

TEST_F(Import, WritesStandardInputToStandardOutput) {
    const std::string document =
        Write("x.xlf", Whole(Part("de", Xml({"MENU_OPEN", "Open", "Öffnen"}))));
    const std::vector<std::string> arguments = {"import",     "--code", "English=en", "--code",
                                                "Deutsch=de", "-",      document};
    EXPECT_EQ(Run(arguments, kSource), 0);
    EXPECT_EQ(m_out, With({{"\"Auf\"", "\"Öffnen\""}}));
    EXPECT_EQ(m_err, "");
}

TEST_F(Import, CreatesEntriesBelowTheSectionsLanguage) {
    const std::string document =
        Write("x.xlf", Whole(Part("de", Xml({"MENU_OPEN", "Open", "Auf"}))));
    const std::string reference = "QVLANG=English\n# orva: language en\nMENU_OPEN=\"Open\"\n";
    const std::string begin = reference + "QVLANG=Deutsch\n# by X\n# orva: language de\n";
    const std::string end = "# orva: max-length 9\nMENU_QUIT=\"Ende\"\n# orva: language de\n";
    EXPECT_EQ(Run({"import", "--create", "-", document}, begin + end), 0);
    EXPECT_EQ(m_out, begin + "MENU_OPEN=\"Auf\"\n" + end);
}

TEST_F(Import, TakesSeveralDocumentsAndLanguages) {
    Write("1.xlf", Whole(Part("fr", Xml({"MENU_OPEN", "Open", "Ouvrir…"})) +
                         Part("DE", Xml({"MENU_OPEN", "Open", "Öffnen"}))));
    Write("2.xlf", Whole(Part("de", Xml({"MENU_QUIT", "Quit", "Schluss"}))));
    EXPECT_EQ(RunWith({"1.xlf", "2.xlf"}), 0);
    EXPECT_EQ(m_err, "s.strings: changed 3 entries\n");
    EXPECT_EQ(Strings(),
              With({{"Auf", "Öffnen"}, {"Ende", "Schluss"}, {"\"Ouvrir\"", "\"Ouvrir…\""}}));
}

TEST_F(Import, FindsTheKeyByIdThenByResname) {
    const std::string content = "<source>Open</source><target>Öffnen</target></trans-unit>\n";
    EXPECT_EQ(RunOn(Whole(Part("de", "<trans-unit id=\"1\" resname=\"MENU_OPEN\">" + content))), 0);
    EXPECT_EQ(Strings(), With({{"\"Auf\"", "\"Öffnen\""}}));
    Write("s.strings", kSource);
    EXPECT_EQ(
        RunOn(Whole(Part("de", "<trans-unit id=\"MENU_OPEN\" resname=\"MENU_QUIT\">" + content))),
        0);
    EXPECT_EQ(Strings(), With({{"\"Auf\"", "\"Öffnen\""}}));
}

TEST_F(Import, WarnsOfAKeyThatTheReferenceLacks) {
    EXPECT_EQ(RunOnUnits({{"NUR_HIER", "x", "y"},
                          {"QVLANG", "English", "y"},
                          {"MENU\x7F", "x", "y"},
                          {"MENU_OPEN", "Open", "Öffnen"}},
                         {"--create"}),
              0);
    EXPECT_EQ(m_err,
              "x.xlf:2: warning: NUR_HIER: the reference has no such key\n"
              "x.xlf:6: warning: QVLANG: the reference has no such key\n"
              "x.xlf:10: warning: MENU\\x7F: the reference has no such key\n"
              "s.strings: changed 1 entry\n");
    EXPECT_EQ(Strings(), With({{"\"Auf\"", "\"Öffnen\""}}));
}

TEST_F(Import, PassesOverASourceThatIsNotTheReferencesText) {
    const std::vector<Unit> units = {{"MENU_OPEN", "open", "Öffnen"},
                                     {"MENU_QUIT", "Quit", "Schluss"}};
    EXPECT_EQ(RunOnUnits(units), 0);
    EXPECT_EQ(m_err,
              "x.xlf:2: warning: MENU_OPEN: passed over, since its source is no longer the text "
              "of the reference\n"
              "s.strings: changed 1 entry\n");
    EXPECT_EQ(Strings(), With({{"Ende", "Schluss"}}));
    EXPECT_EQ(RunOnUnits(units, {"--accept-stale"}), 0);
    EXPECT_EQ(m_err, "s.strings: changed 1 entry, 1 was the same\n");
    EXPECT_EQ(Strings(), With({{"Ende", "Schluss"}, {"\"Auf\"", "\"Öffnen\""}}));

    Write("s.strings", kSource);
    EXPECT_EQ(RunOn(Whole(Part("de",
                               "<trans-unit id=\"MENU_OPEN\"><target>a</target>"
                               "</trans-unit>"))),
              0);
    EXPECT_EQ(Strings(), kSource) << "no source";
}

TEST_F(Import, PassesOverWhatIsNotFinished) {
    const std::vector<std::pair<std::string, bool>> states = {
        {"new", false},
        {"needs-adaptation", false},
        {"needs-l10n", false},
        {"needs-review-adaptation", false},
        {"needs-review-l10n", false},
        {"needs-review-translation", false},
        {"needs-translation", false},
        {"final", true},
        {"signed-off", true},
        {"translated", true},
        {"x-own", true},
        {"newer", true},
        {"", true},
    };
    for (const auto& [state, isFinished] : states) {
        SCOPED_TRACE(state);
        Write("s.strings", kSource);
        const Unit unit = {"MENU_OPEN", "Open", "Öffnen", state};
        EXPECT_EQ(RunOnUnits({unit}, {"--accept-state", state == "new" ? "needs-l10n" : "new"}), 0);
        EXPECT_EQ(m_err, isFinished ? "s.strings: changed 1 entry\n"
                                    : "s.strings: changed 0 entries, 1 is not finished\n");
        EXPECT_EQ(Strings(), isFinished ? With({{"\"Auf\"", "\"Öffnen\""}}) : kSource);
        if (!isFinished) {
            EXPECT_EQ(RunOnUnits({unit}, {"--accept-state", "needs-l10n", "--accept-state", state}),
                      0);
            EXPECT_EQ(Strings(), With({{"\"Auf\"", "\"Öffnen\""}}));
        }
    }
    EXPECT_EQ(RunOnUnits({}, {"--accept-state", "final"}), 2);
}

TEST_F(Import, RefusesInlineElementsThatATextCantHold) {
    const auto unit = [](const std::string& key, const std::string& source,
                         const std::string& target) {
        return "<trans-unit id=\"" + key + "\"><source>" + source + "</source><target>" + target +
               "</target></trans-unit>\n";
    };
    EXPECT_EQ(RunOn(Whole(Part(
                  "de", unit("MENU_OPEN", "Open", "<g id=\"1\">Öffnen</g>") +
                            unit("MENU_QUIT", "<ph id=\"1\">Qu</ph>it", "<ph id=\"1\">En</ph>d")))),
              1);
    EXPECT_EQ(m_err,
              "x.xlf:2: error: MENU_OPEN: the inline element <g> stands for what a text can't "
              "hold, so the text is not imported\n"
              "s.strings: changed 1 entry\n");
    EXPECT_EQ(Strings(), With({{"Ende", "End"}}));
    EXPECT_EQ(RunOn(Whole(Part("de", unit("MENU_OPEN", "Open<x id=\"1\"/>", "Öffnen")))), 1);
    EXPECT_EQ(RunOn(Whole(Part("de", unit("MENU_OPEN", "<g id=\"1\">Open</g>", "")))), 0)
        << "no translation";
}

TEST_F(Import, ChangesNothingIfAKeyComesTwice) {
    const Unit first = {"MENU_OPEN", "Open", "Öffnen"};
    const Unit other = {"MENU_QUIT", "Quit", "Schluss"};
    const std::string error =
        "error: MENU_OPEN: this key comes twice for one language, so nothing is imported\n";
    EXPECT_EQ(RunOnUnits({first, other, first}), 1);
    EXPECT_EQ(m_err, "x.xlf:10: " + error);
    EXPECT_EQ(Strings(), kSource);

    // Also if the one was passed over.
    EXPECT_EQ(RunOnUnits({{"MENU_OPEN", "Open", ""}, first}), 1);
    EXPECT_EQ(Strings(), kSource);

    Write("1.xlf", Whole(Part("de", Xml(other) + Xml(first))));
    Write("2.xlf", Whole(Part("fr", Xml(first)) + Part("de", Xml(first))));
    EXPECT_EQ(RunWith({"1.xlf", "2.xlf"}), 1);
    EXPECT_EQ(m_err, "2.xlf:7: " + error);
    EXPECT_EQ(Strings(), kSource);

    // In a section that is to be added.
    EXPECT_EQ(RunOn(Whole(Part("nl", Xml(first)) + Part("nl", Xml(first))), {"--create"}), 1);
    EXPECT_EQ(Strings(), kSource);
}

TEST_F(Import, AddsEntriesInTheOrderOfTheReference) {
    const std::vector<Unit> units = {{"MENU_SAVE", "Save\nnow", "Sichern\njetzt"}};
    EXPECT_EQ(RunOnUnits(units), 0);
    EXPECT_EQ(m_err,
              "x.xlf:2: warning: MENU_SAVE: the section lacks this key; --create adds it\n"
              "s.strings: changed 0 entries\n");
    EXPECT_EQ(Strings(), kSource);
    EXPECT_EQ(RunOnUnits(units, {"--create"}), 0);
    EXPECT_EQ(m_err, "s.strings: changed 0 entries, added 1\n");
    EXPECT_EQ(
        Strings(),
        With({{"MENU_OPEN=\"Auf\"\n", "MENU_OPEN=\"Auf\"\nMENU_SAVE=\"Sichern\\njetzt\"\n"}}));

    // Below the header, and below others that are added.
    Write("s.strings", "QVLANG=English\nAAAA=1\nBBBB=2\nCCCC=3\nDDDD=4\nQVLANG=Deutsch\nCCCC=3\n");
    EXPECT_EQ(RunOnUnits({{"DDDD", "4", "vier"},
                          {"BBBB", "2", "zwei"},
                          {"CCCC", "3", "drei"},
                          {"AAAA", "1", "eins"}},
                         {"--create"}),
              0);
    EXPECT_EQ(m_err, "s.strings: changed 1 entry, added 3\n");
    EXPECT_EQ(Strings(),
              "QVLANG=English\nAAAA=1\nBBBB=2\nCCCC=3\nDDDD=4\n"
              "QVLANG=Deutsch\nAAAA=\"eins\"\nBBBB=\"zwei\"\nCCCC=drei\nDDDD=\"vier\"\n");
}

TEST_F(Import, AddsSections) {
    const std::string document =
        Whole(Part("nl", Xml({"MENU_QUIT", "Quit", "Einde"}) + Xml({"MENU_OPEN", "Open", "Open"})) +
              Part("fr", Xml({"MENU_QUIT", "Quit", "Quitter"})) +
              Part("it", Xml({"MENU_OPEN", "Open", "Apri"})));
    EXPECT_EQ(RunOn(document), 1);
    EXPECT_EQ(m_err, "x.xlf:1: error: there is no section Nederlands; --create adds it\n");
    EXPECT_EQ(Strings(), kSource);
    EXPECT_EQ(RunOn(document, {"--create"}), 0);
    EXPECT_EQ(m_err, "s.strings: changed 0 entries, added 4\n");
    // The last line has no line feed, as before.
    EXPECT_EQ(Strings(), kSource +
                             "\nMENU_QUIT=\"Quitter\"\nQVLANG=Nederlands\nMENU_OPEN=\"Open\"\n"
                             "MENU_QUIT=\"Einde\"\nQVLANG=Italiano\nMENU_OPEN=\"Apri\"");
    EXPECT_EQ(RunOn(document, {"--create"}), 0);
    EXPECT_EQ(m_err, "s.strings: changed 0 entries, 4 were the same\n");
}

TEST_F(Import, AddsNoSectionWithoutAnEntry) {
    EXPECT_EQ(RunOn(Whole(Part("nl", Xml({"MENU_QUIT", "Quit", ""}) + Xml({"NONE", "x", "y"}))),
                    {"--create"}),
              0);
    EXPECT_EQ(Strings(), kSource);
}

TEST_F(Import, AddsNoSectionWhoseNameIsMeantOtherwise) {
    const std::string document =
        Write("x.xlf", Whole(Part("nl", Xml({"MENU_QUIT", "Quit", "Einde"}))));
    for (const std::string name : {" Nederlands ", "\"Nederlands\""}) {
        EXPECT_EQ(Run({"import", "--create", "--code", "English=en", "--code", name + "=nl",
                       Path("s.strings"), document}),
                  1);
        EXPECT_NE(m_err.find("x.xlf:1: error: a section can't have the name "), std::string::npos)
            << m_err;
        EXPECT_EQ(Strings(), kSource);
    }
}

TEST_F(Import, AddsNoSectionWithALineEndInItsName) {
    const std::string document =
        Write("x.xlf", Whole(Part("nl", Xml({"MENU_QUIT", "Quit", "Einde"}))));
    for (const std::string name : {"Neder\nlands", "Nederlands\r"}) {
        EXPECT_EQ(Run({"import", "--create", "--code", "English=en", "--code", name + "=nl",
                       Path("s.strings"), document}),
                  1);
        EXPECT_NE(m_err.find("x.xlf:1: error: a section can't have the name Neder"),
                  std::string::npos)
            << m_err;
        EXPECT_EQ(Strings(), kSource);
    }
}

TEST_F(Import, WritesTheLineEndsOfTheFile) {
    Write("s.strings", "QVLANG=English\r\nAAAA=1\r\nQVLANG=Deutsch\r\n");
    EXPECT_EQ(RunOnUnits({{"AAAA", "1", "eins"}}, {"--create"}), 0);
    EXPECT_EQ(Strings(), "QVLANG=English\r\nAAAA=1\r\nQVLANG=Deutsch\r\nAAAA=\"eins\"\r\n");
}

TEST_F(Import, ChangesTheLanguagesOfTheCodesAlone) {
    const std::string units = Xml({"MENU_OPEN", "Open", "x"});
    const std::vector<std::pair<std::string, std::string>> cases = {
        {Part("de", units, "fr"), "the source language 'fr' is not that of the reference, English"},
        {Part("de", units, ""), "the source language '' is not that of the reference, English"},
        {Part("de", units, "xx"), "the source language 'xx' is not that of the reference, English"},
        {Part("xx", units),
         "no section has the target language 'xx'; --code SECTION=xx would say which one"},
        {Part("", units), "the <file> has no target language"},
        {Part("en", units), "the target language 'en' is that of the reference"},
    };
    for (const auto& [part, error] : cases) {
        EXPECT_EQ(RunOn(Whole(Part("fr", Xml({"MENU_OPEN", "Open", "y"})) + part)), 1);
        EXPECT_EQ(m_err, "x.xlf:6: error: " + error + '\n');
        EXPECT_EQ(Strings(), kSource) << error;
    }
}

TEST_F(Import, FindsCodesInTheFile) {
    const std::string document = Write("x.xlf", Whole(Part("de", Xml({"MENU", "a", "b"}))));
    const std::string source = "QVLANG=English\n# orva: language en\nMENU=a\nQVLANG=Deutsch\n";
    Write("s.strings", source + "# orva: language de\nMENU=x\n");
    EXPECT_EQ(Run({"import", Path("s.strings"), document}), 0);
    EXPECT_EQ(Strings(), source + "# orva: language de\nMENU=b\n");

    Write("s.strings", source + "# orva: language en\nMENU=x\n");
    EXPECT_EQ(Run({"import", Path("s.strings"), document}), 1);
    EXPECT_EQ(m_err.substr(0, m_err.find(" the directive")), Path("s.strings") + ":5: error:");
    EXPECT_EQ(Strings(), source + "# orva: language en\nMENU=x\n");
    EXPECT_EQ(Run({"import", "--code", "Deutsch", Path("s.strings"), document}), 2);
}

TEST_F(Import, TakesAnotherReference) {
    EXPECT_EQ(RunOn(Whole(Part("en", Xml({"MENU_OPEN", "Auf", "Open it"}), "de")),
                    {"--reference", "deutsch"}),
              0);
    EXPECT_EQ(m_err, "s.strings: changed 1 entry\n");
    EXPECT_EQ(Strings(), With({{"\"Open\"", "\"Open it\""}}));
    EXPECT_EQ(RunOn(Whole(""), {"--reference", "Englisch"}), 1);
    EXPECT_EQ(m_err, "s.strings: error: there is no section Englisch; did you mean 'English'?\n");
    Write("s.strings", "ABCD=1\n");
    EXPECT_EQ(RunOn(Whole("")), 1);
    EXPECT_EQ(m_err, "s.strings: error: the file has no section\n");
}

TEST_F(Import, LeavesTheFileAsItWasAfterABadDocument) {
    Write("good.xlf", Whole(Part("de", Xml({"MENU_OPEN", "Open", "Öffnen"}))));
    Write("bad.xlf", "<xliff version=\"1.2\">\n<file source-language=\"en\"");
    Write("other.xlf", Whole(Part("fr", Xml({"MENU_OPEN", "open", "Öffnen"}))));
    EXPECT_EQ(RunWith({"good.xlf", "bad.xlf", "other.xlf"}), 1);
    EXPECT_EQ(m_err,
              "bad.xlf:2: error: this is no well-formed XML: unclosed token\n"
              "other.xlf:2: warning: MENU_OPEN: passed over, since its source is no longer the "
              "text of the reference\n");
    EXPECT_EQ(Strings(), kSource);
}

TEST_F(Import, EndsWithTwoIfADocumentCantBeRead) {
    EXPECT_EQ(RunWith({"none.xlf"}), 2);
    EXPECT_EQ(m_err, "orva-strings: error: none.xlf: No such file or directory\n");
    EXPECT_EQ(RunWith({}), 2);
    EXPECT_EQ(Strings(), kSource);
}

class ImportProtected : public Import {
protected:
    void SetUp() override {
        Write("key", ToHex(m_key));
        Write("s.strings", Source(StoredText("Geheim")));
    }

    static std::string Source(const std::string& german) {
        return "QVLANG=English\nIDE_A=\"" + StoredText("Secret") + "\"\nIDE_B=\"" +
               StoredText("Other") + "\"\nQVLANG=Deutsch\nIDE_A=\"" + german + "\"\n";
    }

    static std::string StoredText(const std::string& text) { return Stored(text, m_key); }

    // Imports, and checks that no message has a text.
    int RunSecretly(const std::vector<Unit>& units, std::vector<std::string> options = {}) {
        options.insert(options.end(), {"--key-file", Path("key")});
        const int status = RunOnUnits(units, options);
        for (const Unit& unit : units) {
            EXPECT_EQ(m_err.find(unit.source), std::string::npos) << m_err;
            EXPECT_EQ(m_err.find(unit.target), std::string::npos) << m_err;
        }
        return status;
    }

    static const Bytes m_key;
};

const Bytes ImportProtected::m_key = Bytes(32, 0x11);

TEST_F(ImportProtected, WritesTheStoredForm) {
    EXPECT_EQ(RunSecretly({{"IDE_A", "Secret", "Neu\"\\n\n"}}), 0);
    EXPECT_EQ(m_err, "s.strings: changed 1 entry\n");
    EXPECT_EQ(Strings(), Source(StoredText("Neu\"\\n\n")));
    EXPECT_EQ(RunSecretly({{"IDE_A", "Secret", "Neu\"\\n\n"}}), 0);
    EXPECT_EQ(m_err, "s.strings: changed 0 entries, 1 was the same\n");
}

TEST_F(ImportProtected, AddsTheStoredForm) {
    EXPECT_EQ(RunSecretly({{"IDE_B", "Other", "Anderes"}}, {"--create"}), 0);
    EXPECT_EQ(Strings(),
              Source(StoredText("Geheim")) + "IDE_B=\"" + StoredText("Anderes") + "\"\n");
}

TEST_F(ImportProtected, ComparesTheDecodedSource) {
    EXPECT_EQ(RunSecretly({{"IDE_A", "Secrets", "Neu"}}), 0);
    EXPECT_EQ(m_err,
              "x.xlf:2: warning: IDE_A: passed over, since its source is no longer the text of "
              "the reference\ns.strings: changed 0 entries\n");
    EXPECT_EQ(Strings(), Source(StoredText("Geheim")));
}

TEST_F(ImportProtected, NeedsTheKey) {
    // With another key, here the built-in one.
    const std::string why =
        "value looks stored but does not decode: it was damaged or made with another key\n"
        "s.strings: changed 0 entries\n";
    for (const std::vector<std::string>& options :
         {std::vector<std::string>{}, std::vector<std::string>{"--create", "--accept-stale"}}) {
        EXPECT_EQ(RunOnUnits({{"IDE_A", "Secret", "Neu"}}, options), 1);
        EXPECT_EQ(m_err, "x.xlf:2: error: IDE_A: the reference's " + why);
        EXPECT_EQ(Strings(), Source(StoredText("Geheim")));
    }
    const std::string damaged = Source(std::string(64, '0'));
    Write("s.strings", damaged);
    EXPECT_EQ(RunSecretly({{"IDE_A", "Secret", "Neu"}}), 1);
    EXPECT_EQ(m_err, "x.xlf:2: error: IDE_A: the " + why);
    EXPECT_EQ(Strings(), damaged);
}

TEST_F(ImportProtected, LeavesATextReadableOnlyWhereTheReferencesIsReadable) {
    EXPECT_EQ(RunSecretly({{"IDE_A", "Secret", "Neu"}}), 0);
    Write("s.strings", Source("lesbar"));
    EXPECT_EQ(RunSecretly({{"IDE_A", "Secret", "Neu"}}), 0);
    EXPECT_EQ(Strings(), Source(StoredText("Neu")));

    Write("s.strings", "QVLANG=English\nIDE_A=\"Secret\"\nIDE_B=\"Other\"\nMENU=\"" +
                           StoredText("x") + "\"\nQVLANG=Deutsch\nIDE_A=\"Geheim\"\nMENU=y\n");
    EXPECT_EQ(RunSecretly({{"IDE_A", "Secret", "Neu"},
                           {"IDE_B", "Other", "Anderes"},
                           {"MENU", StoredText("x"), "readable key"}},
                          {"--create"}),
              0);
    EXPECT_EQ(m_err, "s.strings: changed 2 entries, added 1\n");
    EXPECT_EQ(Strings(), "QVLANG=English\nIDE_A=\"Secret\"\nIDE_B=\"Other\"\nMENU=\"" +
                             StoredText("x") +
                             "\"\nQVLANG=Deutsch\nIDE_A=\"Neu\"\nIDE_B=\"Anderes\"\n"
                             "MENU=readable key\n");

    // A stored translation stays stored.
    Write("s.strings",
          "QVLANG=English\nIDE_A=Secret\nQVLANG=Deutsch\nIDE_A=" + StoredText("Geheim") + "\n");
    EXPECT_EQ(RunSecretly({{"IDE_A", "Secret", "Neu"}}), 0);
    EXPECT_EQ(Strings(),
              "QVLANG=English\nIDE_A=Secret\nQVLANG=Deutsch\nIDE_A=" + StoredText("Neu") + "\n");
}

// Texts put together from what interfaces have, and from what is hard to write. The generator is the
// same on every system.
std::vector<std::string> RealisticTexts(std::size_t count) {
    const std::string pieces[] = {
        "Open ", "Datei", "Öffnen …",  "файл ",   "保存",    "حفظ",
        "%1$s",  "%d%%",  "{0}",       "&Save",   "<b>",     "</b>",
        "\"",    "«»",    "don’t ",    "it's ",   "\n",      "\n\n",
        "\\",    "\\n",   "C:\\new\\", "\\t",     "\t",      "\r\n",
        "\r",    "=",     " = ",       "QVLANG=", "; ",      "# ",
        "&amp;", "]]>",   "\u00A0",    "\u202B",  "e\u0301", "👩‍👩‍👧",
        "IDE_",  "  ",    "a\\\\nb",   "\"\"",
    };
    std::mt19937 random(19);
    std::vector<std::string> texts;
    while (texts.size() < count) {
        std::string text;
        for (auto left = random() % 8 + 1; left > 0; --left) {
            text += pieces[random() % std::size(pieces)];
        }
        texts.push_back(text);
    }
    return texts;
}

// Whether an entry can get a text. line is what the entry has after its key, if there is one. Without
// quotes, nothing is an escape; but a text with a quote or a line feed needs quotes, a note needs
// them around the text, and a carriage return before a lone line feed belongs to the line's end.
bool CanBeWritten(const std::string& text, const std::string& line) {
    const bool hasCrLf = line.find("\r\n") != std::string::npos;
    const bool needsQuotes = text.find_first_of("\"\n") != std::string::npos ||
                             line.find("note") != std::string::npos ||
                             (text.back() == '\r' && !hasCrLf);
    return text.find("\\n") == std::string::npos || !needsQuotes;
}

TEST_F(Import, WritesAThousandRealisticTextsOrNamesThem) {
    constexpr std::size_t kCount = 1000;
    const std::string lines[] = {
        "=\"alt\"\n", "=alt\n", "=\"alt\n", "=\"alt\"\r\n", "=alt\r\n", "=\"alt\" ; note\n", ""};
    const std::vector<std::string> texts = RealisticTexts(kCount);
    std::string reference = "QVLANG=English\n";
    std::string german = "QVLANG=Deutsch\n";
    std::vector<Unit> units;
    std::string refused;
    std::vector<bool> isRefused(kCount);
    for (std::size_t i = 0; i < kCount; ++i) {
        const std::string key = "TEXT_" + std::to_string(i);
        const std::string& line = lines[i % std::size(lines)];
        reference += key + "=\"Text\"\n";
        german += line.empty() ? "" : key + line;
        units.push_back({key, "Text", texts[i]});
        if (!CanBeWritten(texts[i], line)) {
            refused += "x.xlf:" + std::to_string(4 * i + 2) + ": error: " + key +
                       ": the text can't be written so that it reads back the same, so it is not "
                       "imported\n";
            isRefused[i] = true;
        }
    }
    Write("s.strings", reference + german);
    EXPECT_EQ(RunOnUnits(units, {"--create"}), 1);
    EXPECT_EQ(m_err.substr(0, refused.size()), refused);
    EXPECT_GT(std::count(isRefused.begin(), isRefused.end(), true), 50);
    EXPECT_LT(std::count(isRefused.begin(), isRefused.end(), true), 300);

    const std::string bytes = Strings();
    Findings findings;
    const auto section = FindSection(bytes, "Deutsch", false, findings);
    ASSERT_TRUE(section);
    LoadSection(bytes, "Deutsch", *section);
    for (std::size_t i = 0; i < kCount; ++i) {
        const char* const answer = KorGetLocalizedString(units[i].id.c_str());
        if (!isRefused[i]) {
            EXPECT_STREQ(answer, texts[i].c_str()) << units[i].id;
        } else if (lines[i % std::size(lines)].empty()) {
            EXPECT_EQ(answer, nullptr) << units[i].id;
        } else {
            EXPECT_STREQ(answer, "alt") << units[i].id;
        }
    }
    LoadSection(bytes, "English", *FindSection(bytes, "English", false, findings));
    EXPECT_EQ(KorString::gMapLocalizedStrings.Size(), kCount + 1);
}

}  // namespace
