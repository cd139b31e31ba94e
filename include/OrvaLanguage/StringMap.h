// The library's table of texts, from key to value.
#ifndef ORVALANGUAGE_STRINGMAP_H
#define ORVALANGUAGE_STRINGMAP_H

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string_view>
#include <vector>

// Keys and values are byte strings of any content. A key is there once: its first value stays. An
// entry never moves, so its texts are valid until the map is cleared or destroyed.
//
// Any number of threads may read a map at once; none may while another changes it.
//
// Built for the look-up, which is most of what is ever done with it: one hash leads to the entry,
// whose key and value lie side by side in one block of memory. The order of the keys is made when
// somebody walks them.
class StringMap {
public:
    // One key with its value. Both texts are NUL-terminated, and may hold NUL bytes of their own.
    class Entry {
    public:
        std::string_view Key() const noexcept { return {Texts(), m_nKeyLength}; }
        std::string_view Value() const noexcept {
            return {Texts() + m_nKeyLength + 1, m_nValueLength};
        }

    private:
        friend class StringMap;
        Entry(std::size_t keyLength, std::size_t valueLength) noexcept
            : m_nKeyLength(keyLength), m_nValueLength(valueLength) {}

        // The texts follow the entry in its block: key, NUL, value, NUL.
        const char* Texts() const noexcept { return reinterpret_cast<const char*>(this + 1); }

        std::size_t m_nKeyLength;
        std::size_t m_nValueLength;
    };

    constexpr StringMap() noexcept = default;
    StringMap(const StringMap&) = delete;
    StringMap& operator=(const StringMap&) = delete;

    std::size_t Size() const noexcept { return m_nSize; }

    // The entry of exactly this key, or null.
    const Entry* Find(std::string_view key) const noexcept {
        if (m_nSize == 0) {
            return nullptr;
        }
        return SlotOf(key, Hash(key)).pEntry;
    }

    // Every entry, its key ordered by unsigned bytes, a prefix before what it begins. It costs a
    // sort at each call. Throws std::bad_alloc if memory runs out.
    std::vector<const Entry*> Ordered() const {
        std::vector<const Entry*> entries;
        entries.reserve(m_nSize);
        for (std::size_t i = 0; i < m_nSlots; ++i) {
            if (m_pSlots[i].pEntry != nullptr) {
                entries.push_back(m_pSlots[i].pEntry);
            }
        }
        std::sort(entries.begin(), entries.end(),
                  [](const Entry* a, const Entry* b) { return a->Key() < b->Key(); });
        return entries;
    }

    // What follows is for the library alone: none of it is exported, so a host can neither change a
    // map nor make one of its own.

    ~StringMap();

    // Adds an entry with copies of both texts. Returns false, and changes nothing, if the key is
    // there already. Throws std::bad_alloc if memory runs out, and then the entries are as before.
    bool Insert(std::string_view key, std::string_view value);

    // Removes every entry and gives its memory back.
    void Clear() noexcept;

private:
    struct Slot {
        std::size_t nHash;
        Entry* pEntry;  // null: the slot is free
    };

    static std::size_t Hash(std::string_view key) noexcept {
        return std::hash<std::string_view>()(key);
    }

    // The slot that holds the key, or the free one where it would go. There must be a free slot.
    Slot& SlotOf(std::string_view key, std::size_t hash) const noexcept {
        const std::size_t mask = m_nSlots - 1;
        std::size_t i = hash & mask;
        while (m_pSlots[i].pEntry != nullptr &&
               (m_pSlots[i].nHash != hash || m_pSlots[i].pEntry->Key() != key)) {
            i = (i + 1) & mask;
        }
        return m_pSlots[i];
    }

    void Grow();

    Slot* m_pSlots = nullptr;  // open addressing, with the next slot tried after a collision
    std::size_t m_nSlots = 0;  // a power of two, or 0
    std::size_t m_nSize = 0;
};

#endif
