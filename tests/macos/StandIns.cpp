// Stands in for what only macOS has: CoreFoundation, over folders of this machine; CommonCrypto, over
// Nettle; access lists, which no file here has. Takes no memory from operator new, which is the
// program's own and which some tests make fail.
#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <string_view>
#include <sys/acl.h>
#include <sys/stat.h>

#include <CommonCrypto/CommonDigest.h>
#include <CoreFoundation/CoreFoundation.h>

#include "platform/Sha256.h"
#include "tests/macos/Loader.h"

namespace {

// An object is its text; that of a bundle is its folder's path, and that of an array is its only
// element.
template <typename Object>
Object New(std::string_view text, std::string_view more = "") {
    auto* const copy = static_cast<char*>(std::malloc(text.size() + more.size() + 1));
    *std::copy(more.begin(), more.end(), std::copy(text.begin(), text.end(), copy)) = '\0';
    return reinterpret_cast<Object>(copy);
}

std::string_view Text(CFTypeRef object) {
    return static_cast<const char*>(object);
}

bool EndsWith(std::string_view text, std::string_view ending) {
    return text.size() >= ending.size() && text.substr(text.size() - ending.size()) == ending;
}

bool HasFolder(CFTypeRef object, std::string_view name) {
    const auto* const path = New<CFURLRef>(Text(object), name);
    struct stat status = {};
    const bool isFolder = stat(Text(path).data(), &status) == 0 && S_ISDIR(status.st_mode);
    CFRelease(path);
    return isFolder;
}

}  // namespace

const CFAllocatorRef kCFAllocatorDefault = nullptr;

CFArrayRef CFLocaleCopyPreferredLanguages() {
    return New<CFArrayRef>("de-AT");
}

CFIndex CFArrayGetCount(CFArrayRef /*array*/) {
    return 1;
}

const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex /*index*/) {
    return array;
}

Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex capacity,
                           CFStringEncoding /*encoding*/) {
    return CFStringGetFileSystemRepresentation(string, buffer, capacity);
}

CFBundleRef CFBundleCreate(CFAllocatorRef /*allocator*/, CFURLRef url) {
    return HasFolder(url, "") ? New<CFBundleRef>(Text(url)) : nullptr;
}

CFBundleRef CFBundleGetMainBundle() {
    static auto* const bundle = [] {
        constexpr std::string_view kFolder = "/Contents/MacOS";
        std::string_view folder = gProgramPath;
        folder = folder.substr(0, folder.rfind('/'));
        return New<CFBundleRef>(
            folder.substr(0, folder.size() - (EndsWith(folder, kFolder) ? kFolder.size() : 0)));
    }();
    return bundle;
}

CFURLRef CFBundleCopyBundleURL(CFBundleRef bundle) {
    return New<CFURLRef>(Text(bundle));
}

// Relative to the bundle, unless that is its own folder of resources.
CFURLRef CFBundleCopyResourcesDirectoryURL(CFBundleRef bundle) {
    if (HasFolder(bundle, "/Contents")) {
        return New<CFURLRef>("Contents/Resources/");
    }
    return HasFolder(bundle, "/Resources") ? New<CFURLRef>("Resources/")
                                           : New<CFURLRef>("file://", Text(bundle));
}

CFStringRef CFURLGetString(CFURLRef url) {
    return reinterpret_cast<CFStringRef>(url);
}

CFURLRef CFURLCreateCopyAppendingPathComponent(CFAllocatorRef /*allocator*/, CFURLRef url,
                                               CFStringRef component, Boolean /*isDirectory*/) {
    const auto* const folder = New<CFURLRef>(Text(url), EndsWith(Text(url), "/") ? "" : "/");
    const std::string_view name = Text(component);
    const auto* const path =
        New<CFURLRef>(Text(folder), name.substr(name.substr(0, 1) == "/" ? 1 : 0));
    CFRelease(folder);
    return path;
}

CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef /*allocator*/, const UInt8* path,
                                                 CFIndex length, Boolean /*isDirectory*/) {
    return New<CFURLRef>({reinterpret_cast<const char*>(path), static_cast<std::size_t>(length)});
}

CFStringRef CFStringCreateWithCString(CFAllocatorRef /*allocator*/, const char* text,
                                      CFStringEncoding /*encoding*/) {
    return New<CFStringRef>(text);
}

CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle /*style*/) {
    const std::string_view path = Text(url);
    return New<CFStringRef>(path.substr(0, path.size() - (EndsWith(path, "/") ? 1 : 0)));
}

Boolean CFStringGetFileSystemRepresentation(CFStringRef string, char* buffer, CFIndex capacity) {
    const std::string_view path = Text(string);
    const auto size = static_cast<std::size_t>(capacity);
    std::copy_n(path.data(), std::min(path.size() + 1, size), buffer);  // with its NUL, if it fits
    return static_cast<Boolean>(path.size() < size);
}

void CFRelease(CFTypeRef object) {
    std::free(const_cast<void*>(object));
}

unsigned char* CC_SHA256(const void* data, CC_LONG length, unsigned char* digest) {
    Sha256({static_cast<const char*>(data), length},
           *reinterpret_cast<std::uint8_t(*)[kSha256Digest]>(digest));
    return digest;
}

acl_t acl_get_file(const char* /*path*/, acl_type_t /*type*/) {
    errno = ENOENT;
    return nullptr;
}
acl_t acl_init(int /*count*/) {
    return static_cast<acl_t>(std::malloc(1));
}
int acl_set_fd(int /*file*/, acl_t /*list*/) {
    return 0;
}
int acl_free(void* list) {
    std::free(list);
    return 0;
}
