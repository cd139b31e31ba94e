// How often, in which mode and for how long a load opens its file, and what happens to the table if
// an open fails.
#include <filesystem>
#include <string>
#include <vector>

#include <OrvaLanguage/KorString.h>
#include <OrvaLanguage/OrvaLanguage.h>
#include <gtest/gtest.h>

#include "support/TemporaryBundle.h"
#include "tests/support/FileFaults.h"

namespace {

class FileAccess : public ::testing::Test {
protected:
    void SetUp() override {
        m_bundle.Write("x", "QVLANG=en\nABCD=1\nQVLANG=fr\nABCD=2\n");
        m_bundle.Write("none", "ABCD=1\n");
        m_open = "fopen " + (m_bundle.Resources() / "x").string() + " r";
        ASSERT_EQ(KorLoadStrings("en", "x", m_bundle.Get()), 2);
    }

    TemporaryBundle m_bundle;
    std::string m_open;
};

TEST_F(FileAccess, OpensTheFileOnceForASectionThatIsThere) {
    for (const char* language : {"fr", "en", ""}) {
        const FileFaults faults;
        EXPECT_EQ(KorLoadStrings(language, "x", m_bundle.Get()), 2);
        EXPECT_EQ(FileFaults::Calls(), (std::vector<std::string>{m_open, "fclose"})) << language;
    }
}

TEST_F(FileAccess, OpensTheFileAgainForASectionThatIsMissing) {
    const FileFaults faults;
    EXPECT_EQ(KorLoadStrings("de", "x", m_bundle.Get()), 2);
    EXPECT_EQ(FileFaults::Calls(), (std::vector<std::string>{m_open, "fclose", m_open, "fclose"}));
}

TEST_F(FileAccess, OpensAFileWithoutASectionTwice) {
    const FileFaults faults;
    EXPECT_EQ(KorLoadStrings("", "none", m_bundle.Get()), 0);
    EXPECT_EQ(FileFaults::Calls().size(), 4U);
}

TEST_F(FileAccess, KeepsTheTableWhenTheFirstOpenFails) {
    const FileFaults faults(1);
    EXPECT_EQ(KorLoadStrings("fr", "x", m_bundle.Get()), 0);
    EXPECT_EQ(FileFaults::Calls(), std::vector<std::string>{m_open});
    EXPECT_STREQ(KorGetLocalizedString("ABCD"), "1");
    EXPECT_STREQ(KorGetLocalizedString("QVLANG"), "en");
}

TEST_F(FileAccess, EmptiesTheTableWhenTheSecondOpenFails) {
    const FileFaults faults(2);
    EXPECT_EQ(KorLoadStrings("de", "x", m_bundle.Get()), 0);
    EXPECT_EQ(FileFaults::Calls(), (std::vector<std::string>{m_open, "fclose", m_open}));
    EXPECT_EQ(KorString::gMapLocalizedStrings.Size(), 0U);
}

TEST_F(FileAccess, OpensAPathOfOneByte) {
    if (std::filesystem::exists("/Contents") || std::filesystem::exists("/Resources")) {
        GTEST_SKIP() << "this system's root looks like a bundle";
    }
    __CFBundle* const root = ZuOpenBundle("/");
    const FileFaults faults;
    EXPECT_EQ(KorLoadStrings("en", "", root), 0);
    EXPECT_EQ(FileFaults::Calls().at(0), "fopen / r");
    ZuCloseBundle(root);
}

TEST_F(FileAccess, OpensNothingWithoutAPath) {
    const FileFaults faults;
    EXPECT_EQ(KorLoadStrings("en", "\xFF", m_bundle.Get()), 0);
    EXPECT_EQ(KorLoadStrings(nullptr, "x", m_bundle.Get()), 0);
    EXPECT_EQ(FileFaults::Calls(), std::vector<std::string>());
}

}  // namespace
