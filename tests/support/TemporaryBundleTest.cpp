// The command's temporary bundle when the system refuses a call.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>

#include <gtest/gtest.h>

#include "support/TemporaryBundle.h"
#include "tests/support/FileSizeLimit.h"

namespace fs = std::filesystem;

namespace {

char gSomething;
__CFBundle* gBundle;
int gClosed;

}  // namespace

// Stand-ins for the system's.
__CFBundle* OpenBundle(const fs::path& /*folder*/) {
    return gBundle;
}

void CloseBundle(__CFBundle* /*bundle*/) {
    ++gClosed;
}

namespace {

class TemporaryBundleTest : public ::testing::Test {
protected:
    TemporaryBundleTest() {
        setenv("TMPDIR", m_folder.Path().c_str(), 1);
        gBundle = reinterpret_cast<__CFBundle*>(&gSomething);
        gClosed = 0;
    }
    ~TemporaryBundleTest() override { unsetenv("TMPDIR"); }

    TemporaryFolder m_folder;
};

TEST_F(TemporaryBundleTest, LeavesNothingWhereNoBundleCanBeOpened) {
    gBundle = nullptr;
    try {
        const TemporaryBundle bundle;
        FAIL() << "there is a bundle";
    } catch (const std::runtime_error& error) {
        const std::string text = error.what();
        const std::string start = (m_folder.Path() / "orva-").string();
        EXPECT_EQ(text.substr(0, start.size()), start);
        EXPECT_EQ(text.substr(std::min(text.size(), start.size() + 6)),
                  ": can't be opened as a bundle");
    }
    EXPECT_EQ(gClosed, 0);
    EXPECT_TRUE(fs::is_empty(m_folder.Path()));
}

TEST_F(TemporaryBundleTest, ClosesTheBundleAndRemovesItsFiles) {
    {
        const TemporaryBundle bundle;
        EXPECT_EQ(bundle.Get(), gBundle);
        bundle.Write("file", "bytes");
        bundle.Link("link", "file");
        EXPECT_EQ(fs::read_symlink(bundle.Resources() / "link"), "file");
        EXPECT_EQ(bundle.Resources().parent_path().parent_path().parent_path(), m_folder.Path());
        EXPECT_EQ(gClosed, 0);
    }
    EXPECT_EQ(gClosed, 1);
    EXPECT_TRUE(fs::is_empty(m_folder.Path()));
}

TEST_F(TemporaryBundleTest, NamesWhatCannotBeWritten) {
    const auto error = [](const auto& action) {
        try {
            action();
        } catch (const std::system_error& caught) {
            return std::string(caught.what());
        }
        return std::string("no error");
    };
    EXPECT_EQ(error([&] { m_folder.Write("missing/file", "bytes"); }),
              (m_folder.Path() / "missing/file").string() + ": No such file or directory");
    fs::create_directory(m_folder.Path() / "folder");
    EXPECT_EQ(error([&] { m_folder.Write("folder", "bytes"); }),
              (m_folder.Path() / "folder").string() + ": Is a directory");
    EXPECT_EQ(error([&] {
                  const FileSizeLimit limit;
                  m_folder.Write("large", "bytes");
              }),
              (m_folder.Path() / "large").string() + ": File too large");

    const TemporaryBundle bundle;
    bundle.Link("link", "file");
    EXPECT_EQ(error([&] { bundle.Link("link", "file"); }),
              (bundle.Resources() / "link").string() + ": File exists");
}

}  // namespace
