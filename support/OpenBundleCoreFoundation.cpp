#include <CoreFoundation/CoreFoundation.h>

#include "support/OpenBundle.h"

__CFBundle* OpenBundle(const std::filesystem::path& folder) {
    const std::string path = folder.string();
    const CFURLRef url = CFURLCreateFromFileSystemRepresentation(
        kCFAllocatorDefault, reinterpret_cast<const UInt8*>(path.data()),
        static_cast<CFIndex>(path.size()), true);
    if (url == nullptr) {
        return nullptr;
    }
    __CFBundle* const bundle = CFBundleCreate(kCFAllocatorDefault, url);
    CFRelease(url);
    return bundle;
}

void CloseBundle(__CFBundle* bundle) {
    if (bundle != nullptr) {
        CFRelease(bundle);
    }
}
