#include <cstring>

#include <CoreFoundation/CoreFoundation.h>

#include "platform/ResourcePath.h"

namespace {

// An owned CoreFoundation object, or null; released at the end of its scope.
template <typename Ref>
class Owned {
public:
    explicit Owned(Ref ref) noexcept : m_ref(ref) {}
    ~Owned() {
        if (m_ref != nullptr) {
            CFRelease(m_ref);
        }
    }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;

    Ref Get() const noexcept { return m_ref; }
    explicit operator bool() const noexcept { return m_ref != nullptr; }

private:
    Ref m_ref;
};

// CoreFoundation crashes on a null argument, so this stops before a call that would get one. In
// practice only the name string is ever null, for a file name that is not UTF-8.
void WritePath(CFURLRef bundleURL, CFURLRef resourcesURL, const char* fileName,
               char (&path)[kResourcePathCapacity]) {
    // Relative to the bundle's URL: the path from the bundle to its resources.
    const CFStringRef resources = CFURLGetString(resourcesURL);
    if (resources == nullptr) {
        return;
    }
    const Owned folderURL(
        CFURLCreateCopyAppendingPathComponent(kCFAllocatorDefault, bundleURL, resources, false));
    const Owned name(
        CFStringCreateWithCString(kCFAllocatorDefault, fileName, kCFStringEncodingUTF8));
    if (!folderURL || !name) {
        return;
    }
    const Owned fileURL(CFURLCreateCopyAppendingPathComponent(kCFAllocatorDefault, folderURL.Get(),
                                                              name.Get(), false));
    if (!fileURL) {
        return;
    }
    const Owned pathString(CFURLCopyFileSystemPath(fileURL.Get(), kCFURLPOSIXPathStyle));
    if (!pathString) {
        return;
    }
    // The result is ignored: the buffer decides. Filled to its end without a NUL, it holds no
    // usable path.
    CFStringGetFileSystemRepresentation(pathString.Get(), path, kResourcePathCapacity);
    if (std::memchr(path, '\0', kResourcePathCapacity) == nullptr) {
        path[0] = '\0';
    }
}

}  // namespace

void GetResourcePath(__CFBundle* bundle, const char* fileName,
                     char (&path)[kResourcePathCapacity]) {
    if (bundle == nullptr) {
        bundle = CFBundleGetMainBundle();
    }
    if (bundle == nullptr) {
        return;
    }
    // Always get both, and release the first one first. That is why no Owned holds them.
    const CFURLRef bundleURL = CFBundleCopyBundleURL(bundle);
    const CFURLRef resourcesURL = CFBundleCopyResourcesDirectoryURL(bundle);
    if (bundleURL != nullptr && resourcesURL != nullptr) {
        WritePath(bundleURL, resourcesURL, fileName, path);
    }
    if (bundleURL != nullptr) {
        CFRelease(bundleURL);
    }
    if (resourcesURL != nullptr) {
        CFRelease(resourcesURL);
    }
}
