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
        std::string_view Key() const noexcept { return {Texts(), Length(0)}; }
        std::string_view Value() const noexcept { return {Texts() + Length(0) + 1, Length(1)}; }

    private:
        friend class StringMap;
        Entry(std::string_view key, std::string_view value) noexcept;

        // The bytes of an entry with these texts, a multiple of its alignment.
        static std::size_t SizeFor(std::string_view key, std::string_view value) noexcept {
            const std::size_t size = sizeof(Entry) +
                                     (AreLong(key, value) ? 2 * sizeof(std::size_t) : 0) +
                                     key.size() + value.size() + 2;
            return (size + alignof(Entry) - 1) / alignof(Entry) * alignof(Entry);
        }

        static bool AreLong(std::string_view key, std::string_view value) noexcept {
            return key.size() >= kLong || value.size() >= kLong;
        }

        bool IsLong() const noexcept { return m_nLengths[0] == kLong; }

        std::size_t Length(std::size_t which) const noexcept {
            return IsLong() ? Read<std::size_t>(Tail() + which * sizeof(std::size_t))
                            : m_nLengths[which];
        }

        const char* Texts() const noexcept {
            return IsLong() ? Tail() + 2 * sizeof(std::size_t) : Tail();
        }

        const char* Tail() const noexcept { return reinterpret_cast<const char*>(this + 1); }

        // Nearly all texts are shorter. If one is not, the first length is kLong, and both real
        // ones follow the entry in memory. Then come key, NUL, value, NUL.
        static constexpr std::uint16_t kLong = 0xFFFF;
        std::uint16_t m_nLengths[2];  // of key and value
    };

    StringMap() noexcept = default;
    ~StringMap();
    StringMap(const StringMap&) = delete;
    StringMap& operator=(const StringMap&) = delete;

    std::size_t Size() const noexcept { return m_nSize; }

    // The entry with exactly this key, or null.
    const Entry* Find(std::string_view key) const noexcept {
        return m_index.Search(key, Hash(key)).pEntry;
    }

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
    // Eight slots of the index, in one cache line.
    class alignas(64) Group {
    public:
        // The entry with this key, which has this hash, or null.
        const Entry* Find(std::string_view key, std::size_t hash) const noexcept {
            // Sets the top bit of each equal tag, and maybe of a taken slot's after it.
            const std::uint64_t difference = Tags() ^ kEveryByte * Tag(hash);
            std::uint64_t equal = (difference - kEveryByte) & ~difference & kEveryTaken;
            for (; equal != 0; equal &= equal - 1) {
                const Entry* const entry = At(static_cast<std::size_t>(__builtin_ctzll(equal)) / 8);
                if (entry->Key() == key) {
                    return entry;
                }
            }
            return nullptr;
        }

        bool HasFree() const noexcept { return (Tags() & kEveryTaken) != kEveryTaken; }

        // Whether a slot has room for the entry's address. Today's systems give no other addresses
        // to a program that does not ask for them.
        static bool CanHold(const Entry* entry) noexcept {
            return (reinterpret_cast<std::uintptr_t>(entry) & ~kAddressMask) == 0;
        }

        // Takes the first free slot.
        void Put(const Entry* entry, std::size_t hash) noexcept {
            const std::uint64_t free = ~Tags() & kEveryTaken;
            const std::size_t slot = static_cast<std::size_t>(__builtin_ctzll(free)) / 8;
            m_nTags[slot] = static_cast<std::uint8_t>(Tag(hash));
            const std::uint64_t bytes =
                (Bytes(slot) & ~kAddressMask) | reinterpret_cast<std::uintptr_t>(entry);
            std::memcpy(reinterpret_cast<char*>(m_addresses) + kAddress * slot, &bytes,
                        sizeof bytes);
        }

    private:
        static constexpr std::size_t kSlots = 8;
        static constexpr std::size_t kAddress = 7;  // bytes of an address that are kept
        static constexpr std::uint64_t kAddressMask = (std::uint64_t{1} << (8 * kAddress)) - 1;
        static constexpr std::uint64_t kEveryByte = 0x0101010101010101;
        static constexpr std::uint64_t kTaken = 0x80;
        static constexpr std::uint64_t kEveryTaken = kTaken * kEveryByte;

        // Of a taken slot: bits of the hash that do not choose the group. They tell nearly every
        // other key apart without a look at its entry. A free slot's tag is 0.
        static std::uint64_t Tag(std::size_t hash) noexcept { return kTaken | hash >> 57U; }

        std::uint64_t Tags() const noexcept {
            return Read<std::uint64_t>(reinterpret_cast<const char*>(m_nTags));
        }

        // An address and the byte after it, which is in the group, too.
        std::uint64_t Bytes(std::size_t slot) const noexcept {
            return Read<std::uint64_t>(reinterpret_cast<const char*>(m_addresses) +
                                       kAddress * slot);
        }

        const Entry* At(std::size_t slot) const noexcept {
            // NOLINTNEXTLINE(performance-no-int-to-ptr): seven bytes are no pointer
            return reinterpret_cast<const Entry*>(Bytes(slot) & kAddressMask);
        }

        char m_addresses[kSlots][kAddress];  // the lowest byte first
        std::uint8_t m_nTags[kSlots];
    };
    static_assert(sizeof(Group) == 64, "a group is as large as a cache line");
    static_assert(alignof(Group) == 64, "a group begins with a cache line");
    static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "a group's first slot is its lowest");

    // Built for lookups, by far the most frequent operation: a hash leads to one group and that to
    // the entry, whose texts are side by side. The key order is made only for a walk. A tree would
    // always keep it, at some fifteen comparisons per lookup.
    class Index {
    public:
        // Where a search ended.
        struct Place {
            const Entry* pEntry;  // null: the key is absent
            Group* pGroup;        // with a free slot for it; null: it belongs in the overflow
        };

        Index() noexcept = default;

        // groups must be a power of two. Throws std::bad_alloc.
        explicit Index(std::size_t groups);

        Place Search(std::string_view key, std::size_t hash) const noexcept {
            // Nearly every search ends here.
            if (m_nGroups != 0) {
                Group& group = m_groups[hash & (m_nGroups - 1)];
                const Entry* const entry = group.Find(key, hash);
                if (entry != nullptr || (group.HasFree() && m_overflow.empty())) {
                    return {entry, &group};
                }
            }
            return SearchOn(key, hash);
        }

        // The group with a free slot for an absent key with this hash, or null: the overflow.
        Group* FreeGroup(std::size_t hash) const noexcept {
            for (std::size_t i = 0; i < kMaxProbes; ++i) {
                Group& group = m_groups[(hash + i) & (m_nGroups - 1)];
                if (group.HasFree()) {
                    return &group;
                }
            }
            return nullptr;
        }

        // Adds an entry whose key is absent to the group found for it. If it throws std::bad_alloc,
        // nothing was added.
        void Add(Group* group, const Entry* entry, std::size_t hash) {
            if (group != nullptr && Group::CanHold(entry)) {
                group->Put(entry, hash);
            } else {
                AddToOverflow(entry);
            }
        }

        std::size_t Groups() const noexcept { return m_nGroups; }

    private:
        // Linear probing from the hash's group. After kMaxProbes full groups, which a good hash
        // hardly ever meets, the entry goes to an ordered map, so that colliding keys cannot make a
        // load quadratic. So does one that a group can't hold.
        static constexpr std::size_t kMaxProbes = 8;

        void AddToOverflow(const Entry* entry);

        // Searches everywhere that an entry with this hash can be.
        Place SearchOn(std::string_view key, std::size_t hash) const noexcept;

        std::unique_ptr<Group[]> m_groups;
        std::size_t m_nGroups = 0;  // a power of two, or 0
        std::map<std::string_view, const Entry*> m_overflow;
    };

    // Holds the entries one after the other, in blocks that are freed as a whole; a large entry has
    // a block of its own. Allocating and freeing each entry would be a good part of a load and of a
    // host's exit.
    class Memory {
    public:
        struct Block {
            std::unique_ptr<char[]> pBytes;
            std::size_t nSize;
            std::size_t nUsed;  // by entries, from its start
        };

        // A block with this many bytes left, for the next entry. Whoever makes that entry adds its
        // size to nUsed. Throws std::bad_alloc.
        Block& BlockFor(std::size_t size) {
            return !m_blocks.empty() && size <= m_blocks.back().nSize - m_blocks.back().nUsed
                       ? m_blocks.back()
                       : AddBlock(size);
        }

        // Calls visit for every entry.
        template <typename Visit>
        void ForEach(const Visit& visit) const {
            for (const Block& block : m_blocks) {
                for (std::size_t at = 0; at != block.nUsed;) {
                    const auto* const entry = reinterpret_cast<const Entry*>(&block.pBytes[at]);
                    visit(entry);
                    at += Entry::SizeFor(entry->Key(), entry->Value());
                }
            }
        }

    private:
        Block& AddBlock(std::size_t size);

        std::vector<Block> m_blocks;  // the last one is being filled
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
