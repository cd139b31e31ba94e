// A load from the main bundle when the system does not say which executable runs, as without /proc.
// Replaces the system's call.
#include <cerrno>
#include <string>
#include <unistd.h>

#include <OrvaLanguage/KorString.h>
#include <OrvaLanguage/OrvaLanguage.h>
#include <gtest/gtest.h>

#include "support/TemporaryBundle.h"

namespace {

bool gIsUnknown = false;
std::string gPath;  // what the system answers instead, unless empty

TEST(UnknownExecutable, HasNoMainBundle) {
    const TemporaryBundle bundle;
    bundle.Write("x", "QVLANG=en\nMENU_OPEN=Open\n");
    ASSERT_EQ(ZuLoadStrings("en", "x", bundle.Get()), 2);
    gIsUnknown = true;
    EXPECT_EQ(ZuLoadStrings("en", "x", nullptr), 0);
    EXPECT_FALSE(gIsUnknown) << "the call was made";
    EXPECT_STREQ(KorGetLocalizedString("MENU_OPEN"), "Open") << "the table stays";
}

// Only the ending that the system adds is removed, not that of a file's own name.
TEST(UnknownExecutable, KeepsAPathThatDoesNotExist) {
    const TemporaryFolder folder;
    folder.Write("x", "QVLANG=en\nMENU_OPEN=Open\n");
    for (const std::string ending : {"", " (deleted)"}) {
        gPath = folder.Path().string() + "/app" + ending;
        EXPECT_EQ(ZuLoadStrings("en", "x", nullptr), 2) << gPath;
    }
    gPath.clear();
}

}  // namespace

extern "C" ssize_t readlink(const char*, char* target, size_t size) noexcept {
    gIsUnknown = false;
    if (!gPath.empty()) {
        return static_cast<ssize_t>(gPath.copy(target, size));
    }
    errno = ENOENT;
    return -1;
}
