// The macOS source, over a stand-in for CoreFoundation.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/OpenBundle.h"
#include "tests/standin/CoreFoundationStandIn.h"

namespace {

using Calls = std::vector<std::string>;

const char kMakeURL[] =
    "CFURLCreateFromFileSystemRepresentation(default allocator, /folder/\xC3\xB6, true)";
const char kMakeBundle[] = "CFBundleCreate(default allocator, path URL)";

TEST(OpenBundleCoreFoundation, OpensAndCloses) {
    const CoreFoundationStandIn system;
    __CFBundle* const bundle = OpenBundle("/folder/\xC3\xB6");
    EXPECT_NE(bundle, nullptr);
    EXPECT_EQ(system.calls, Calls({kMakeURL, kMakeBundle, "CFRelease(path URL)"}));
    EXPECT_EQ(system.owned, Calls({"created bundle"}));
    CloseBundle(bundle);
    EXPECT_EQ(system.owned, Calls());
}

TEST(OpenBundleCoreFoundation, ReturnsNullWhereTheSystemDoes) {
    CoreFoundationStandIn system;
    system.nullObject = "path URL";
    EXPECT_EQ(OpenBundle("/folder/\xC3\xB6"), nullptr);
    EXPECT_EQ(system.calls, Calls({kMakeURL}));

    system.calls.clear();
    system.nullObject = "created bundle";
    EXPECT_EQ(OpenBundle("/folder/\xC3\xB6"), nullptr);
    EXPECT_EQ(system.calls, Calls({kMakeURL, kMakeBundle, "CFRelease(path URL)"}));
    EXPECT_EQ(system.owned, Calls());
    CloseBundle(nullptr);
}

}  // namespace
