/*
 * The few names of CoreFoundation that are used here, so that the macOS sources compile without
 * CoreFoundation. In C's way, as the system's. CoreFoundationStandIn.h describes what the calls do.
 */
#ifndef ORVALANGUAGE_TESTS_STANDIN_COREFOUNDATION_H
#define ORVALANGUAGE_TESTS_STANDIN_COREFOUNDATION_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* NOLINTBEGIN(bugprone-reserved-identifier, readability-identifier-naming): the system's own names */
typedef unsigned char Boolean;
typedef unsigned char UInt8;
typedef long CFIndex;
typedef uint32_t CFStringEncoding;
typedef CFIndex CFURLPathStyle;
typedef const void* CFTypeRef;
typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct __CFArray* CFArrayRef;
typedef struct __CFBundle* CFBundleRef;
typedef const struct __CFString* CFStringRef;
typedef const struct __CFURL* CFURLRef;

enum { kCFStringEncodingUTF8 = 0x08000100 };
enum { kCFURLPOSIXPathStyle = 0 };
extern const CFAllocatorRef kCFAllocatorDefault;

CFIndex CFArrayGetCount(CFArrayRef array);
const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);
CFBundleRef CFBundleCreate(CFAllocatorRef allocator, CFURLRef url);
CFBundleRef CFBundleGetMainBundle(void);
CFURLRef CFBundleCopyBundleURL(CFBundleRef bundle);
CFURLRef CFBundleCopyResourcesDirectoryURL(CFBundleRef bundle);
CFArrayRef CFLocaleCopyPreferredLanguages(void);
CFStringRef CFURLGetString(CFURLRef url);
CFURLRef CFURLCreateCopyAppendingPathComponent(CFAllocatorRef allocator, CFURLRef url,
                                               CFStringRef component, Boolean isDirectory);
CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text,
                                      CFStringEncoding encoding);
CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle style);
CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator, const UInt8* path,
                                                 CFIndex length, Boolean isDirectory);
Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex capacity,
                           CFStringEncoding encoding);
Boolean CFStringGetFileSystemRepresentation(CFStringRef string, char* buffer, CFIndex capacity);
void CFRelease(CFTypeRef object);
/* NOLINTEND(bugprone-reserved-identifier, readability-identifier-naming) */

#ifdef __cplusplus
}
#endif

#endif
