// What holds in a process that has loaded nothing yet, hence an executable of its own.
#include <OrvaLanguage/KorString.h>
#include <gtest/gtest.h>

namespace {

TEST(LookupBeforeLoad, AnswersNull) {
    EXPECT_EQ(KorString::gMapLocalizedStrings.Size(), 0U);
    for (const char* key :
         {"MENU_OPEN", "QVLANG", "IDE_TEXT", "", static_cast<const char*>(nullptr)}) {
        EXPECT_EQ(KorGetLocalizedString(key), nullptr) << ::testing::PrintToString(key);
    }
}

}  // namespace
