#include "tools/orva-strings/commands/OwnOutput.h"

#include <filesystem>
#include <stdexcept>

#include "tools/orva-strings/system/Files.h"

std::optional<std::string> ReadOwnOutput(const std::string& path, const std::string& command,
                                         const std::function<bool(const std::string&)>& isOwn) {
    const std::filesystem::file_status status = StatusOf(path);
    if (!exists(status)) {
        return std::nullopt;
    }
    if (!is_regular_file(status)) {  // to read a pipe would never end
        throw std::runtime_error(path + ": only a regular file can be replaced");
    }
    std::string old = ReadFile(path);
    if (!old.empty() && !isOwn(old)) {
        throw std::runtime_error(path + ": not replaced, since 'orva-strings " + command +
                                 "' has not written it");
    }
    return old;
}
