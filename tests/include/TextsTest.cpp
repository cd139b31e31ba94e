#include <cstdlib>
#include <filesystem>
#include <locale>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <OrvaLanguage/OrvaLanguage.h>
#include <OrvaLanguage/Texts.hpp>
#include <gtest/gtest.h>

#include "support/TemporaryBundle.h"
#include "support/TemporaryFolder.h"
#include "tests/support/ReadsAsX.h"

using namespace std::string_literals;  // for texts that hold NUL bytes
using OrvaLanguage::LoadPreferred;
using OrvaLanguage::Sections;
using OrvaLanguage::SectionTag;
using ::testing::PrintToString;

namespace {

using Names = std::vector<std::string>;

TEST(Texts, ListsSectionsInTheFilesOrderAsALoadFindsThem) {
    const struct {
        std::string file;
        Names names;
    } cases[] = {
        {"", {}},
        {"note\nABCD=\"1\"\n QVLANG=en\nqvlang=en\n", {}},
        {"QVLANG=English\nABCD=\"1\"\nQVLANG=Deutsch\nQVLANG=Français",
         {"English", "Deutsch", "Français"}},
        {"QVLANG=b\r\nQVLANG=a\r\n", {"b", "a"}},
        {"QVLANG= en \nQVLANG=en\nQVLANG=\"en\"\n", {" en ", "en", "\"en\""}},
        // Later sections of a name are never loaded.
        {"QVLANG=en\nQVLANG=de\nQVLANG=EN\nQVLANG=en\n", {"en", "de"}},
        // Only ASCII letters have two cases.
        {"QVLANG=Français\nQVLANG=FRANÇAIS\n", {"Français", "FRANÇAIS"}},
        // "" asks for the first section, whatever its name.
        {"QVLANG=\nQVLANG=en\nQVLANG=\n", {"", "en"}},
        {"QVLANG=en\nQVLANG=\nQVLANG=de\n", {"en", "de"}},
        {"QVLANG=en\0x\nQVLANG=\0y\nQVLANG=EN\n"s, {"en"}},
        {"\xEF\xBB\xBFQVLANG=en\nQVLANG=de\n", {"de"}},
    };
    const TemporaryBundle bundle;
    for (const auto& c : cases) {
        SCOPED_TRACE("file " + PrintToString(c.file));
        bundle.Write("x.strings", c.file);
        EXPECT_EQ(Sections(bundle.Resources() / "x.strings"), c.names);
        for (const std::string& name : c.names) {
            EXPECT_GT(ZuLoadStrings(name.c_str(), "x.strings", bundle.Get()), 0) << name;
        }
    }
}

TEST(Texts, TellAnUnreadableFileFromOneWithoutSections) {
    const TemporaryFolder folder;
    folder.Write("empty", "");
    EXPECT_EQ(Sections(folder.Path() / "empty"), Names());
    EXPECT_EQ(Sections(folder.Path() / "missing"), std::nullopt);
    EXPECT_EQ(Sections(folder.Path()), std::nullopt);
    EXPECT_EQ(Sections(""), std::nullopt);
}

TEST(Texts, ListSectionsWhateverTheGlobalLocaleConverts) {
    const TemporaryFolder folder;
    folder.Write("x.strings", "QVLANG=en\n");
    const std::locale before =
        std::locale::global(std::locale(std::locale::classic(), new ReadsAsX));
    const auto names = Sections(folder.Path() / "x.strings");
    std::locale::global(before);
    EXPECT_EQ(names, Names({"en"}));
}

TEST(Texts, ListSectionsWithoutTouchingTheTable) {
    const TemporaryBundle bundle;
    bundle.Write("x.strings", "QVLANG=en\nMENU_OPEN=\"Open\"\n");
    bundle.Write("y.strings", "QVLANG=de\n");
    ASSERT_EQ(ZuLoadStrings("en", "x.strings", bundle.Get()), 2);
    const char* const text = ZuGetLocalizedString("MENU_OPEN");
    ASSERT_EQ(Sections(bundle.Resources() / "y.strings"), Names({"de"}));
    EXPECT_EQ(ZuGetLocalizedString("MENU_OPEN"), text);
}

// A bundle whose file has a section for each of these names.
class Preferred : public ::testing::Test {
protected:
    void Write(const Names& names) const {
        std::string file;
        for (const std::string& name : names) {
            file += "QVLANG=" + name + "\nMENU_OPEN=\"" + name + "\"\n";
        }
        m_bundle.Write("x.strings", file);
    }

    // The section that is loaded; after a fallback, in brackets.
    std::string Load(const Names& tags, const std::vector<SectionTag>& sections) const {
        const auto loaded = LoadPreferred(tags, "x.strings", m_bundle.Get(), sections);
        EXPECT_EQ(loaded.entries, 2);
        EXPECT_STREQ(ZuGetLocalizedString("QVLANG"), loaded.section.c_str());
        EXPECT_STREQ(ZuGetLocalizedString("MENU_OPEN"), loaded.section.c_str());
        return loaded.isFallback ? "(" + loaded.section + ")" : loaded.section;
    }

    TemporaryBundle m_bundle;
};

TEST_F(Preferred, LoadsTheFirstLanguageThatTheFileHas) {
    const std::vector<SectionTag> sections = {
        {"English", "en"}, {"Deutsch", "de"}, {"Français", "fr"}, {"Suomi", "fi"}};
    Write({"English", "Deutsch", "Français"});
    const struct {
        Names tags;
        std::string section;
    } cases[] = {
        {{"de"}, "Deutsch"},
        {{"fr", "de"}, "Français"},
        {{"fi", "de", "fr"}, "Deutsch"},  // in the table, but not in the file
        {{"ja", "tlh", "de"}, "Deutsch"},
        {{"en"}, "English"},  // the first section, but asked for
        {{"ja"}, "(English)"},
        {{"fi"}, "(English)"},
        {{}, "(English)"},
        {{""}, "(English)"},
        {{"-", "_", ".", "@", "de"}, "Deutsch"},
        // The untranslated texts are wanted, and nothing after them.
        {{"C", "de"}, "(English)"},
        {{"POSIX", "de"}, "(English)"},
        {{"C.UTF-8"}, "(English)"},
        {{"fr", "C"}, "Français"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Load(c.tags, sections), c.section) << PrintToString(c.tags);
    }
}

TEST_F(Preferred, ReadsTagsAndLocaleNames) {
    const std::vector<SectionTag> sections = {
        {"first", "tlh"},       {"de", "de"},
        {"de-AT", "de-AT"},     {"pt", "pt"},
        {"pt-PT", "pt-PT"},     {"es-419", "es-419"},
        {"zh-Hans", "zh-Hans"}, {"zh-Hant", "zh_Hant"},
        {"sr", "sr"},           {"sr-Latn", "sr@latin"},
        {"he", "he"},           {"nb", "nb"},
        {"id", "id_ID.UTF-8"},  {"uz-Cyrl", "uz-Cyrl"},
    };
    Names names;
    for (const SectionTag& section : sections) {
        names.push_back(section.section);
    }
    Write(names);
    const std::map<std::string, std::string> cases = {
        {"de", "de"},
        {"DE", "de"},
        {"de-AT", "de-AT"},
        {"de_AT", "de-AT"},
        {"DE_at", "de-AT"},
        {"de_AT.UTF-8", "de-AT"},
        {"de_AT@euro", "de-AT"},
        {"de_AT.UTF-8@euro", "de-AT"},
        {"de_AT.ISO-8859-15@euro", "de-AT"},
        {"de-Latn-AT", "de-AT"},
        {"de-CH", "de"},
        {"de-CH-1996", "de"},
        {"de-1996-AT", "de-AT"},
        {"de-1996", "de"},
        {"de-AT-CH", "de-AT"},
        {"de-x-AT", "de"},
        {"de-u-co-phonebk", "de"},
        {"d", "(first)"},
        {"deu", "de"},
        {"gsw", "(first)"},
        {"pt-BR", "pt"},
        {"pt-PT", "pt-PT"},
        {"es-MX", "es-419"},
        {"es-419", "es-419"},
        {"zh", "zh-Hans"},
        {"zh-CN", "zh-Hans"},
        {"zh_SG.GB18030", "zh-Hans"},
        {"zh_TW.Big5", "zh-Hant"},
        {"zh-HK", "zh-Hant"},
        {"zh-MO", "zh-Hant"},
        {"zh-Hant", "zh-Hant"},
        {"zh-Hant-TW", "zh-Hant"},
        {"zh-Hans-TW", "zh-Hans"},
        {"zh-Hant-CN", "zh-Hant"},
        {"sr", "sr"},
        {"sr_RS", "sr"},
        {"sr_RS@latin", "sr-Latn"},
        {"sr-Latn-RS", "sr-Latn"},
        {"sr-Cyrl", "sr"},
        {"uz_UZ@cyrillic", "uz-Cyrl"},
        {"uz-Latn", "(first)"},
        {"iw_IL", "he"},
        {"in", "id"},
        {"no", "nb"},
        {"nb-NO", "nb"},
        {"nn-NO", "nb"},
        {"sh_BA", "sr-Latn"},
        {"sh-Cyrl", "sr"},
        {"cmn-Hant-TW", "zh-Hant"},
        {"zho", "zh-Hans"},
        {"nno", "nb"},
    };
    for (const auto& [tag, section] : cases) {
        EXPECT_EQ(Load({tag}, sections), section) << tag;
    }
}

TEST_F(Preferred, TriesTheBetterMatchFirst) {
    Write({"first", "A", "B", "C"});
    const struct {
        std::string tag;
        std::vector<SectionTag> sections;
        std::string section;
    } cases[] = {
        {"pt-BR", {{"A", "pt-PT"}, {"B", "pt"}, {"C", "pt-BR"}}, "C"},
        {"pt-BR", {{"A", "pt-PT"}, {"B", "pt"}}, "B"},
        {"pt-BR", {{"A", "pt-PT"}}, "A"},
        {"pt", {{"A", "pt-PT"}, {"B", "pt-BR"}}, "A"},
        {"pt", {{"A", "pt-PT"}, {"B", "pt"}}, "B"},
        {"pt-BR", {{"A", "pt-PT"}, {"missing", "pt"}}, "A"},
        {"pt-BR", {{"missing", "pt-BR"}, {"A", "pt-PT"}, {"B", "pt"}}, "B"},
        {"de-AT", {{"B", "de"}, {"A", "de"}}, "B"},
        {"zh-TW", {{"A", "zh"}, {"B", "zh-CN"}, {"C", "zh-Hans"}}, "(first)"},
        {"zh-TW", {{"A", "zh-Hant"}, {"B", "zh-TW"}}, "B"},
        {"zh-TW", {{"A", "zh-HK"}, {"B", "zh-Hant"}}, "B"},
        {"sr-Latn-RS", {{"A", "sr-RS"}, {"B", "sr-Latn"}}, "B"},
        {"sr-Latn-BA", {{"A", "sr-BA"}, {"B", "sr-Latn-RS"}}, "B"},
        {"sr-Latn-BA", {{"A", "sr-RS"}}, "A"},
        {"de-1996", {{"A", "de-Latn"}}, "A"},
        {"sr-Latn", {{"A", "sr-Cyrl"}}, "(first)"},
        {"", {{"A", ""}}, "(first)"},
    };
    for (const auto& c : cases) {
        std::string offered;
        for (const SectionTag& section : c.sections) {
            offered += " " + section.section + "=" + section.tag;
        }
        EXPECT_EQ(Load({c.tag}, c.sections), c.section) << c.tag << " among" << offered;
    }
}

TEST_F(Preferred, FindsSectionsThatAreNamedByATag) {
    const struct {
        Names names;
        std::string tag;
        std::string section;
    } cases[] = {
        {{"en", "de"}, "de", "de"},
        {{"en", "de"}, "de_AT.UTF-8", "de"},
        {{"en", "DE"}, "deu", "DE"},
        {{"en", "de", "de-AT"}, "de_AT", "de-AT"},
        {{"en", "de", "de_AT"}, "de-AT", "de_AT"},
        {{"en", "de_AT", "de-AT"}, "de-AT", "de-AT"},
        {{"en", "de-CH"}, "de-AT", "(en)"},  // not among its shorter forms
        {{"en", "zh"}, "zh-TW", "(en)"},
        {{"en", "zh-CN", "zh", "zh-TW"}, "zh-TW", "zh-TW"},
        {{"en", "zh-TW", "zh_Hant"}, "zh-TW", "zh_Hant"},
        {{"en", "zh_hant", "zh-Hant-TW"}, "zh-TW", "zh-Hant-TW"},
        {{"en", "sr"}, "sr-Latn-RS", "sr"},
        {{"en", "nn", "nb"}, "no", "nb"},
        {{"en", "nn"}, "nb-NO", "nn"},
        {{"en", "nb"}, "nn-NO", "nb"},
        {{"en", "Deutsch", "de"}, "de", "Deutsch"},  // the table first
    };
    for (const auto& c : cases) {
        Write(c.names);
        EXPECT_EQ(Load({c.tag}, {{"Deutsch", "de"}}), c.section)
            << c.tag << " among " << PrintToString(c.names);
    }
}

TEST_F(Preferred, FindsFormerCodesInTheTable) {
    Write({"first", "A"});
    for (const auto& [wanted, offered] : std::map<std::string, std::string>{{"he", "iw"},
                                                                            {"iw", "he"},
                                                                            {"ji", "yi"},
                                                                            {"ro-MD", "mo"},
                                                                            {"mo", "ro"},
                                                                            {"fil", "tl"},
                                                                            {"tl", "fil"},
                                                                            {"ger", "de"},
                                                                            {"de", "deu"},
                                                                            {"sr-Latn", "sh"},
                                                                            {"fre", "fr"},
                                                                            {"spa", "es"},
                                                                            {"jpn", "ja"},
                                                                            {"chi", "zh"}}) {
        EXPECT_EQ(Load({wanted}, {{"A", offered}}), "A") << wanted;
    }
}

TEST_F(Preferred, FindsASectionWithABlankAfterItsName) {
    m_bundle.Write(
        "x.strings",
        "QVLANG=English \nMENU_OPEN=\"English \"\nQVLANG=Deutsch \nMENU_OPEN=\"Deutsch \"\n"
        "QVLANG=fr \nMENU_OPEN=\"fr \"\nQVLANG=it  \nMENU_OPEN=x\nQVLANG= es\nMENU_OPEN=x\n");
    const std::vector<SectionTag> sections = {{"English", "en"}, {"Deutsch", "de"}};
    EXPECT_EQ(Load({"de"}, sections), "Deutsch ");
    EXPECT_EQ(Load({"en"}, sections), "English ");
    EXPECT_EQ(Load({"fr"}, sections), "fr ");
    EXPECT_EQ(Load({"it"}, sections), "(English )");  // two of them
    EXPECT_EQ(Load({"es"}, sections), "(English )");
}

TEST_F(Preferred, KnowsAFallbackWhateverTheCaseOfNames) {
    Write({"english", "DEUTSCH"});
    EXPECT_EQ(Load({"de"}, {{"Deutsch", "de"}}), "DEUTSCH");
    EXPECT_EQ(Load({"en"}, {{"ENGLISH", "en"}}), "english");
    EXPECT_EQ(Load({"en"}, {{"englisch", "en"}}), "(english)");
    EXPECT_EQ(Load({"en"}, {{"", "en"}}), "(english)");
}

TEST_F(Preferred, CannotConfirmANameWithQuotes) {
    m_bundle.Write("x.strings", "QVLANG=\"English\"\nABCD=1\n");
    const auto loaded = LoadPreferred({"en"}, "x.strings", m_bundle.Get(), {{"\"English\"", "en"}});
    EXPECT_EQ(loaded.entries, 2);
    EXPECT_EQ(loaded.section, "English");
    EXPECT_TRUE(loaded.isFallback);
}

TEST_F(Preferred, FindsLanguagesByTheirOwnNamesWithoutATable) {
    Write({"English", "Deutsch", "Português (Brasil)", "繁體中文"});
    const std::map<Names, std::string> cases = {
        {{"de-AT"}, "Deutsch"},
        {{"pt-PT"}, "Português (Brasil)"},
        {{"zh_HK.UTF-8"}, "繁體中文"},
        {{"it", "en-GB"}, "English"},
    };
    for (const auto& [tags, section] : cases) {
        const auto loaded = LoadPreferred(tags, "x.strings", m_bundle.Get());
        EXPECT_EQ(loaded.section, section) << PrintToString(tags);
        EXPECT_FALSE(loaded.isFallback) << PrintToString(tags);
    }
}

TEST_F(Preferred, ReportsAFailedLoad) {
    m_bundle.Write("empty.strings", "ABCD=1\n");
    Write({"English"});
    const struct {
        const char* file;
        const char* textAfterwards;  // of the table, whatever the gate of lookups
    } cases[] = {{"missing.strings", "English"}, {nullptr, "English"}, {"empty.strings", nullptr}};
    for (const auto& c : cases) {
        for (const Names& tags : {Names{"en"}, Names{}}) {
            ASSERT_EQ(ZuLoadStrings("English", "x.strings", m_bundle.Get()), 2);
            const auto loaded = LoadPreferred(tags, c.file, m_bundle.Get());
            SCOPED_TRACE(PrintToString(c.file) + ", " + PrintToString(tags));
            EXPECT_EQ(loaded.entries, 0);
            EXPECT_EQ(loaded.section, "");
            EXPECT_FALSE(loaded.isFallback);
            EXPECT_EQ(ZuGetLocalizedString("MENU_OPEN"), nullptr);
            EXPECT_STREQ(KorGetLocalizedString("MENU_OPEN"), c.textAfterwards);
        }
    }
}

TEST(Texts, FallBackWhereALookupAnswersNull) {
    const TemporaryBundle bundle;
    bundle.Write("x.strings", "QVLANG=en\nMENU_OPEN=\"Open\"\nEMPTY=\"\"\nIDE_TEXT=\"readable\"\n");
    ASSERT_EQ(ZuLoadStrings("en", "x.strings", bundle.Get()), 4);
    const std::string fallback = "fallback";
    using OrvaLanguage::TextOr;
    EXPECT_EQ(TextOr("MENU_OPEN", fallback.c_str()), ZuGetLocalizedString("MENU_OPEN"));
    EXPECT_STREQ(TextOr("MENU_OPEN", nullptr), "Open");
    EXPECT_STREQ(TextOr("EMPTY", fallback.c_str()), "");
    EXPECT_EQ(TextOr("MISSING", fallback.c_str()), fallback.c_str());
    EXPECT_EQ(TextOr("MISSING", nullptr), nullptr);
    EXPECT_EQ(TextOr("IDE_TEXT", fallback.c_str()), fallback.c_str());
    ASSERT_EQ(ZuLoadStrings("en", "missing.strings", bundle.Get()), 0);
    EXPECT_EQ(TextOr("MENU_OPEN", fallback.c_str()), fallback.c_str());
}

TEST(Texts, CopiesSurviveAReload) {
    const TemporaryBundle bundle;
    bundle.Write("x.strings",
                 "QVLANG=en\nMENU_OPEN=\"Open\"\nEMPTY=\"\"\nQVLANG=de\nMENU_OPEN=\"Öffnen\"\n");
    ASSERT_EQ(ZuLoadStrings("en", "x.strings", bundle.Get()), 3);
    const std::optional<std::string> copy = OrvaLanguage::CopyText("MENU_OPEN");
    EXPECT_EQ(OrvaLanguage::CopyText("EMPTY"), "");
    EXPECT_EQ(OrvaLanguage::CopyText("MISSING"), std::nullopt);
    ASSERT_EQ(ZuLoadStrings("de", "x.strings", bundle.Get()), 2);
    EXPECT_EQ(copy, "Open");
    EXPECT_EQ(OrvaLanguage::CopyText("MENU_OPEN"), "Öffnen");
}

#ifdef __APPLE__
TEST(Texts, TakePreferredLanguagesFromTheSystem) {
    EXPECT_FALSE(OrvaLanguage::PreferredLanguages().empty());
}
#else
// The environment as a user may have it; the destructor restores the former one.
class Environment {
public:
    explicit Environment(const std::map<std::string, std::string>& variables) {
        for (const char* name : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"}) {
            const char* const former = std::getenv(name);
            m_former[name] = former != nullptr ? std::optional<std::string>(former) : std::nullopt;
            const auto found = variables.find(name);
            Set(name, found != variables.end() ? std::optional(found->second) : std::nullopt);
        }
    }
    ~Environment() {
        for (const auto& [name, value] : m_former) {
            Set(name, value);
        }
    }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

private:
    static void Set(const std::string& name, const std::optional<std::string>& value) {
        if (value.has_value()) {
            setenv(name.c_str(), value->c_str(), 1);
        } else {
            unsetenv(name.c_str());
        }
    }

    std::map<std::string, std::optional<std::string>> m_former;
};

TEST(Texts, TakePreferredLanguagesFromTheEnvironment) {
    const struct {
        std::map<std::string, std::string> variables;
        Names languages;
    } cases[] = {
        {{}, {}},
        {{{"LANG", "de_AT.UTF-8"}}, {"de_AT.UTF-8"}},
        {{{"LANG", "de"}, {"LC_MESSAGES", "fr"}}, {"fr"}},
        {{{"LANG", "de"}, {"LC_MESSAGES", "fr"}, {"LC_ALL", "it"}}, {"it"}},
        {{{"LANG", "de"}, {"LC_MESSAGES", ""}, {"LC_ALL", ""}}, {"de"}},
        {{{"LANG", "de"}, {"LANGUAGE", "fr:it"}}, {"fr", "it"}},
        {{{"LANG", "de"}, {"LANGUAGE", ":fr::it:"}}, {"fr", "it"}},
        {{{"LANG", "de"}, {"LANGUAGE", ""}}, {"de"}},
        {{{"LANG", "de"}, {"LC_ALL", "sv"}, {"LANGUAGE", "fr"}}, {"fr"}},
        {{{"LANG", "C"}, {"LANGUAGE", "fr"}}, {"C"}},
        {{{"LANG", "POSIX"}, {"LANGUAGE", "fr"}}, {"POSIX"}},
        {{{"LANG", "de"}, {"LC_ALL", "C"}, {"LANGUAGE", "fr"}}, {"C"}},
        {{{"LANG", "C.UTF-8"}, {"LANGUAGE", "fr"}}, {"fr"}},
        {{{"LANGUAGE", "fr"}}, {}},
    };
    for (const auto& c : cases) {
        const Environment environment(c.variables);
        EXPECT_EQ(OrvaLanguage::PreferredLanguages(), c.languages) << PrintToString(c.variables);
    }
}
#endif

}  // namespace
