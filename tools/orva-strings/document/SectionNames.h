#ifndef ORVALANGUAGE_TOOLS_DOCUMENT_SECTIONNAMES_H
#define ORVALANGUAGE_TOOLS_DOCUMENT_SECTIONNAMES_H

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_set>

// What the library compares of a section's name: up to a NUL, where what a host requests ends. It does
// so without the case of ASCII letters.
std::string_view ComparedName(std::string_view name);

// The names of a file's sections, in the order of the file. A load takes the first section whose
// name is the requested one, so others of that name can't be reached. Nor can one without a name,
// unless it is the first: a request without a name is for the first section.
class SectionNames {
public:
    // Adds the name of the next section. Returns whether a load can reach that section.
    bool Add(std::string_view name);

private:
    struct Hash {
        std::size_t operator()(const std::string& name) const;
    };
    struct Equal {
        bool operator()(const std::string& a, const std::string& b) const;
    };
    std::unordered_set<std::string, Hash, Equal> m_names;
};

#endif
