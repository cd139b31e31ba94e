// The lookup call through the built library, including protected texts.
#include <set>
#include <string>
#include <unistd.h>

#include <OrvaLanguage/KorString.h>
#include <OrvaLanguage/OrvaLanguage.h>
#include <gtest/gtest.h>

#include "support/TemporaryBundle.h"
#include "tests/support/Sanitizers.h"
#include "tests/support/Secrets.h"
#include "tests/support/StackAfter.h"
#include "tests/support/StoredForm.h"

using namespace std::string_literals;  // for texts that hold NUL bytes

namespace {

// The cache lives as long as the process, so each test has keys of its own.
class ZuGetLocalizedStringTest : public ::testing::Test {
protected:
    // Loads a section of these lines and returns what the load does.
    int Load(const std::string& lines) {
        m_bundle.Write("x.strings", "QVLANG=en\n" + lines);
        return ZuLoadStrings("en", "x.strings", m_bundle.Get());
    }

    static std::string Line(const std::string& key, const std::string& text) {
        return key + "=\"" + Stored(text, DevelopmentKey()) + "\"\n";
    }

    TemporaryBundle m_bundle;
};

TEST_F(ZuGetLocalizedStringTest, AnswersOrdinaryAndProtectedTexts) {
    ASSERT_EQ(Load("MENU_OPEN=\"Open\"\n" + Line("IDE_TITLE", "Title\nof two lines")), 3);
    EXPECT_STREQ(ZuGetLocalizedString("MENU_OPEN"), "Open");
    EXPECT_EQ(ZuGetLocalizedString("MENU_OPEN"), KorGetLocalizedString("MENU_OPEN"));
    EXPECT_STREQ(ZuGetLocalizedString("QVLANG"), "en");
    const char* const title = ZuGetLocalizedString("IDE_TITLE");
    EXPECT_STREQ(title, "Title\nof two lines");
    EXPECT_EQ(ZuGetLocalizedString("IDE_TITLE"), title);
    EXPECT_NE(title, KorGetLocalizedString("IDE_TITLE"));
    EXPECT_EQ(ZuGetLocalizedString("NOT_THERE"), nullptr);
    EXPECT_EQ(ZuGetLocalizedString("IDE_NOT_THERE"), nullptr);
    EXPECT_EQ(ZuGetLocalizedString(""), nullptr);
    EXPECT_EQ(ZuGetLocalizedString("ID"), nullptr);
}

TEST_F(ZuGetLocalizedStringTest, LeavesNeitherKeysNorTextOnTheStack) {
    if (kHasThreadSanitizer) {
        GTEST_SKIP() << "the thread sanitizer keeps copies of its own on the stack";
    }
    const std::string text =
        "a text that must not be found on the stack of a lookup, and so long that a copy of it "
        "passes through several vector registers, however wide those of the processor are; its "
        "last words must not be found, either";
    ASSERT_EQ(Load(Line("IDE_BEFORE", "x") + Line("IDE_ON_STACK", text)), 3);
    ZuGetLocalizedString("IDE_BEFORE");  // warm-up: the loader does more at a first call
    const char* answer = nullptr;
    const Bytes stack = StackAfter([&] {
        answer = ZuGetLocalizedString("IDE_ON_STACK");
        getpgrp();  // to resolve it, the loader saves the registers to the stack
    });
    EXPECT_EQ(answer, text);
    for (const auto& [name, secret] : SecretsOf(DevelopmentKey(), text)) {
        EXPECT_FALSE(Holds(stack, secret)) << name;
    }
}

TEST_F(ZuGetLocalizedStringTest, ProtectsByTheFirstThreeBytes) {
    const struct {
        const char* key;
        bool isProtected;
    } cases[] = {
        {"IDEA", true},    {"IDE1", true},    {"IDE_X", true},   {"IDE X", true},  {"IDEIDE", true},
        {"IDE\xC3", true}, {"ide_y", false},  {"Ide_y", false},  {"iDE_y", false}, {"IDe_y", false},
        {"ID_EY", false},  {"XIDE_Y", false}, {" IDE_Y", false},
    };
    std::string lines;
    for (const auto& c : cases) {
        lines += Line(c.key, std::string("text of ") + c.key);
    }
    ASSERT_EQ(Load(lines), 1 + static_cast<int>(std::size(cases)));
    for (const auto& c : cases) {
        const std::string text = std::string("text of ") + c.key;
        const char* const answer = ZuGetLocalizedString(c.key);
        EXPECT_STREQ(answer, c.isProtected ? text.c_str() : Stored(text, DevelopmentKey()).c_str())
            << c.key;
        EXPECT_EQ(answer == KorGetLocalizedString(c.key), !c.isProtected) << c.key;
    }
}

TEST_F(ZuGetLocalizedStringTest, DecodesAValueUnderAnyProtectedKey) {
    ASSERT_EQ(Load(Line("IDE_VALUE", "text") + Line("IDE_COPY", "text")), 3);
    ASSERT_STREQ(KorGetLocalizedString("IDE_VALUE"), KorGetLocalizedString("IDE_COPY"));
    EXPECT_STREQ(ZuGetLocalizedString("IDE_VALUE"), "text");
    EXPECT_STREQ(ZuGetLocalizedString("IDE_COPY"), "text");
}

TEST_F(ZuGetLocalizedStringTest, AnswersNullAfterALoadThatFailed) {
    ASSERT_EQ(Load("MENU_SHUT=\"Shut\"\n" + Line("IDE_SHUT", "Shut")), 3);
    EXPECT_STREQ(ZuGetLocalizedString("IDE_SHUT"), "Shut");
    ASSERT_EQ(ZuLoadStrings("en", "missing", m_bundle.Get()), 0);
    EXPECT_STREQ(KorGetLocalizedString("MENU_SHUT"), "Shut") << "the table is still there";
    EXPECT_EQ(ZuGetLocalizedString("MENU_SHUT"), nullptr);
    EXPECT_EQ(ZuGetLocalizedString("IDE_SHUT"), nullptr);
    EXPECT_EQ(ZuGetLocalizedString("QVLANG"), nullptr);

    ASSERT_EQ(KorLoadStrings("en", "x.strings", m_bundle.Get()), 3);
    EXPECT_EQ(ZuGetLocalizedString("MENU_SHUT"), nullptr) << "KorLoadStrings does not change that";
    ASSERT_EQ(ZuLoadStrings("en", "x.strings", m_bundle.Get()), 3);
    EXPECT_STREQ(ZuGetLocalizedString("MENU_SHUT"), "Shut");
}

TEST_F(ZuGetLocalizedStringTest, KeepsADecodedTextOverReloads) {
    ASSERT_EQ(Load(Line("IDE_KEPT", "first")), 2);
    const char* const first = ZuGetLocalizedString("IDE_KEPT");
    EXPECT_STREQ(first, "first");

    ASSERT_EQ(Load(Line("IDE_KEPT", "second")), 2);
    EXPECT_EQ(ZuGetLocalizedString("IDE_KEPT"), first);
    ASSERT_EQ(Load("IDE_KEPT=\"not even stored\"\n"), 2);
    EXPECT_EQ(ZuGetLocalizedString("IDE_KEPT"), first);
    ASSERT_EQ(Load("MENU=\"Other\"\n"), 2);
    EXPECT_EQ(ZuGetLocalizedString("IDE_KEPT"), nullptr) << "not in the table";
    EXPECT_STREQ(first, "first");
    ASSERT_EQ(Load(Line("IDE_KEPT", "third")), 2);
    EXPECT_EQ(ZuGetLocalizedString("IDE_KEPT"), first);
}

TEST_F(ZuGetLocalizedStringTest, AnswersNullForWhatDoesNotDecode) {
    std::string damaged = Line("IDE_DAMAGED", "text");
    damaged[20] = damaged[20] == '0' ? '1' : '0';
    ASSERT_EQ(Load(damaged + "IDE_PLAIN=\"plain text\"\nIDE_EMPTY=\"\"\n"), 4);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(ZuGetLocalizedString("IDE_DAMAGED"), nullptr);
        EXPECT_EQ(ZuGetLocalizedString("IDE_PLAIN"), nullptr);
        EXPECT_EQ(ZuGetLocalizedString("IDE_EMPTY"), nullptr);
    }
    ASSERT_EQ(Load(Line("IDE_DAMAGED", "mended")), 2);
    EXPECT_STREQ(ZuGetLocalizedString("IDE_DAMAGED"), "mended") << "a failure is not kept";
}

TEST_F(ZuGetLocalizedStringTest, EndsATextAtItsFirstNul) {
    ASSERT_EQ(Load(Line("IDE_NUL", "before\0behind"s) + Line("IDE_NONE", "")), 3);
    EXPECT_STREQ(ZuGetLocalizedString("IDE_NUL"), "before");
    EXPECT_STREQ(ZuGetLocalizedString("IDE_NONE"), "");
}

TEST_F(ZuGetLocalizedStringTest, AnswersAThousandProtectedTexts) {
    std::string lines;
    for (int i = 0; i < 1000; ++i) {
        lines +=
            Line("IDE_MANY_" + std::to_string(i), std::string(static_cast<std::size_t>(i), 'x'));
    }
    ASSERT_EQ(Load(lines), 1001);
    std::set<const char*> texts;
    for (int round = 0; round < 2; ++round) {
        for (int i = 0; i < 1000; ++i) {
            const char* const text =
                ZuGetLocalizedString(("IDE_MANY_" + std::to_string(i)).c_str());
            ASSERT_STREQ(text, std::string(static_cast<std::size_t>(i), 'x').c_str());
            texts.insert(text);
        }
    }
    EXPECT_EQ(texts.size(), 1000U) << "each text stays where it is";
}

}  // namespace
