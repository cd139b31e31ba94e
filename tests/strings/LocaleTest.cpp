// What the host's locale must not change.
#include <clocale>
#include <cstdlib>
#include <cwctype>

#include <OrvaLanguage/KorString.h>
#include <gtest/gtest.h>

namespace {

TEST(Locale, DoesNotChangeWhichSectionIsFound) {
    setenv("LOCPATH", LOCALES, 1);
    ASSERT_NE(std::setlocale(LC_ALL, "tr_TR.UTF-8"), nullptr);
    ASSERT_NE(std::towlower(L'I'), L'i') << "the locale is not the one this test needs";
    EXPECT_TRUE(KorString::SearchLanguageKey("QVLANG=ITALIANO", "Italiano"));
    EXPECT_TRUE(KorString::SearchRegionKey("QVREGION=it", "IT"));
}

}  // namespace
