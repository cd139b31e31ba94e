#include <cerrno>
#include <cstddef>
#include <linux/limits.h>
#include <sys/xattr.h>

#include "tools/orva-strings/system/AccessList.h"

namespace {

constexpr char kList[] = "system.posix_acl_access";

bool HasNone() {
    return errno == ENODATA || errno == ENOTSUP;
}

}  // namespace

bool CopyAccessList(const char* from, int to) {
    char list[XATTR_SIZE_MAX];
    const ssize_t size = getxattr(from, kList, list, sizeof list);
    if (size != -1) {
        return fsetxattr(to, kList, list, static_cast<std::size_t>(size), 0) == 0;
    }
    // No list to copy: remove any inherited from the folder.
    return HasNone() && (fremovexattr(to, kList) == 0 || HasNone());
}
