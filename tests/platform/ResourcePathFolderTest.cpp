#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>

#include <OrvaLanguage/OrvaLanguage.h>
#include <gtest/gtest.h>

#include "platform/ResourcePath.h"
#include "support/TemporaryBundle.h"

namespace fs = std::filesystem;
using ::testing::PrintToString;

namespace {

std::string PathOf(__CFBundle* bundle, const std::string& fileName) {
    struct {
        char path[kResourcePathCapacity] = {};
        char after = '\x5A';
    } room;
    GetResourcePath(bundle, fileName.c_str(), room.path);
    EXPECT_EQ(room.after, '\x5A');
    return room.path;
}

// The path in the bundle at a folder, or "no bundle" if it can't be opened.
std::string PathIn(const std::string& bundlePath, const std::string& fileName) {
    __CFBundle* const bundle = ZuOpenBundle(bundlePath.c_str());
    if (bundle == nullptr) {
        return "no bundle";
    }
    std::string path = PathOf(bundle, fileName);
    ZuCloseBundle(bundle);
    return path;
}

TEST(ZuOpenBundle, TakesAFolderAndNothingElse) {
    const TemporaryFolder folder;
    const fs::path root = folder.Path();
    std::ofstream(root / "file") << "x";
    fs::create_directory(root / "folder");
    fs::create_symlink("folder", root / "link");
    fs::create_symlink("nowhere", root / "dangling");

    EXPECT_EQ(ZuOpenBundle(nullptr), nullptr);
    EXPECT_EQ(PathIn("", "x"), "no bundle");
    EXPECT_EQ(PathIn(root / "missing", "x"), "no bundle");
    EXPECT_EQ(PathIn(root / "file", "x"), "no bundle");
    EXPECT_EQ(PathIn(root / "file/", "x"), "no bundle");
    EXPECT_EQ(PathIn(root / "dangling", "x"), "no bundle");
    EXPECT_EQ(PathIn(root / "folder", "x"), root / "folder/x");
    EXPECT_EQ(PathIn(root / "folder/", "x"), root / "folder/x");
    EXPECT_EQ(PathIn(root / "link", "x"), root / "link/x");
    ZuCloseBundle(nullptr);
}

TEST(ZuOpenBundle, ResolvesARelativePathAgainstTheCurrentFolder) {
    const TemporaryFolder folder;
    const fs::path root = fs::canonical(folder.Path());
    fs::create_directory(root / "b");
    const fs::path before = fs::current_path();
    fs::current_path(root);
    __CFBundle* const bundle = ZuOpenBundle("b");
    fs::current_path(before);
    EXPECT_EQ(PathOf(bundle, "x"), root / "b/x");
    ZuCloseBundle(bundle);
}

TEST(ResourcePath, FindsTheResourcesFolder) {
    const struct {
        const char* bundle;
        std::vector<const char*> folders;
        const char* resources;
    } cases[] = {
        {"Plain", {}, "Plain"},
        {"Resources only", {"Resources"}, "Resources only/Resources"},
        {"Contents only", {"Contents"}, "Contents only/Contents/Resources"},
        {"Both", {"Contents", "Resources"}, "Both/Contents/Resources"},
        {"App.app", {"Contents/Resources"}, "App.app/Contents/Resources"},
        {"F.framework", {"Resources"}, "F.framework/Resources"},
        {"G.framework", {"Resources", "Contents"}, "G.framework/Resources"},
        {"H.framework", {"Contents"}, "H.framework/Contents/Resources"},
        {"I.framework", {}, "I.framework"},
        {"J.framework.app", {"Resources", "Contents"}, "J.framework.app/Contents/Resources"},
        {".framework", {"Resources", "Contents"}, ".framework/Resources"},
        {"K.framework.", {"Resources", "Contents"}, "K.framework./Contents/Resources"},
        {"framework", {"Resources", "Contents"}, "framework/Contents/Resources"},
        {"blank % %20 # ? ; : \\ \xC3\xA4 \xFF",
         {"Contents"},
         "blank % %20 # ? ; : \\ \xC3\xA4 \xFF/Contents/Resources"},
    };
    const TemporaryFolder folder;
    for (const auto& c : cases) {
        const fs::path bundle = folder.Path() / c.bundle;
        fs::create_directories(bundle);
        for (const char* inside : c.folders) {
            fs::create_directories(bundle / inside);
        }
        const std::string expected = folder.Path() / c.resources / "x.strings";
        EXPECT_EQ(PathIn(bundle, "x.strings"), expected);
        EXPECT_EQ(PathIn(bundle.string() + "//", "x.strings"), expected);
    }
}

TEST(ResourcePath, LooksIntoTheBundleEachTime) {
    const TemporaryFolder folder;
    __CFBundle* const bundle = ZuOpenBundle(folder.Path().c_str());
    EXPECT_EQ(PathOf(bundle, "x"), folder.Path() / "x");
    fs::create_directory(folder.Path() / "Contents");
    EXPECT_EQ(PathOf(bundle, "x"), folder.Path() / "Contents/Resources/x");
    ZuCloseBundle(bundle);
}

TEST(ResourcePath, IgnoresFilesWithTheFoldersNames) {
    const TemporaryFolder folder;
    std::ofstream(folder.Path() / "Contents") << "x";
    std::ofstream(folder.Path() / "Resources") << "x";
    EXPECT_EQ(PathIn(folder.Path(), "x"), folder.Path() / "x");
}

TEST(ResourcePath, FollowsALinkAndKeepsItsName) {
    const TemporaryFolder folder;
    fs::create_directories(folder.Path() / "target" / "Contents");
    fs::create_symlink("target", folder.Path() / "link");
    EXPECT_EQ(PathIn(folder.Path() / "link", "x"), folder.Path() / "link/Contents/Resources/x");
}

TEST(ZuOpenBundle, FollowsALinkAgainAtEachLoad) {
    const TemporaryFolder folder;
    fs::create_directories(folder.Path() / "one");
    fs::create_directories(folder.Path() / "two" / "Resources");
    folder.Write("one/x", "QVLANG=en\nABCD=one\n");
    folder.Write("two/Resources/x", "QVLANG=en\nABCD=two\n");
    const fs::path link = folder.Path() / "link";
    fs::create_directory_symlink("one", link);
    __CFBundle* const bundle = ZuOpenBundle(link.c_str());
    EXPECT_EQ(ZuLoadStrings("en", "x", bundle), 2);
    EXPECT_STREQ(ZuGetLocalizedString("ABCD"), "one");

    fs::remove(link);
    EXPECT_EQ(ZuLoadStrings("en", "x", bundle), 0) << "it leads nowhere";
    fs::create_directory_symlink("two", link);
    EXPECT_EQ(ZuLoadStrings("en", "x", bundle), 2);
    EXPECT_STREQ(ZuGetLocalizedString("ABCD"), "two");
    ZuCloseBundle(bundle);
}

TEST(ResourcePath, KnowsAFrameworkByTheNameThatItWasOpenedBy) {
    const TemporaryFolder folder;
    const fs::path framework = folder.Path() / "G.framework";
    fs::create_directories(framework / "Contents");
    fs::create_directories(framework / "Resources");
    fs::create_symlink("G.framework", folder.Path() / "link");
    fs::create_directories(folder.Path() / "plain" / "Contents");
    fs::create_directories(folder.Path() / "plain" / "Resources");
    fs::create_symlink("plain", folder.Path() / "link.framework");
    EXPECT_EQ(PathIn(folder.Path() / "link", "x"), folder.Path() / "link/Contents/Resources/x");
    EXPECT_EQ(PathIn(framework / ".", "x"), framework / "./Contents/Resources/x");
    EXPECT_EQ(PathIn(folder.Path() / "link.framework", "x"),
              folder.Path() / "link.framework/Resources/x");
}

TEST(ResourcePath, TakesTheRootAsABundle) {
    EXPECT_EQ(PathIn("/", "x"), "/x");
}

TEST(ZuOpenBundle, IsNullInACurrentFolderThatIsGone) {
    const fs::path before = fs::current_path();
    {
        const TemporaryFolder folder;
        fs::current_path(folder.Path());
    }
    EXPECT_EQ(ZuOpenBundle("."), nullptr);
    fs::current_path(before);
}

TEST(ResourcePath, AppendsTheFileName) {
    const struct {
        std::string fileName;
        std::string behindResources;
    } cases[] = {
        {"x.strings", "/x.strings"},
        {"sub/x.strings", "/sub/x.strings"},
        {"../x.strings", "/../x.strings"},
        {"./x", "/./x"},
        {"sub//x", "/sub//x"},
        {"/etc/hostname", "/etc/hostname"},
        {"//etc/hostname", "//etc/hostname"},
        {"", ""},
        {"/", ""},
        {"//", ""},
        {"x.strings/", "/x.strings"},
        {" ", "/ "},
        {"a b%20#?;:\\", "/a b%20#?;:\\"},
        {"\xEF\xBB\xBFx", "/x"},
        {"\xEF\xBB\xBF", ""},
        {"\xEF\xBB\xBF/x", "/x"},
        {"\xEF\xBB\xBF\xEF\xBB\xBFx", "/\xEF\xBB\xBFx"},
        {"/\xEF\xBB\xBFx", "/\xEF\xBB\xBFx"},
        {"x\xEF\xBB\xBF", "/x\xEF\xBB\xBF"},
        {"\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80", "/\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80"},
    };
    const TemporaryBundle bundle;
    for (const auto& c : cases) {
        EXPECT_EQ(PathOf(bundle.Get(), c.fileName), bundle.Resources().string() + c.behindResources)
            << "file name " << PrintToString(c.fileName);
    }
}

TEST(ResourcePath, IsEmptyForANameThatIsNotUtf8) {
    const TemporaryBundle bundle;
    const std::string valid[] = {
        "\x01",
        "\x7F",
        "\xC2\x80",
        "\xDF\xBF",
        "\xE0\xA0\x80",
        "\xED\x9F\xBF",
        "\xEE\x80\x80",
        "\xEF\xBF\xBF",
        "\xF0\x90\x80\x80",
        "\xF4\x8F\xBF\xBF",
        "\xE1\x80\x80",
        "\xF1\x80\x80\x80",
    };
    for (const std::string& name : valid) {
        EXPECT_EQ(PathOf(bundle.Get(), name), bundle.Resources() / name) << PrintToString(name);
    }
    const std::string invalid[] = {
        "\x80",
        "\xBF",
        "\xFF",
        "\xFE",
        "\xC0\x80",
        "\xC1\xBF",
        "\xC3",
        "\xC3x",
        "\xC3\xC3",
        "\xC3\xC0",
        "\xE1\xC0\x80",
        "\xF1\xC0\x80\x80",
        "\xE0\x9F\xBF",
        "\xE0\x80\x80",
        "\xE2\x82",
        "\xE2\x82x",
        "\xE2x\x82",
        "\xED\xA0\x80",
        "\xED\xBF\xBF",
        "\xF0\x8F\xBF\xBF",
        "\xF0\x9F\x98",
        "\xF0\x9F\x98x",
        "\xF0\x9Fx\x80",
        "\xF4\x90\x80\x80",
        "\xF5\x80\x80\x80",
        "\xF8\x88\x80\x80\x80",
        "\xE2\x82\xC0",
    };
    for (const std::string& name : invalid) {
        EXPECT_EQ(PathOf(bundle.Get(), name), "") << PrintToString(name);
        EXPECT_EQ(PathOf(bundle.Get(), "x" + name + ".strings"), "") << PrintToString(name);
    }
}

TEST(ResourcePath, HoldsAtMost1023Bytes) {
    const TemporaryBundle bundle;
    const std::size_t folderLength = bundle.Resources().string().size() + 1;
    for (const std::size_t length : {1022U, 1023U}) {
        const std::string name(length - folderLength, 'x');
        EXPECT_EQ(PathOf(bundle.Get(), name), bundle.Resources() / name) << length << " bytes";
    }
    for (const std::size_t length : {1024U, 1025U, 5000U}) {
        const std::string name(length - folderLength, 'x');
        EXPECT_EQ(PathOf(bundle.Get(), name), "") << length << " bytes";
    }
}

// The main bundle is that of the running executable. So these tests put copies of a small program
// where they need them, and run them. It prints the path of "x" in its main bundle.
class MainBundle : public ::testing::Test {
protected:
    std::string PathPrintedBy(const fs::path& executable, const std::string& argument = "") const {
        fs::create_directories((m_folder.Path() / executable).parent_path());
        fs::copy_file(PRINT_MAIN_BUNDLE, m_folder.Path() / executable);
        FILE* const output =
            popen(("'" + (m_folder.Path() / executable).string() + "' " + argument).c_str(), "r");
        std::string printed(kResourcePathCapacity, '\0');
        printed.resize(std::fread(printed.data(), 1, printed.size(), output));
        EXPECT_EQ(pclose(output), 0);
        const std::string root = fs::canonical(m_folder.Path()).string();
        return printed.compare(0, root.size(), root) == 0 ? printed.substr(root.size()) : printed;
    }

    TemporaryFolder m_folder;
};

TEST_F(MainBundle, IsTheBundleAroundContents) {
    EXPECT_EQ(PathPrintedBy("App.app/Contents/Any/host"), "/App.app/Contents/Resources/x");
}

TEST_F(MainBundle, IsTheBundleAroundContentsEvenIfItLooksInstalled) {
    fs::create_directories(m_folder.Path() / "App.app/Contents/share/host");
    EXPECT_EQ(PathPrintedBy("App.app/Contents/bin/host"), "/App.app/Contents/Resources/x");
}

TEST_F(MainBundle, IsTheSameAfterTheExecutableIsRemoved) {
    fs::create_directories(m_folder.Path() / "prefix/share/host");
    EXPECT_EQ(PathPrintedBy("prefix/bin/host", "--remove"), "/prefix/share/host/x");
    fs::create_directories(m_folder.Path() / "prefix/share/name (deleted)");
    EXPECT_EQ(PathPrintedBy("prefix/bin/name (deleted)"), "/prefix/share/name (deleted)/x");
}

TEST_F(MainBundle, IsTheShareFolderOfAnInstalledExecutable) {
    fs::create_directories(m_folder.Path() / "prefix/share/host");
    EXPECT_EQ(PathPrintedBy("prefix/bin/host"), "/prefix/share/host/x");
}

TEST_F(MainBundle, IsOtherwiseTheExecutablesFolder) {
    EXPECT_EQ(PathPrintedBy("prefix/bin/host"), "/prefix/bin/x") << "no share/host";
    fs::create_directories(m_folder.Path() / "prefix/share");
    m_folder.Write("prefix/share/other", "a file");
    EXPECT_EQ(PathPrintedBy("prefix/bin/other"), "/prefix/bin/x") << "no folder";
    EXPECT_EQ(PathPrintedBy("plain folder/host"), "/plain folder/x");
    fs::create_directories(m_folder.Path() / "with/Resources");
    EXPECT_EQ(PathPrintedBy("with/host"), "/with/Resources/x");
}

}  // namespace
