#include "tools/orva-strings/cli/Json.h"

#include <nlohmann/json.hpp>

std::string JsonText(std::string_view text) {
    return nlohmann::json(text).dump(-1, ' ', true, nlohmann::json::error_handler_t::replace);
}
