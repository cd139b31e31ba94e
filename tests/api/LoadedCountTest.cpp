#include <OrvaLanguage/KorString.h>
#include <OrvaLanguage/OrvaLanguage.h>
#include <gtest/gtest.h>

#include "api/LoadedCount.h"
#include "support/TemporaryBundle.h"

namespace {

TEST(LoadedCount, IsTheResultOfTheLastZuLoadStrings) {
    const TemporaryBundle bundle;
    bundle.Write("x.strings", "QVLANG=en\nABCD=1\n");
    bundle.Write("y.strings", "QVLANG=en\nABCD=1\nEFGH=2\n");
    EXPECT_EQ(gLoadedCount, 0);

    EXPECT_EQ(KorLoadStrings("en", "x.strings", bundle.Get()), 2);
    EXPECT_EQ(gLoadedCount, 0) << "KorLoadStrings leaves it alone";

    EXPECT_EQ(ZuLoadStrings("en", "x.strings", bundle.Get()), 2);
    EXPECT_EQ(gLoadedCount, 2);

    EXPECT_EQ(KorLoadStrings("en", "y.strings", bundle.Get()), 3);
    EXPECT_EQ(gLoadedCount, 2) << "KorLoadStrings leaves it alone";
    EXPECT_STREQ(KorGetLocalizedString("EFGH"), "2");

    EXPECT_EQ(ZuLoadStrings("en", "missing", bundle.Get()), 0);
    EXPECT_EQ(gLoadedCount, 0);
    EXPECT_STREQ(KorGetLocalizedString("EFGH"), "2") << "the table is still there";
}

}  // namespace
