// Bundles without CoreFoundation: folders laid out like one.
#include <cstring>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include <OrvaLanguage/OrvaLanguage.h>

#include "platform/ExecutablePath.h"
#include "platform/MainBundleFolder.h"
#include "platform/ResourcePath.h"

namespace fs = std::filesystem;

struct __CFBundle {   // NOLINT(bugprone-reserved-identifier): the platform's own name
    fs::path folder;  // absolute
};

namespace {

constexpr std::string_view kFrameworkEnding = ".framework";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool StartsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

bool EndsWith(std::string_view text, std::string_view ending) {
    return text.size() >= ending.size() && text.substr(text.size() - ending.size()) == ending;
}

bool IsFolder(const fs::path& path) {
    std::error_code error;
    return fs::is_directory(path, error);
}

// The length in bytes of the UTF-8 character at text, or 0 if it is invalid: overlong, a surrogate
// or above U+10FFFF. The text's NUL makes a truncated one invalid.
std::size_t CharacterLength(const unsigned char* text) {
    if (text[0] < 0x80) {
        return 1;
    }
    constexpr unsigned char kLowest = 0x80;
    constexpr unsigned char kHighest = 0xBF;
    // The second byte's range is narrower after the lead bytes where these errors can occur.
    unsigned char lowest = kLowest;
    unsigned char highest = kHighest;
    std::size_t length = 0;  // stays 0 for a byte that begins no character
    if (text[0] >= 0xC2 && text[0] <= 0xDF) {
        length = 2;
    } else if (text[0] >= 0xE0 && text[0] <= 0xEF) {
        length = 3;
        lowest = text[0] == 0xE0 ? 0xA0 : lowest;
        highest = text[0] == 0xED ? 0x9F : highest;
    } else if (text[0] >= 0xF0 && text[0] <= 0xF4) {
        length = 4;
        lowest = text[0] == 0xF0 ? 0x90 : lowest;
        highest = text[0] == 0xF4 ? 0x8F : highest;
    }
    for (std::size_t i = 1; i < length; ++i) {
        if (text[i] < lowest || text[i] > highest) {
            return 0;
        }
        lowest = kLowest;
        highest = kHighest;
    }
    return length;
}

bool IsUtf8(const char* text) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(text);
    while (*bytes != 0) {
        const std::size_t length = CharacterLength(bytes);
        if (length == 0) {
            return false;
        }
        bytes += length;
    }
    return true;
}

fs::path ResourcesFolder(const fs::path& bundle) {
    fs::path resources = bundle / "Resources";
    if (EndsWith(bundle.native(), kFrameworkEnding) && IsFolder(resources)) {
        return resources;
    }
    if (IsFolder(bundle / "Contents")) {
        return bundle / "Contents" / "Resources";
    }
    return IsFolder(resources) ? resources : bundle;
}

}  // namespace

fs::path MainBundleFolder(const fs::path& executable) {
    fs::path folder = executable.parent_path();
    const fs::path parent = folder.parent_path();
    if (parent.filename() == "Contents") {
        return parent.parent_path();
    }
    if (folder.filename() == "bin") {
        fs::path share = parent / "share" / executable.filename();
        if (IsFolder(share)) {
            return share;
        }
    }
    return folder;
}

__CFBundle* ZuOpenBundle(const char* path) {
    if (path == nullptr || !IsFolder(path)) {
        return nullptr;
    }
    std::error_code error;
    fs::path folder = fs::absolute(path, error);
    if (!folder.has_filename()) {
        folder = folder.parent_path();  // without trailing slashes
    }
    return error ? nullptr : new __CFBundle{std::move(folder)};
}

void ZuCloseBundle(__CFBundle* bundle) {
    delete bundle;
}

void GetResourcePath(__CFBundle* bundle, const char* fileName,
                     char (&path)[kResourcePathCapacity]) {
    if (!IsUtf8(fileName)) {
        return;
    }
    const fs::path folder = bundle != nullptr ? bundle->folder : MainBundleFolder(ExecutablePath());
    if (folder.empty()) {
        return;
    }
    std::string found = ResourcesFolder(folder).string();

    // As CoreFoundation does, drop a byte-order mark, a slash before the name (an absolute name stays
    // inside the resources folder), and the slashes after it.
    std::string_view name = fileName;
    if (StartsWith(name, kByteOrderMark)) {
        name.remove_prefix(kByteOrderMark.size());
    }
    if (StartsWith(name, "/")) {
        name.remove_prefix(1);
    }
    name = name.substr(0, name.find_last_not_of('/') + 1);
    if (!name.empty()) {
        if (found.back() != '/') {
            found += '/';
        }
        found += name;
    }
    if (found.size() < kResourcePathCapacity) {
        std::memcpy(path, found.c_str(), found.size() + 1);
    }
}
