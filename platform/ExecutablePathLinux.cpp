#include <algorithm>
#include <string>
#include <string_view>
#include <system_error>

#include "platform/ExecutablePath.h"

namespace fs = std::filesystem;

fs::path ExecutablePath() {
    // The system adds this ending if the file was replaced or removed, as by an upgrade.
    constexpr std::string_view kDeletedEnding = " (deleted)";
    std::error_code error;
    std::string name = fs::read_symlink("/proc/self/exe", error).string();  // empty after an error
    const std::size_t length = name.size() - std::min(name.size(), kDeletedEnding.size());
    if (name.substr(length) == kDeletedEnding && !fs::exists(name, error)) {
        name.resize(length);
    }
    return name;
}
