#include <string>
#include <vector>

#include <OrvaLanguage/KorString.h>
#include <gtest/gtest.h>

#include "platform/ResourcePath.h"
#include "support/TemporaryFolder.h"
#include "tests/standin/CoreFoundationStandIn.h"

namespace {

using Calls = std::vector<std::string>;

std::string PathOf(__CFBundle* bundle, const char* fileName) {
    char path[kResourcePathCapacity] = {};
    GetResourcePath(bundle, fileName, path);
    return path;
}

const Calls kAllCalls = {
    "CFBundleCopyBundleURL(given bundle)",
    "CFBundleCopyResourcesDirectoryURL(given bundle)",
    "CFURLGetString(resources URL)",
    "CFURLCreateCopyAppendingPathComponent(default allocator, bundle URL, resources text, false)",
    "CFStringCreateWithCString(default allocator, x.strings, 134217984)",
    "CFURLCreateCopyAppendingPathComponent(default allocator, folder URL, name string, false)",
    "CFURLCopyFileSystemPath(file URL, 0)",
    "CFStringGetFileSystemRepresentation(path string, buffer, 1024)",
    "CFRelease(path string)",
    "CFRelease(file URL)",
    "CFRelease(name string)",
    "CFRelease(folder URL)",
    "CFRelease(bundle URL)",
    "CFRelease(resources URL)",
};

TEST(ResourcePathCoreFoundation, MakesEachCallInItsOrder) {
    CoreFoundationStandIn system;
    system.path = "/App.app/Contents/Resources/x.strings";
    EXPECT_EQ(PathOf(GivenBundle(), "x.strings"), system.path);
    EXPECT_EQ(system.calls, kAllCalls);
    EXPECT_EQ(system.owned, Calls());
}

TEST(ResourcePathCoreFoundation, AsksForTheMainBundleWhenGivenNone) {
    CoreFoundationStandIn system;
    system.path = "/x";
    EXPECT_EQ(PathOf(nullptr, "x.strings"), "/x");
    Calls expected = kAllCalls;
    expected[0] = "CFBundleCopyBundleURL(main bundle)";
    expected[1] = "CFBundleCopyResourcesDirectoryURL(main bundle)";
    expected.insert(expected.begin(), "CFBundleGetMainBundle()");
    EXPECT_EQ(system.calls, expected) << "and it is not released";
}

TEST(ResourcePathCoreFoundation, IgnoresTheConversionsResult) {
    CoreFoundationStandIn system;
    system.path = "/x";
    system.conversionResult = false;
    EXPECT_EQ(PathOf(GivenBundle(), "x.strings"), "/x");
}

TEST(ResourcePathCoreFoundation, TreatsAnEmptyOrUnterminatedBufferAsNoPath) {
    const struct {
        std::string written;
        std::string path;
    } cases[] = {
        {"", ""},
        {std::string(1022, 'x'), std::string(1022, 'x')},
        {std::string(1023, 'x'), std::string(1023, 'x')},
        {std::string(1024, 'x'), ""},
        {std::string(1025, 'x'), ""},
    };
    for (const auto& c : cases) {
        CoreFoundationStandIn system;
        system.path = c.written;
        EXPECT_EQ(PathOf(GivenBundle(), "x.strings"), c.path) << c.written.size() << " bytes";
        EXPECT_EQ(system.calls, kAllCalls);
    }
}

TEST(ResourcePathCoreFoundation, StopsAtANullAndReleasesWhatItOwns) {
    // The calls of kAllCalls that are still made if an object is missing.
    const struct {
        const char* missing;
        std::vector<std::size_t> calls;
    } cases[] = {
        {"bundle URL", {0, 1, 13}},
        {"resources URL", {0, 1, 12}},
        {"resources text", {0, 1, 2, 12, 13}},
        {"folder URL", {0, 1, 2, 3, 4, 10, 12, 13}},
        {"name string", {0, 1, 2, 3, 4, 11, 12, 13}},
        {"file URL", {0, 1, 2, 3, 4, 5, 10, 11, 12, 13}},
        {"path string", {0, 1, 2, 3, 4, 5, 6, 9, 10, 11, 12, 13}},
    };
    for (const auto& c : cases) {
        CoreFoundationStandIn system;
        system.path = "/x";
        system.nullObject = c.missing;
        EXPECT_EQ(PathOf(GivenBundle(), "x.strings"), "") << c.missing;
        Calls expected;
        for (const std::size_t call : c.calls) {
            expected.push_back(kAllCalls[call]);
        }
        EXPECT_EQ(system.calls, expected) << c.missing;
        EXPECT_EQ(system.owned, Calls()) << c.missing;
    }
}

TEST(ResourcePathCoreFoundation, StopsWithoutAMainBundle) {
    CoreFoundationStandIn system;
    system.nullObject = "main bundle";
    EXPECT_EQ(PathOf(nullptr, "x.strings"), "");
    EXPECT_EQ(system.calls, Calls{"CFBundleGetMainBundle()"});
}

TEST(KorLoadStringsOverCoreFoundation, LoadsTheFileAndKeepsTheTableWithoutAPath) {
    const TemporaryFolder folder;
    folder.Write("x.strings", "QVLANG=en\nABCD=1\n");
    CoreFoundationStandIn system;
    system.path = (folder.Path() / "x.strings").string();
    ASSERT_EQ(KorLoadStrings("en", "x.strings", GivenBundle()), 2);
    EXPECT_EQ(system.calls, kAllCalls);

    for (const char* missing : {"bundle URL", "resources URL", "name string", "path string"}) {
        system.nullObject = missing;
        EXPECT_EQ(KorLoadStrings("en", "x.strings", GivenBundle()), 0) << missing;
        EXPECT_STREQ(KorGetLocalizedString("ABCD"), "1") << missing;
    }
    system.nullObject.clear();
    system.path.clear();
    EXPECT_EQ(KorLoadStrings("en", "x.strings", GivenBundle()), 0);
    EXPECT_STREQ(KorGetLocalizedString("ABCD"), "1");

    system.calls.clear();
    EXPECT_EQ(KorLoadStrings(nullptr, "x.strings", GivenBundle()), 0);
    EXPECT_EQ(KorLoadStrings("en", nullptr, GivenBundle()), 0);
    EXPECT_EQ(system.calls, Calls()) << "without both names no call is made";
}

}  // namespace
