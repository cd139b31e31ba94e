#include "tools/orva-strings/commands/OwnOutput.h"

#include <filesystem>
#include <stdexcept>
#include <system_error>

#include "tools/orva-strings/system/Files.h"

namespace fs = std::filesystem;

std::optional<std::string> ReadOwnOutput(const std::string& path, const std::string& command,
                                         const std::function<bool(const std::string&)>& isOwn) {
    if (!fs::exists(path)) {
        return std::nullopt;
    }
    if (!fs::is_regular_file(path)) {  // to read a pipe would never end
        throw std::runtime_error(path + ": only a regular file can be replaced");
    }
    std::string old = ReadFile(path);
    if (!old.empty() && !isOwn(old)) {
        throw std::runtime_error(path + ": not replaced, since 'orva-strings " + command +
                                 "' has not written it");
    }
    return old;
}
