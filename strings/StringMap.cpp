#include <cstring>
#include <new>

#include <OrvaLanguage/StringMap.h>

namespace {

constexpr std::size_t kFirstSlots = 64;

// Copies a text and its NUL to the place given and returns the place behind it.
char* CopyText(char* to, std::string_view text) noexcept {
    if (!text.empty()) {
        std::memcpy(to, text.data(), text.size());
    }
    to[text.size()] = '\0';
    return to + text.size() + 1;
}

}  // namespace

StringMap::~StringMap() {
    Clear();
}

bool StringMap::Insert(std::string_view key, std::string_view value) {
    // A quarter of the slots stays free, so that a search is short and always ends.
    if ((m_nSize + 1) > m_nSlots / 4 * 3) {
        Grow();
    }
    const std::size_t hash = Hash(key);
    Slot& slot = SlotOf(key, hash);
    if (slot.pEntry != nullptr) {
        return false;
    }
    void* const block = ::operator new(sizeof(Entry) + key.size() + value.size() + 2);
    slot.pEntry = new (block) Entry(key.size(), value.size());
    slot.nHash = hash;
    CopyText(CopyText(reinterpret_cast<char*>(slot.pEntry + 1), key), value);
    ++m_nSize;
    return true;
}

void StringMap::Clear() noexcept {
    for (std::size_t i = 0; i < m_nSlots; ++i) {
        ::operator delete(m_pSlots[i].pEntry);
    }
    delete[] m_pSlots;
    m_pSlots = nullptr;
    m_nSlots = 0;
    m_nSize = 0;
}

void StringMap::Grow() {
    Slot* const oldSlots = m_pSlots;
    const std::size_t oldCount = m_nSlots;
    const std::size_t newCount = oldCount == 0 ? kFirstSlots : oldCount * 2;
    m_pSlots = new Slot[newCount]();
    m_nSlots = newCount;
    for (std::size_t i = 0; i < oldCount; ++i) {
        if (oldSlots[i].pEntry != nullptr) {
            SlotOf(oldSlots[i].pEntry->Key(), oldSlots[i].nHash) = oldSlots[i];
        }
    }
    delete[] oldSlots;
}
