// A load from the main bundle when the system does not say which executable runs, as without /proc.
// Replaces the system's call.
#include <cerrno>
#include <unistd.h>

#include <OrvaLanguage/KorString.h>
#include <OrvaLanguage/OrvaLanguage.h>
#include <gtest/gtest.h>

#include "support/TemporaryBundle.h"

namespace {

bool gIsUnknown = false;

TEST(UnknownExecutable, HasNoMainBundle) {
    const TemporaryBundle bundle;
    bundle.Write("x", "QVLANG=en\nMENU_OPEN=Open\n");
    ASSERT_EQ(ZuLoadStrings("en", "x", bundle.Get()), 2);
    gIsUnknown = true;
    EXPECT_EQ(ZuLoadStrings("en", "x", nullptr), 0);
    EXPECT_FALSE(gIsUnknown) << "the call was asked";
    EXPECT_STREQ(KorGetLocalizedString("MENU_OPEN"), "Open") << "the table stays";
}

}  // namespace

extern "C" ssize_t readlink(const char*, char*, size_t) noexcept {
    gIsUnknown = false;
    errno = ENOENT;
    return -1;
}
