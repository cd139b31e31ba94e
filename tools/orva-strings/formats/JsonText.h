#ifndef ORVALANGUAGE_TOOLS_FORMATS_JSONTEXT_H
#define ORVALANGUAGE_TOOLS_FORMATS_JSONTEXT_H

#include <nlohmann/json_fwd.hpp>
#include <ostream>

// Writes a document whose texts may hold any bytes.
void WriteJsonText(const nlohmann::ordered_json& document, std::ostream& out);

#endif
