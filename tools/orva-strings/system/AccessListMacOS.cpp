#include <sys/types.h>

#include <cerrno>
#include <memory>
#include <sys/acl.h>

#include "tools/orva-strings/system/AccessList.h"

bool CopyAccessList(const char* from, int to) {
    std::unique_ptr<void, decltype(&acl_free)> list(acl_get_file(from, ACL_TYPE_EXTENDED),
                                                    acl_free);
    if (list == nullptr && errno == ENOENT) {
        list.reset(acl_init(0));  // instead of one inherited from the folder
    }
    return list == nullptr ? errno == ENOTSUP || errno == EOPNOTSUPP
                           : acl_set_fd(to, static_cast<acl_t>(list.get())) == 0;
}
