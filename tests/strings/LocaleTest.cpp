// What the host's locale must not change.
#include <clocale>
#include <cstdlib>
#include <cwctype>

#include <OrvaLanguage/KorString.h>
#include <gtest/gtest.h>

namespace {

TEST(Locale, DoesNotChangeWhichSectionIsFound) {
#ifdef LOCALES  // made for this test; macOS has its own
    setenv("LOCPATH", LOCALES, 1);
    ASSERT_NE(std::setlocale(LC_ALL, "tr_TR.UTF-8"), nullptr);
    ASSERT_NE(std::towlower(L'I'), L'i') << "the locale is not the one this test needs";
#else
    if (std::setlocale(LC_ALL, "tr_TR.UTF-8") == nullptr || std::towlower(L'I') == L'i') {
        GTEST_SKIP() << "this system has no locale in which I is not the capital of i";
    }
#endif
    EXPECT_TRUE(KorString::SearchLanguageKey("QVLANG=ITALIANO", "Italiano"));
    EXPECT_TRUE(KorString::SearchRegionKey("QVREGION=it", "IT"));
}

}  // namespace
