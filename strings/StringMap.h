#ifndef ORVALANGUAGE_STRINGS_STRINGMAP_H
#define ORVALANGUAGE_STRINGS_STRINGMAP_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <string_view>
#include <vector>

// The library's own map from key to value; a host sees it as a KorStringMap. Keys and values are
// byte strings of any content. Keys are unique, and the first value stays. An entry never moves, so
// its texts are valid until the map is cleared or destroyed.
//
// Any number of threads may read a map at once, but not while one changes it.
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

        // The texts follow the entry in memory: key, NUL, value, NUL.
        const char* Texts() const noexcept { return reinterpret_cast<const char*>(this + 1); }

        std::size_t m_nKeyLength;
        std::size_t m_nValueLength;
    };

    StringMap() noexcept = default;
    ~StringMap();
    StringMap(const StringMap&) = delete;
    StringMap& operator=(const StringMap&) = delete;

    std::size_t Size() const noexcept { return m_nSize; }

    // The entry with exactly this key, or null.
    const Entry* Find(std::string_view key) const noexcept { return m_index.Find(key, Hash(key)); }

    // All entries in key order: by unsigned bytes, a prefix first. The first call after a change
    // sorts them and throws std::bad_alloc if memory runs out; the order is kept until the next
    // change.
    const Entry* const* begin() const { return Ordered(); }
    const Entry* const* end() const { return Ordered() + m_nSize; }

    // The first entry in that order whose key is not less than this one, or end().
    const Entry* const* LowerBound(std::string_view key) const;

    // Adds an entry with copies of both texts. Returns false, and changes nothing, if the key is
    // present already. If it throws std::bad_alloc, the entries are unchanged; memory already
    // obtained may be kept.
    bool Insert(std::string_view key, std::string_view value);

    // Removes every entry and frees its memory.
    void Clear() noexcept;

    // Consumes 16 bytes at a time; the tail overlaps bytes already read, so keys of 17 to 32 bytes,
    // as most are, take the same predictable path. std::hash branches on each byte of the tail and
    // mispredicts at most lookups. Not keyed: an attacker can make colliding keys; Index bounds the
    // cost.
    static std::size_t Hash(std::string_view key) noexcept {
        // Any odd constants with about half their bits set.
        constexpr std::uint64_t kFirst = 0x9E3779B97F4A7C15;
        constexpr std::uint64_t kSecond = 0xD1B54A32D192ED03;
        const char* text = key.data();
        const char* const end = text + key.size();
        std::uint64_t hash = kSecond * key.size();
        if (key.size() > 16) {
            for (; end - text > 16; text += 16) {
                hash =
                    Fold(Read<std::uint64_t>(text) ^ kFirst, Read<std::uint64_t>(text + 8) ^ hash);
            }
            text = end - 16;
        }
        std::uint64_t front = 0;
        std::uint64_t back = 0;
        if (end - text >= 8) {
            front = Read<std::uint64_t>(text);
            back = Read<std::uint64_t>(end - 8);
        } else if (end - text >= 4) {
            front = Read<std::uint32_t>(text);
            back = Read<std::uint32_t>(end - 4);
        } else {
            for (; text != end; ++text) {
                front = front << 8U | static_cast<unsigned char>(*text);
            }
        }
        return Fold(front ^ kFirst, back ^ hash);
    }

private:
    // Built for lookups, by far the most frequent operation: one hash leads to the entry, whose
    // texts are side by side. The key order is made only for a walk. A tree would always keep it,
    // at some fifteen comparisons per lookup.
    class Index {
    public:
        Index() noexcept = default;

        // slots must be a power of two. Throws std::bad_alloc.
        explicit Index(std::size_t slots);

        const Entry* Find(std::string_view key, std::size_t hash) const noexcept {
            for (std::size_t i = 0; i < kMaxProbes && m_nSlots != 0; ++i) {
                const Slot& slot = m_slots[(hash + i) & (m_nSlots - 1)];
                if (slot.pEntry == nullptr) {
                    return nullptr;
                }
                if (slot.nHash == hash && slot.pEntry->Key() == key) {
                    return slot.pEntry;
                }
            }
            const auto found = m_overflow.find(key);
            return found == m_overflow.end() ? nullptr : found->second;
        }

        // Calls visit for every entry, with the entry and its hash.
        template <typename Visit>
        void ForEach(const Visit& visit) const {
            for (std::size_t i = 0; i < m_nSlots; ++i) {
                if (m_slots[i].pEntry != nullptr) {
                    visit(m_slots[i].pEntry, m_slots[i].nHash);
                }
            }
            for (const auto& item : m_overflow) {
                visit(item.second, Hash(item.first));
            }
        }

        // Adds an entry whose key is absent. If it throws std::bad_alloc, nothing was added.
        void Add(const Entry* entry, std::size_t hash);

        std::size_t Slots() const noexcept { return m_nSlots; }

    private:
        struct Slot {
            std::size_t nHash;
            const Entry* pEntry;  // null: the slot is free
        };

        // Linear probing from the hash's slot. After kMaxProbes full slots, which a good hash hardly
        // ever meets, the entry goes to an ordered map, so that colliding keys cannot make a load
        // quadratic.
        static constexpr std::size_t kMaxProbes = 64;

        std::unique_ptr<Slot[]> m_slots;
        std::size_t m_nSlots = 0;  // a power of two, or 0
        std::map<std::string_view, const Entry*> m_overflow;
    };

    // Holds the entries, in blocks that are filled one after the other and freed as a whole; a
    // large entry has a block of its own. Allocating and freeing each entry would be a good part of
    // a load and of a host's exit.
    class Memory {
    public:
        // Returns size bytes, aligned for an entry. Throws std::bad_alloc.
        void* Take(std::size_t size);

    private:
        char* AddBlock(std::size_t size);

        std::vector<std::unique_ptr<char[]>> m_blocks;
        std::size_t m_nLastBlock = 0;  // size of the last shared block
        char* m_pFree = nullptr;       // its next free byte
        std::size_t m_nFree = 0;       // bytes left there
    };

    template <typename Integer>
    static Integer Read(const char* bytes) noexcept {
        Integer value = 0;
        std::memcpy(&value, bytes, sizeof value);
        return value;
    }

    // XORs both halves of the product, so that no bit of a factor is lost.
    static std::uint64_t Fold(std::uint64_t a, std::uint64_t b) noexcept {
        static_assert(sizeof(std::size_t) == 8, "the library is for 64-bit systems");
        __extension__ using Product = unsigned __int128;
        const Product product = static_cast<Product>(a) * b;
        return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64U);
    }

    void Grow();

    const Entry* const* Ordered() const;
    void ForgetOrder() noexcept;

    Index m_index;
    Memory m_memory;
    std::size_t m_nSize = 0;
    mutable std::atomic<const Entry**> m_pOrdered = nullptr;  // owned, or null: not sorted yet
};

#endif
