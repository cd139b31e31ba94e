// Constants for keys, in a host's language.
#ifndef ORVALANGUAGE_TOOLS_HOSTS_CONSTANTS_H
#define ORVALANGUAGE_TOOLS_HOSTS_CONSTANTS_H

#include <string>
#include <string_view>
#include <vector>

#include "tools/orva-strings/cli/Finding.h"
#include "tools/orva-strings/hosts/HostKeys.h"

enum class HostLanguage { kC, kCpp, kSwift };

struct ConstantsStyle {
    HostLanguage language;
    // A namespace in C++ (perhaps "a::b"), an enumeration in Swift. In C, where macros have no scope,
    // what each name begins with, before an underscore.
    std::string scope;
};

// The scope unless a host chooses another.
const char* DefaultScope(HostLanguage language);

// Whether the language allows this name for a scope.
bool IsScope(const ConstantsStyle& style);

// A key with each ASCII character that can't be in a name replaced by an underscore.
std::string NameInScope(std::string_view key);

// Finds the keys without a constant, which are errors: those that make no name, a reserved one, a
// macro's, or that of another key. The first of those whose constant has another name are notes.
Findings CheckConstants(const std::vector<HostKey>& keys, const ConstantsStyle& style);

// The file that defines the constants; the source is the name of the strings file. CheckConstants must
// have found no error.
std::string ConstantsFile(const std::vector<HostKey>& keys, const ConstantsStyle& style,
                          std::string_view source);

// Whether a file begins as one that ConstantsFile has made.
bool IsConstantsFile(std::string_view bytes);

#endif
