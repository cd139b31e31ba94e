// The header's part for macOS, over a stand-in for CoreFoundation. All that the header includes comes
// first, since the system's own headers must not see this macro.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <locale>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include <CoreFoundation/CoreFoundation.h>
#include <OrvaLanguage/KorString.h>
#include <OrvaLanguage/OrvaLanguage.h>
#include <gtest/gtest.h>

#include "tests/standin/CoreFoundationStandIn.h"

#define __APPLE__ 1
#include <OrvaLanguage/Texts.hpp>
#undef __APPLE__

namespace {

using Names = std::vector<std::string>;

TEST(PreferredLanguagesMacOS, AreTheSystems) {
    CoreFoundationStandIn system;
    system.languages = {"de-AT", "zh-Hant-TW", "en"};
    EXPECT_EQ(OrvaLanguage::PreferredLanguages(), system.languages);
    EXPECT_EQ(system.owned, Names()) << "not released";
}

TEST(PreferredLanguagesMacOS, LeaveOutWhatIsTooLongForATag) {
    CoreFoundationStandIn system;
    const std::string longest(255, 'x');
    system.languages = {longest + "x", longest, "en"};
    EXPECT_EQ(OrvaLanguage::PreferredLanguages(), Names({longest, "en"}));
    EXPECT_EQ(system.owned, Names());
}

TEST(PreferredLanguagesMacOS, AreNoneWhereTheSystemHasNone) {
    CoreFoundationStandIn system;
    EXPECT_EQ(OrvaLanguage::PreferredLanguages(), Names());
    system.nullObject = "languages";
    EXPECT_EQ(OrvaLanguage::PreferredLanguages(), Names());
    EXPECT_EQ(system.owned, Names());
}

}  // namespace
