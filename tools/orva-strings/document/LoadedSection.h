// A section of a strings file as the library loads it, and what it then answers.
#ifndef ORVALANGUAGE_TOOLS_DOCUMENT_LOADEDSECTION_H
#define ORVALANGUAGE_TOOLS_DOCUMENT_LOADEDSECTION_H

#include <optional>
#include <string>
#include <string_view>

#include "protection/ProtectedForm.h"
#include "tools/orva-strings/document/StringsReader.h"

// Loads a section of these bytes through the library, from a nameless copy, as the first load of a
// host. "" is for the first section; any other must exist, since the library would read the copy
// twice. The reader is at the header of that section.
//
// Throws std::runtime_error if the library has not loaded the whole section.
void LoadSection(std::string_view bytes, const std::string& language, const StringsReader& section);

// What a host gets for a key from the section loaded; nothing if the library answers null. A NUL
// byte must follow the key. Protected texts are decoded with these keys; if they are the library's
// own, by the library.
//
// Throws std::runtime_error if a text is not what is stored: a lookup that runs out of memory does
// not say so, and answers null or an empty text.
std::optional<std::string> AnswerFor(std::string_view key, const ProtectionKeys& keys,
                                     bool isOwnKey);

#endif
