#include <chrono>
#include <filesystem>
#include <fstream>
#include <future>
#include <locale>
#include <map>
#include <string>
#include <sys/stat.h>
#include <vector>

#include <OrvaLanguage/KorString.h>
#include <OrvaLanguage/OrvaLanguage.h>
#include <gtest/gtest.h>

#include "support/TemporaryBundle.h"
#include "tests/support/ReadsAsX.h"

using namespace std::string_literals;  // for texts that hold NUL bytes
using ::testing::PrintToString;

namespace {

using Table = std::map<std::string, std::string>;

Table LoadedTable() {
    Table table;
    for (const auto& [key, value] : KorString::gMapLocalizedStrings) {
        table.emplace(key, value);
    }
    return table;
}

const char kTwoLanguages[] =
    "NOTE=\"before any section\"\n"
    "QVLANG=en\n"
    "MENU_OPEN=\"Open\"\n"
    "MENU_OPEN=\"Second value\"\n"
    "QVREGION=US\n"
    "QVLANG=fr\n"
    "MENU_OPEN=\"Ouvrir\"\n";

const Table kEnglish = {{"QVLANG", "en"}, {"MENU_OPEN", "Open"}, {"QVREGION", "US"}};
const Table kFrench = {{"QVLANG", "fr"}, {"MENU_OPEN", "Ouvrir"}};

TEST(KorLoadStrings, LoadsTheRequestedSectionOrElseTheFirst) {
    const struct {
        std::string file;
        const char* language;
        Table table;
    } cases[] = {
        {kTwoLanguages, "FR", kFrench},
        {kTwoLanguages, "fr", kFrench},
        {kTwoLanguages, "en", kEnglish},
        {kTwoLanguages, "de", kEnglish},
        {kTwoLanguages, "", kEnglish},
        {"QVLANG=English\nMENU=\"File\"\nQVLANG=German\nMENU=\"Datei\"\nEDIT=\"Bearbeiten\"\n",
         "german",
         {{"QVLANG", "German"}, {"MENU", "Datei"}, {"EDIT", "Bearbeiten"}}},
        {"QVLANG=English\nMENU=\"File\"\nQVLANG=German\nMENU=\"Datei\"\n",
         "French",
         {{"QVLANG", "English"}, {"MENU", "File"}}},
        // What a section can look like.
        {"QVLANG=en\n", "en", {{"QVLANG", "en"}}},
        {"QVLANG=en", "en", {{"QVLANG", "en"}}},
        {"QVLANG=\n", "en", {{"QVLANG", ""}}},
        {"QVLANG=\"en\"\nABCD=1\n", "en", {{"QVLANG", "en"}, {"ABCD", "1"}}},
        {"QVLANG=en\nABCD=1", "en", {{"QVLANG", "en"}, {"ABCD", "1"}}},
        {"QVLANG=en\r\nABCD=\"1\"\r\nEFGH=2\r\nQVLANG=fr\r\n",
         "en",
         {{"QVLANG", "en"}, {"ABCD", "1"}, {"EFGH", "2"}}},
        {"QVLANG=en\n\nABC=short\nno equals sign\n=\nABCD=1\n",
         "en",
         {{"QVLANG", "en"}, {"ABCD", "1"}}},
        // What ends a section, and what does not.
        {"QVLANG=en\nABCD=1\nQVLANG=\nEFGH=2\n", "en", {{"QVLANG", "en"}, {"ABCD", "1"}}},
        {"QVLANG=en\nABCD=1\nQVLANG=en \nEFGH=2\n", "en", {{"QVLANG", "en"}, {"ABCD", "1"}}},
        {"QVLANG=en\nABCD=1\n QVLANG=fr\nqvlang=fr\nQVREGION=FR\nEFGH=2\n",
         "en",
         {{"QVLANG", "en"},
          {"ABCD", "1"},
          {" QVLANG", "fr"},
          {"qvlang", "fr"},
          {"QVREGION", "FR"},
          {"EFGH", "2"}}},
        {"QVLANG=en\nABCD=1\nQVLANG=fr\nABCD=2\nQVLANG=en\nEFGH=3\n",
         "en",
         {{"QVLANG", "en"}, {"ABCD", "1"}}},
        // A section whose name is another's fallback.
        {"QVLANG=en \nABCD=1\nQVLANG=en\nABCD=2\n", "en", {{"QVLANG", "en"}, {"ABCD", "2"}}},
        {"\xEF\xBB\xBFQVLANG=en\nABCD=1\nQVLANG=fr\nABCD=2\n",
         "en",
         {{"QVLANG", "fr"}, {"ABCD", "2"}}},
        // Arbitrary bytes.
        {"QVLANG=fr\nQVLANG=en\0x\nABCD=1\n"s, "EN", {{"QVLANG", "en\0x"s}, {"ABCD", "1"}}},
        {"QVLANG=en\nA\0CD=\"x\0y\"\n\xFF\xFE\x80\x81=\x01\x7F\n"s,
         "en",
         {{"QVLANG", "en"}, {"A\0CD"s, "x\0y"s}, {"\xFF\xFE\x80\x81", "\x01\x7F"}}},
        {"\0\0\0\nQVLANG=en\n"s, "en", {{"QVLANG", "en"}}},
    };
    const TemporaryBundle bundle;
    for (const auto& c : cases) {
        bundle.Write("x.strings", c.file);
        const int entries = KorLoadStrings(c.language, "x.strings", bundle.Get());
        SCOPED_TRACE("language " + PrintToString(c.language) + ", file " + PrintToString(c.file));
        EXPECT_EQ(entries, static_cast<int>(c.table.size()));
        EXPECT_EQ(LoadedTable(), c.table);
    }
}

TEST(KorLoadStrings, EmptiesTheTableOverAFileWithoutASection) {
    const std::string files[] = {
        "",
        "\n\n",
        "ABCD=\"1\"\n",
        "qvlang=en\nABCD=1\n",
        " QVLANG=en\nABCD=1\n",
        "ABCD=1\rQVLANG=en\rEFGH=2\r",  // a lone carriage return ends no line
        "\xFF\xFEQ\0V\0L\0A\0N\0G\0=\0e\0n\0\n\0"s,
    };
    const TemporaryBundle bundle;
    for (const std::string& file : files) {
        SCOPED_TRACE("file " + PrintToString(file));
        bundle.Write("x.strings", kTwoLanguages);
        ASSERT_EQ(KorLoadStrings("en", "x.strings", bundle.Get()), 3);
        bundle.Write("x.strings", file);
        EXPECT_EQ(KorLoadStrings("en", "x.strings", bundle.Get()), 0);
        EXPECT_EQ(LoadedTable(), Table());
    }
}

TEST(KorLoadStrings, EmptiesTheTableOverAFolder) {
    const TemporaryBundle bundle;
    std::filesystem::create_directory(bundle.Resources() / "folder");
    bundle.Write("x.strings", kTwoLanguages);
    for (const char* name : {"folder", "folder/", "", "/", ".", ".."}) {
        SCOPED_TRACE("file name " + PrintToString(name));
        ASSERT_EQ(KorLoadStrings("en", "x.strings", bundle.Get()), 3);
        EXPECT_EQ(KorLoadStrings("en", name, bundle.Get()), 0);
        EXPECT_EQ(LoadedTable(), Table());
    }
}

TEST(KorLoadStrings, KeepsTheTableWhenTheFileIsNotOpened) {
    const TemporaryBundle bundle;
    bundle.Write("x.strings", kTwoLanguages);
    ASSERT_EQ(KorLoadStrings("en", "x.strings", bundle.Get()), 3);
    std::filesystem::create_symlink("nowhere", bundle.Resources() / "dangling");

    const std::string tooLong = std::string(1024, 'x');
    const struct {
        const char* language;
        const char* fileName;
    } cases[] = {
        {nullptr, "x.strings"},  {"en", nullptr},        {nullptr, nullptr},
        {"en", "missing"},       {"en", "no/folder"},    {"en", "x.strings/x"},
        {"en", "dangling"},      {"en", "\xFF.strings"}, {"en", "x.strings\xC3"},
        {"en", tooLong.c_str()},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE("language " + PrintToString(c.language) + ", file name " +
                     PrintToString(c.fileName));
        EXPECT_EQ(KorLoadStrings(c.language, c.fileName, bundle.Get()), 0);
        EXPECT_EQ(LoadedTable(), kEnglish);
    }
}

TEST(KorLoadStrings, KeepsTheTableWhenTheBundleIsGone) {
    const TemporaryBundle bundle;
    bundle.Write("x.strings", kTwoLanguages);
    ASSERT_EQ(KorLoadStrings("en", "x.strings", bundle.Get()), 3);
    std::filesystem::remove_all(bundle.Resources().parent_path().parent_path());
    EXPECT_EQ(KorLoadStrings("fr", "x.strings", bundle.Get()), 0);
    EXPECT_EQ(LoadedTable(), kEnglish);
}

TEST(KorLoadStrings, NeverMergesTwoLoads) {
    const TemporaryBundle bundle;
    bundle.Write("a", "QVLANG=en\nONLY_IN_A=1\nIN_BOTH=a\n");
    bundle.Write("b", "QVLANG=en\nONLY_IN_B=2\nIN_BOTH=b\n");
    ASSERT_EQ(KorLoadStrings("en", "a", bundle.Get()), 3);
    ASSERT_EQ(KorLoadStrings("en", "b", bundle.Get()), 3);
    EXPECT_EQ(LoadedTable(), (Table{{"QVLANG", "en"}, {"ONLY_IN_B", "2"}, {"IN_BOTH", "b"}}));
}

TEST(KorLoadStrings, TakesTheLanguageFromTheTableItReplaces) {
    const TemporaryBundle bundle;
    const std::string name = "a section name that is too long to live inside a string object";
    const std::string file = "QVLANG=other\nQVLANG=" + name + "\nABCD=1\n";
    bundle.Write("x.strings", file);
    ASSERT_EQ(KorLoadStrings(name.c_str(), "x.strings", bundle.Get()), 2);
    EXPECT_EQ(KorLoadStrings(KorGetLocalizedString("QVLANG"), "x.strings", bundle.Get()), 2);
    EXPECT_EQ(LoadedTable(), (Table{{"QVLANG", name}, {"ABCD", "1"}}));
}

TEST(KorLoadStrings, ReadsAMillionLinesAndLinesOfTenMegabytes) {
    constexpr int kLines = 1'000'000;
    const std::string longText(10'000'000, 'x');
    std::string file = longText + "\nQVLANG=other\n";
    for (int i = 0; i < kLines; ++i) {
        file += "skipped=" + std::to_string(i) + "\n";
    }
    file += "QVLANG=en\nLONG=\"" + longText + "\"\n" + longText + "=short\n";
    for (int i = 0; i < kLines; ++i) {
        file += "KEY_" + std::to_string(i) + "=\"" + std::to_string(i) + "\"\n";
    }
    const TemporaryBundle bundle;
    bundle.Write("x.strings", file);
    ASSERT_EQ(KorLoadStrings("en", "x.strings", bundle.Get()), kLines + 3);
    EXPECT_STREQ(KorGetLocalizedString("KEY_0"), "0");
    EXPECT_STREQ(KorGetLocalizedString("KEY_999999"), "999999");
    EXPECT_TRUE(KorGetLocalizedString("LONG") == longText);
    EXPECT_STREQ(KorGetLocalizedString(longText.c_str()), "short");
    EXPECT_EQ(KorGetLocalizedString("skipped"), nullptr);
}

TEST(KorLoadStrings, ReadsNoFurtherThanTheNextHeaderLine) {
    const TemporaryBundle bundle;
    const std::string path = bundle.Resources() / "pipe";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    std::future<int> loaded;
    {
        // Kept open, so that a load that reads to the end would wait. More than a stream's buffer,
        // less than a pipe's. Opened for both, so that a load that never opens it blocks nobody.
        std::fstream pipe(path, std::ios::in | std::ios::out);
        pipe << "QVLANG=en\nABCD=1\nQVLANG=fr\n" << std::string(50'000, '\n') << std::flush;
        loaded = std::async(std::launch::async,
                            [&] { return KorLoadStrings("en", "pipe", bundle.Get()); });
        EXPECT_EQ(loaded.wait_for(std::chrono::seconds(60)), std::future_status::ready);
    }
    EXPECT_EQ(loaded.get(), 2);
}

TEST(KorLoadStrings, ReadsBytesWhateverTheGlobalLocaleConverts) {
    const TemporaryBundle bundle;
    bundle.Write("x.strings", kTwoLanguages);
    const std::locale before =
        std::locale::global(std::locale(std::locale::classic(), new ReadsAsX));
    std::ifstream converting(bundle.Resources() / "x.strings");
    EXPECT_EQ(converting.get(), 'x') << "the locale is not the one this test needs";
    // The missing section causes a second reading.
    const int entries[] = {KorLoadStrings("fr", "x.strings", bundle.Get()),
                           KorLoadStrings("missing", "x.strings", bundle.Get())};
    const Table table = LoadedTable();
    std::locale::global(before);
    EXPECT_EQ(entries[0], 2);
    EXPECT_EQ(entries[1], 3);
    EXPECT_EQ(table, kEnglish);
}

TEST(KorLoadStrings, WalksTheKeysInByteOrder) {
    const TemporaryBundle bundle;
    bundle.Write("x.strings", "QVLANG=en\nabcd=1\nABCDE=1\nABCD=1\n\xC3\xA4\xC3\xA4=1\nABCd=1\n");
    ASSERT_EQ(KorLoadStrings("en", "x.strings", bundle.Get()), 6);
    std::vector<std::string> keys;
    for (const auto& entry : KorString::gMapLocalizedStrings) {
        keys.emplace_back(entry.key);
    }
    EXPECT_EQ(keys, (std::vector<std::string>{"ABCD", "ABCDE", "ABCd", "QVLANG", "abcd",
                                              "\xC3\xA4\xC3\xA4"}));
}

}  // namespace
