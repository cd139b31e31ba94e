// Which access lists the files that the tool writes have.
#include <cstdint>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <vector>

#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"
#include "tools/orva-strings/Tool.h"
#include "tools/orva-strings/system/Files.h"

namespace {

constexpr char kReadable[] = "QVLANG=en\nIDE_TITLE=\"Title\"\n";
constexpr char kAccess[] = "system.posix_acl_access";
constexpr char kDefault[] = "system.posix_acl_default";

// An access list as Linux stores it: the rights of the owner, one more user, the group, the mask
// and others.
std::string AccessList(std::uint16_t user, std::uint16_t group, std::uint16_t mask) {
    struct Entry {
        std::uint16_t tag;
        std::uint16_t rights;
        std::uint32_t id;
    };
    const Entry entries[] = {
        {0x01, 6, ~0U}, {0x02, user, 12345}, {0x04, group, ~0U}, {0x10, mask, ~0U}, {0x20, 0, ~0U}};
    const std::uint32_t version = 2;
    std::string list(reinterpret_cast<const char*>(&version), sizeof version);
    return list.append(reinterpret_cast<const char*>(entries), sizeof entries);
}

std::string ListOf(const std::string& file) {
    char list[1024];
    const ssize_t size = getxattr(file.c_str(), kAccess, list, sizeof list);
    return size < 0 ? "none" : std::string(list, static_cast<std::size_t>(size));
}

bool SetList(const std::string& file, const char* name, const std::string& list) {
    return setxattr(file.c_str(), name, list.data(), list.size(), 0) == 0;
}

class OrvaStringsAccessList : public ::testing::Test {
protected:
    static void Protect(const std::vector<std::string>& options) {
        std::vector<std::string> arguments = {"protect"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        std::ostringstream out;
        std::ostringstream err;
        EXPECT_EQ(RunTool(
                      arguments, [] { return ""; }, out, err),
                  0)
            << err.str();
    }

    std::string Path(const std::string& name) const { return m_folder.Path() / name; }

    std::string Write(const std::string& name, const std::string& bytes) const {
        m_folder.Write(name, bytes);
        return Path(name);
    }

    TemporaryFolder m_folder;
};

TEST_F(OrvaStringsAccessList, IsKeptInPlace) {
    const std::string listed = Write("listed", kReadable);
    const std::string list = AccessList(6, 0, 6);  // the group itself has no rights
    if (!SetList(listed, kAccess, list)) {
        GTEST_SKIP() << "the file system has no access lists";
    }
    Protect({"--in-place", listed});
    EXPECT_EQ(ListOf(listed), list);
    EXPECT_NE(ReadFile(listed), kReadable);

    // Nor does mending lose it.
    const std::string broken = Write("broken", std::string(" ") + kReadable);
    ASSERT_TRUE(SetList(broken, kAccess, list));
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(RunTool(
                  {"fix", broken}, [] { return ""; }, out, err),
              0)
        << err.str();
    EXPECT_EQ(ListOf(broken), list);
    EXPECT_EQ(ReadFile(broken), kReadable);

    // Nor does a new file keep the folder's default list.
    const std::string plain = Write("plain", kReadable);
    ASSERT_EQ(chmod(plain.c_str(), 0640), 0);
    ASSERT_TRUE(SetList(m_folder.Path(), kDefault, AccessList(7, 5, 7)));
    const std::string plainNew = Write("new", "");
    EXPECT_NE(ListOf(plainNew), "none");
    Protect({"--in-place", plain});
    EXPECT_EQ(ListOf(plain), "none");
    struct stat status = {};
    ASSERT_EQ(stat(plain.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0640U);

    // But an output file that did not exist before does.
    Protect({"-o", Path("out"), plain});
    EXPECT_EQ(ListOf(Path("out")), ListOf(plainNew));
}

}  // namespace
