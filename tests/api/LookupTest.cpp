#include <string>

#include <OrvaLanguage/KorString.h>
#include <OrvaLanguage/OrvaLanguage.h>
#include <gtest/gtest.h>

#include "support/TemporaryBundle.h"

namespace {

class Lookup : public ::testing::Test {
protected:
    void SetUp() override {
        m_bundle.Write("x.strings", "QVLANG=en\nMENU_OPEN=\"Open\"\nMixedCase=\"Mixed\"\n");
    }

    TemporaryBundle m_bundle;
};

TEST_F(Lookup, FindsWholeKeysByTheirCase) {
    ASSERT_EQ(ZuLoadStrings("en", "x.strings", m_bundle.Get()), 3);
    const struct {
        const char* key;
        const char* text;
    } cases[] = {
        {"MENU_OPEN", "Open"},   {"QVLANG", "en"},
        {"MixedCase", "Mixed"},  {"menu_open", nullptr},
        {"Menu_Open", nullptr},  {"MENU", nullptr},
        {"MENU_OPEN ", nullptr}, {"MENU_OPENED", nullptr},
        {"MIXEDCASE", nullptr},  {"QVLANG=", nullptr},
        {"", nullptr},           {nullptr, nullptr},
    };
    for (const auto& c : cases) {
        EXPECT_STREQ(KorGetLocalizedString(c.key), c.text)
            << "key " << ::testing::PrintToString(c.key);
    }
}

TEST_F(Lookup, HandsOutTheTablesOwnText) {
    ASSERT_EQ(ZuLoadStrings("en", "x.strings", m_bundle.Get()), 3);
    const char* const text = KorGetLocalizedString("MENU_OPEN");
    EXPECT_EQ(KorGetLocalizedString("MENU_OPEN"), text);
    EXPECT_EQ(KorString::gMapLocalizedStrings.Find("MENU_OPEN")->value.data(), text);
}

TEST_F(Lookup, KeepsATextOverALoadThatFailsBeforeTheFileIsOpen) {
    ASSERT_EQ(ZuLoadStrings("en", "x.strings", m_bundle.Get()), 3);
    const char* const text = KorGetLocalizedString("MENU_OPEN");
    EXPECT_EQ(ZuLoadStrings("en", "missing", m_bundle.Get()), 0);
    EXPECT_EQ(KorGetLocalizedString("MENU_OPEN"), text);
    EXPECT_STREQ(text, "Open");
}

TEST_F(Lookup, AnswersFromWhatKorLoadStringsLoaded) {
    ASSERT_EQ(KorLoadStrings("en", "x.strings", m_bundle.Get()), 3);
    EXPECT_STREQ(KorGetLocalizedString("MENU_OPEN"), "Open");
}

TEST_F(Lookup, PassesItsArgumentsToTheLoader) {
    EXPECT_EQ(ZuLoadStrings(nullptr, "x.strings", m_bundle.Get()), 0);
    EXPECT_EQ(ZuLoadStrings("en", nullptr, m_bundle.Get()), 0);
    EXPECT_EQ(ZuLoadStrings("en", "x.strings", nullptr), 0) << "not in the main bundle";
    EXPECT_EQ(ZuLoadStrings("fr", "x.strings", m_bundle.Get()), 3) << "the first section";
}

}  // namespace
