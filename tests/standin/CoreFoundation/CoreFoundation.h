// The few names of CoreFoundation that are used here, so that the macOS sources compile without
// CoreFoundation. CoreFoundationStandIn.h describes what the calls do.
#ifndef ORVALANGUAGE_TESTS_STANDIN_COREFOUNDATION_H
#define ORVALANGUAGE_TESTS_STANDIN_COREFOUNDATION_H

#include <cstdint>

// NOLINTBEGIN(bugprone-reserved-identifier, readability-identifier-naming): the system's own names
extern "C" {

using Boolean = unsigned char;
using UInt8 = unsigned char;
using CFIndex = long;
using CFStringEncoding = std::uint32_t;
using CFURLPathStyle = CFIndex;
using CFTypeRef = const void*;
using CFAllocatorRef = const struct __CFAllocator*;
using CFBundleRef = struct __CFBundle*;
using CFStringRef = const struct __CFString*;
using CFURLRef = const struct __CFURL*;

constexpr CFStringEncoding kCFStringEncodingUTF8 = 0x08000100;
constexpr CFURLPathStyle kCFURLPOSIXPathStyle = 0;
extern const CFAllocatorRef kCFAllocatorDefault;

CFBundleRef CFBundleCreate(CFAllocatorRef allocator, CFURLRef url);
CFBundleRef CFBundleGetMainBundle();
CFURLRef CFBundleCopyBundleURL(CFBundleRef bundle);
CFURLRef CFBundleCopyResourcesDirectoryURL(CFBundleRef bundle);
CFStringRef CFURLGetString(CFURLRef url);
CFURLRef CFURLCreateCopyAppendingPathComponent(CFAllocatorRef allocator, CFURLRef url,
                                               CFStringRef component, Boolean isDirectory);
CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text,
                                      CFStringEncoding encoding);
CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle style);
CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator, const UInt8* path,
                                                 CFIndex length, Boolean isDirectory);
Boolean CFStringGetFileSystemRepresentation(CFStringRef string, char* buffer, CFIndex capacity);
void CFRelease(CFTypeRef object);
}
// NOLINTEND(bugprone-reserved-identifier, readability-identifier-naming)

#endif
