#include "tests/standin/CoreFoundationStandIn.h"

#include <algorithm>
#include <cstring>
#include <sstream>

#include <gtest/gtest.h>

// An object is just its name. NOLINTBEGIN(bugprone-reserved-identifier): the system's own names
struct __CFAllocator {
    const char* name;
};
struct __CFArray {
    const char* name;
};
struct __CFBundle {
    const char* name;
};
struct __CFString {
    const char* name;
};
struct __CFURL {
    const char* name;
};
// NOLINTEND(bugprone-reserved-identifier)

namespace {

CoreFoundationStandIn* gStandIn = nullptr;

__CFBundle gMainBundle = {"main bundle"};
__CFBundle gGivenBundle = {"given bundle"};
__CFBundle gCreatedBundle = {"created bundle"};
const __CFAllocator gDefaultAllocator = {"default allocator"};
const __CFArray gLanguages = {"languages"};
const __CFURL gBundleURL = {"bundle URL"};
const __CFURL gResourcesURL = {"resources URL"};
const __CFURL gFolderURL = {"folder URL"};
const __CFURL gFileURL = {"file URL"};
const __CFURL gPathURL = {"path URL"};
const __CFString gResourcesText = {"resources text"};
const __CFString gNameString = {"name string"};
const __CFString gPathString = {"path string"};

template <typename Object>
std::string Name(const Object* object) {
    if (object == nullptr) {
        ADD_FAILURE() << "a null argument, where CoreFoundation would crash";
        return "null";
    }
    return object->name;
}

// Returns the object, or null if the test asked for that.
template <typename Object>
Object* Answer(Object* object, bool isOwned) {
    if (gStandIn->nullObject == object->name) {
        return nullptr;
    }
    if (isOwned) {
        gStandIn->owned.emplace_back(object->name);
    }
    return object;
}

template <typename... Arguments>
void Record(const char* function, const Arguments&... arguments) {
    std::ostringstream call;
    call << function << '(';
    [[maybe_unused]] const char* separator = "";
    ((call << separator << arguments, separator = ", "), ...);
    call << ')';
    gStandIn->calls.push_back(call.str());
}

}  // namespace

CoreFoundationStandIn::CoreFoundationStandIn() {
    gStandIn = this;
}
CoreFoundationStandIn::~CoreFoundationStandIn() {
    gStandIn = nullptr;
}

CFBundleRef GivenBundle() {
    return &gGivenBundle;
}

const CFAllocatorRef kCFAllocatorDefault = &gDefaultAllocator;

CFArrayRef CFLocaleCopyPreferredLanguages() {
    Record("CFLocaleCopyPreferredLanguages");
    return Answer(&gLanguages, true);
}

CFIndex CFArrayGetCount(CFArrayRef array) {
    Record("CFArrayGetCount", Name(array));
    return static_cast<CFIndex>(gStandIn->languages.size());
}

// The texts, which are no objects of this stand-in.
const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index) {
    Record("CFArrayGetValueAtIndex", Name(array), index);
    return &gStandIn->languages.at(static_cast<std::size_t>(index));
}

Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex capacity,
                           CFStringEncoding encoding) {
    const std::string& text = *reinterpret_cast<const std::string*>(string);
    Record("CFStringGetCString", text, "buffer", capacity, encoding);
    const auto size = static_cast<std::size_t>(capacity);
    if (text.size() >= size) {
        return false;
    }
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return true;
}

CFBundleRef CFBundleCreate(CFAllocatorRef allocator, CFURLRef url) {
    Record("CFBundleCreate", Name(allocator), Name(url));
    return Answer(&gCreatedBundle, true);
}

CFBundleRef CFBundleGetMainBundle() {
    Record("CFBundleGetMainBundle");
    return Answer(&gMainBundle, false);
}

CFURLRef CFBundleCopyBundleURL(CFBundleRef bundle) {
    Record("CFBundleCopyBundleURL", Name(bundle));
    return Answer(&gBundleURL, true);
}

CFURLRef CFBundleCopyResourcesDirectoryURL(CFBundleRef bundle) {
    Record("CFBundleCopyResourcesDirectoryURL", Name(bundle));
    return Answer(&gResourcesURL, true);
}

CFStringRef CFURLGetString(CFURLRef url) {
    Record("CFURLGetString", Name(url));
    return Answer(&gResourcesText, false);
}

CFURLRef CFURLCreateCopyAppendingPathComponent(CFAllocatorRef allocator, CFURLRef url,
                                               CFStringRef component, Boolean isDirectory) {
    Record("CFURLCreateCopyAppendingPathComponent", Name(allocator), Name(url), Name(component),
           isDirectory != 0 ? "true" : "false");
    return Answer(url == &gBundleURL ? &gFolderURL : &gFileURL, true);
}

CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator, const UInt8* path,
                                                 CFIndex length, Boolean isDirectory) {
    Record("CFURLCreateFromFileSystemRepresentation", Name(allocator),
           std::string(reinterpret_cast<const char*>(path), static_cast<std::size_t>(length)),
           isDirectory != 0 ? "true" : "false");
    return Answer(&gPathURL, true);
}

CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text,
                                      CFStringEncoding encoding) {
    Record("CFStringCreateWithCString", Name(allocator), text, encoding);
    return Answer(&gNameString, true);
}

CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle style) {
    Record("CFURLCopyFileSystemPath", Name(url), style);
    return Answer(&gPathString, true);
}

Boolean CFStringGetFileSystemRepresentation(CFStringRef string, char* buffer, CFIndex capacity) {
    Record("CFStringGetFileSystemRepresentation", Name(string), "buffer", capacity);
    const auto size = static_cast<std::size_t>(capacity);
    EXPECT_EQ(std::count(buffer, buffer + size, '\0'), capacity) << "the buffer is not zeroed";
    std::memcpy(buffer, gStandIn->path.c_str(), std::min(size, gStandIn->path.size() + 1));
    return gStandIn->conversionResult;
}

void CFRelease(CFTypeRef object) {
    // Every object begins with its name.
    const std::string name = Name(static_cast<const __CFString*>(object));
    Record("CFRelease", name);
    auto& owned = gStandIn->owned;
    const auto found = std::find(owned.begin(), owned.end(), name);
    if (found == owned.end()) {
        ADD_FAILURE() << "the release of what is not owned: " << name;
        return;
    }
    owned.erase(found);
}
