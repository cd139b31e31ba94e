#ifndef ORVALANGUAGE_STRINGS_STRINGMAPVIEW_H
#define ORVALANGUAGE_STRINGS_STRINGMAPVIEW_H

#include <OrvaLanguage/KorStringMap.h>

#include "strings/StringMap.h"

// A map as a host sees it. The map must outlive it.
class StringMapView final : public KorStringMap {
public:
    explicit constexpr StringMapView(const StringMap& map) noexcept : m_map(map) {}

private:
    static Texts TextsOf(const StringMap::Entry& entry) noexcept;

    std::size_t Count() const noexcept override;
    bool FindTexts(const char* key, std::size_t length, Texts* texts) const noexcept override;
    std::size_t LowerRank(const char* key, std::size_t length) const override;
    Texts TextsAt(std::size_t rank) const noexcept override;

    const StringMap& m_map;
};

#endif
