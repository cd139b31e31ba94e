#include "tools/orva-strings/document/SectionNames.h"

#include <functional>

#include "strings/Line.h"

std::string_view ComparedName(std::string_view name) {
    return name.substr(0, name.find('\0'));
}

bool SectionNames::Add(std::string_view name) {
    const std::string requested(ComparedName(name));
    const bool isFirst = m_names.empty();
    return m_names.insert(requested).second && (isFirst || !requested.empty());
}

// Equal for equal names: letters of either case differ in one bit.
std::size_t SectionNames::Hash::operator()(const std::string& name) const {
    std::string folded = name;
    for (char& c : folded) {
        c = static_cast<char>(c | 0x20);
    }
    return std::hash<std::string>()(folded);
}

bool SectionNames::Equal::operator()(const std::string& a, const std::string& b) const {
    return IsName(a, b.c_str());
}
