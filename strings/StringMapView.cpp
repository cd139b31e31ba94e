#include "strings/StringMapView.h"

KorStringMap::Texts StringMapView::TextsOf(const StringMap::Entry& entry) noexcept {
    const std::string_view key = entry.Key();
    const std::string_view value = entry.Value();
    return {key.data(), key.size(), value.data(), value.size()};
}

std::size_t StringMapView::Count() const noexcept {
    return m_map.Size();
}

bool StringMapView::FindTexts(const char* key, std::size_t length, Texts* texts) const noexcept {
    const StringMap::Entry* const entry = m_map.Find({key, length});
    if (entry == nullptr) {
        return false;
    }
    *texts = TextsOf(*entry);
    return true;
}

std::size_t StringMapView::LowerRank(const char* key, std::size_t length) const {
    return static_cast<std::size_t>(m_map.LowerBound({key, length}) - m_map.begin());
}

KorStringMap::Texts StringMapView::TextsAt(std::size_t rank) const noexcept {
    return TextsOf(*m_map.begin()[rank]);
}
