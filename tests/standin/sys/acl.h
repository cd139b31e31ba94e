// The few names of macOS's access lists that are used here, so that the macOS source compiles
// elsewhere. AccessListMacOSTest.cpp defines what the calls do.
#ifndef ORVALANGUAGE_TESTS_STANDIN_SYS_ACL_H
#define ORVALANGUAGE_TESTS_STANDIN_SYS_ACL_H

// NOLINTBEGIN(bugprone-reserved-identifier, readability-identifier-naming): the system's own names
extern "C" {

using acl_t = struct _acl*;
enum acl_type_t { ACL_TYPE_EXTENDED = 0x100 };

acl_t acl_init(int count);
acl_t acl_get_file(const char* path, acl_type_t type);
int acl_set_fd(int file, acl_t list);
int acl_free(void* list);
}
// NOLINTEND(bugprone-reserved-identifier, readability-identifier-naming)

#endif
