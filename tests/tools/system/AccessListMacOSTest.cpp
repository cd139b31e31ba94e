// The macOS source, over a stand-in for the system's calls.
#include <cerrno>
#include <string>
#include <sys/acl.h>
#include <vector>

#include <gtest/gtest.h>

#include "tools/orva-strings/system/AccessList.h"

// NOLINTNEXTLINE(bugprone-reserved-identifier): the system's own name
struct _acl {
    const char* name;
};

namespace {

_acl gFilesList = {"file's list"};
_acl gEmptyList = {"empty list"};

int gGetError = 0;   // how acl_get_file fails
int gInitError = 0;  // how the others fail
int gSetError = 0;
std::vector<std::string> gCalls;

// Returns the list, or null and sets errno if there is an error.
acl_t ListUnless(int error, _acl* list) {
    errno = error;
    return error == 0 ? list : nullptr;
}

bool CopyWith(int getError, int initError, int setError) {
    gGetError = getError;
    gInitError = initError;
    gSetError = setError;
    gCalls.clear();
    return CopyAccessList("from", 7);
}

using Calls = std::vector<std::string>;

const Calls kCopied = {"get from", "set 7 file's list", "free file's list"};
const Calls kEmptied = {"get from", "init 0", "set 7 empty list", "free empty list"};

TEST(AccessListMacOS, CopiesTheList) {
    EXPECT_TRUE(CopyWith(0, 0, 0));
    EXPECT_EQ(gCalls, kCopied);
    EXPECT_FALSE(CopyWith(0, 0, EPERM));
    EXPECT_EQ(gCalls, kCopied);
}

TEST(AccessListMacOS, EmptiesItWhereThereIsNone) {
    EXPECT_TRUE(CopyWith(ENOENT, 0, 0));
    EXPECT_EQ(gCalls, kEmptied);
    EXPECT_FALSE(CopyWith(ENOENT, 0, EPERM));
    EXPECT_EQ(gCalls, kEmptied);
    EXPECT_FALSE(CopyWith(ENOENT, ENOMEM, 0));
    EXPECT_EQ(gCalls, Calls({"get from", "init 0"}));
}

TEST(AccessListMacOS, MakesNoFurtherCallOnAVolumeWithoutLists) {
    for (const int error : {ENOTSUP, EOPNOTSUPP}) {
        EXPECT_TRUE(CopyWith(error, 0, 0));
        EXPECT_EQ(gCalls, Calls({"get from"}));
    }
    EXPECT_FALSE(CopyWith(ENOMEM, 0, 0));
    EXPECT_EQ(gCalls, Calls({"get from"}));
}

}  // namespace

acl_t acl_init(int count) {
    gCalls.push_back("init " + std::to_string(count));
    return ListUnless(gInitError, &gEmptyList);
}

acl_t acl_get_file(const char* path, acl_type_t type) {
    EXPECT_EQ(type, ACL_TYPE_EXTENDED);
    gCalls.push_back(std::string("get ") + path);
    return ListUnless(gGetError, &gFilesList);
}

int acl_set_fd(int file, acl_t list) {
    gCalls.push_back("set " + std::to_string(file) + ' ' + list->name);
    errno = gSetError;
    return gSetError == 0 ? 0 : -1;
}

int acl_free(void* list) {
    gCalls.push_back(std::string("free ") + static_cast<acl_t>(list)->name);
    return 0;
}
