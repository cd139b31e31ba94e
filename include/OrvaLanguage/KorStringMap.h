// The library's table of texts, as a C++ host sees it.
#ifndef ORVALANGUAGE_KORSTRINGMAP_H
#define ORVALANGUAGE_KORSTRINGMAP_H

#if __cplusplus < 201703L
#error "OrvaLanguage's C++ headers need C++17 (-std=c++17); OrvaLanguage.h alone does not."
#else

#include <cstddef>
#include <iterator>
#include <optional>
#include <string_view>

// A read-only map from key to value, both byte strings of any content. A host neither creates nor
// changes one. The section's header is an entry, with the key "QVLANG"; protected texts are as the
// file has them, undecoded. The map and its texts are destroyed when the process exits or the
// library is unloaded.
//
// Only the order of the virtual functions and the layout of Texts are compiled into a host, so a
// host's standard library need not be the one that the library was built with.
//
// Any number of threads may read a map at once, but not while a load runs.
class KorStringMap {
public:
    // One key with its value, each followed by a NUL byte. The texts belong to the map and are valid
    // until a load opens its file.
    struct Entry {
        std::string_view key;
        std::string_view value;
    };

    // Walks the entries in key order: by unsigned bytes, a prefix first. Valid until a load opens
    // its file. The entry that it refers to is valid until the iterator changes.
    class Iterator {
    public:
        using iterator_category = std::input_iterator_tag;
        using value_type = Entry;
        using difference_type = std::ptrdiff_t;
        using pointer = const Entry*;
        using reference = const Entry&;

        // Refers to no map and can only be assigned to. C++20's ranges require it.
        Iterator() noexcept = default;
        reference operator*() const noexcept { return m_entry; }
        pointer operator->() const noexcept { return &m_entry; }
        Iterator& operator++() noexcept {
            ++m_nRank;
            Read();
            return *this;
        }
        Iterator operator++(int) noexcept {
            const Iterator before = *this;
            ++*this;
            return before;
        }
        friend bool operator==(const Iterator& a, const Iterator& b) noexcept {
            return a.m_nRank == b.m_nRank;
        }
        friend bool operator!=(const Iterator& a, const Iterator& b) noexcept { return !(a == b); }

    private:
        friend class KorStringMap;
        Iterator(const KorStringMap* map, std::size_t rank) noexcept : m_pMap(map), m_nRank(rank) {
            Read();
        }
        void Read() noexcept {
            if (m_nRank < m_pMap->Size()) {
                m_entry = EntryOf(m_pMap->TextsAt(m_nRank));
            }
        }

        const KorStringMap* m_pMap = nullptr;
        std::size_t m_nRank = 0;
        Entry m_entry;
    };

    KorStringMap(const KorStringMap&) = delete;
    KorStringMap& operator=(const KorStringMap&) = delete;

    std::size_t Size() const noexcept { return Count(); }

    // The entry with exactly this key, if there is one.
    std::optional<Entry> Find(std::string_view key) const noexcept {
        Texts texts = {};
        return FindTexts(key.data(), key.size(), &texts) ? std::optional<Entry>(EntryOf(texts))
                                                         : std::nullopt;
    }

    // The first walk after a load sorts the table, and throws std::bad_alloc if memory runs out.
    Iterator begin() const { return LowerBound({}); }
    Iterator end() const noexcept { return Iterator(this, Size()); }

    // The first entry whose key is not less than this one, or end(). Throws as begin() does.
    Iterator LowerBound(std::string_view key) const {
        return Iterator(this, LowerRank(key.data(), key.size()));
    }

protected:
    struct Texts {
        const char* key;
        std::size_t keyLength;
        const char* value;
        std::size_t valueLength;
    };

    constexpr KorStringMap() noexcept = default;
    ~KorStringMap() = default;

private:
    static Entry EntryOf(const Texts& texts) noexcept {
        return {{texts.key, texts.keyLength}, {texts.value, texts.valueLength}};
    }

    virtual std::size_t Count() const noexcept = 0;
    // Returns false and leaves texts unchanged if no entry has this key.
    virtual bool FindTexts(const char* key, std::size_t length, Texts* texts) const noexcept = 0;
    // How many keys are less than this one.
    virtual std::size_t LowerRank(const char* key, std::size_t length) const = 0;
    // The texts of the entry with this rank: the number of keys less than its own. The rank is less
    // than Size(), and LowerRank has been called before.
    virtual Texts TextsAt(std::size_t rank) const noexcept = 0;
};

#endif
#endif
