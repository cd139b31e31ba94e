#include "strings/StringMap.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace {

constexpr std::size_t kFirstGroups = 32;
// Each block is twice as large as the last one, between these limits: a small map takes little
// memory, and a large one few blocks.
constexpr std::size_t kFirstBlock = std::size_t{4} * 1024;
constexpr std::size_t kMaxBlock = std::size_t{64} * 1024;

// Copies a text, adds a NUL and returns the place after it.
char* CopyText(char* to, std::string_view text) noexcept {
    if (!text.empty()) {
        std::memcpy(to, text.data(), text.size());
    }
    to[text.size()] = '\0';
    return to + text.size() + 1;
}

}  // namespace

inline StringMap::Entry::Entry(std::string_view key, std::string_view value) noexcept
    : m_nLengths{static_cast<std::uint16_t>(key.size()), static_cast<std::uint16_t>(value.size())} {
    auto* to = reinterpret_cast<char*>(this + 1);
    if (AreLong(key, value)) {
        m_nLengths[0] = kLong;
        const std::size_t lengths[] = {key.size(), value.size()};
        std::memcpy(to, lengths, sizeof lengths);
        to += sizeof lengths;
    }
    CopyText(CopyText(to, key), value);
}

StringMap::~StringMap() {
    ForgetOrder();
}

const StringMap::Entry* const* StringMap::LowerBound(std::string_view key) const {
    return std::lower_bound(begin(), end(), key, [](const Entry* entry, std::string_view wanted) {
        return entry->Key() < wanted;
    });
}

bool StringMap::Insert(std::string_view key, std::string_view value) {
    const std::size_t hash = Hash(key);
    Index::Place place = m_index.Search(key, hash);
    if (place.pEntry != nullptr) {
        return false;
    }
    // With three slots in eight free, nearly every search ends in its first group.
    if (m_nSize >= 5 * m_index.Groups()) {
        Grow();
        place.pGroup = m_index.FreeGroup(hash);
    }
    const std::size_t size = Entry::SizeFor(key, value);
    Memory::Block& block = m_memory.BlockFor(size);
    m_index.Add(place.pGroup, new (&block.pBytes[block.nUsed]) Entry(key, value), hash);
    block.nUsed += size;  // not earlier: Add may throw
    ++m_nSize;
    ForgetOrder();
    return true;
}

void StringMap::Clear() noexcept {
    ForgetOrder();
    m_index = Index();
    m_memory = Memory();
    m_nSize = 0;
}

void StringMap::Grow() {
    Index grown(m_index.Groups() == 0 ? kFirstGroups : 2 * m_index.Groups());
    m_memory.ForEach([&](const Entry* entry) {
        const std::size_t hash = Hash(entry->Key());
        grown.Add(grown.FreeGroup(hash), entry, hash);
    });
    m_index = std::move(grown);
}

const StringMap::Entry* const* StringMap::Ordered() const {
    const Entry** ordered = m_pOrdered.load(std::memory_order_acquire);
    if (ordered != nullptr) {
        return ordered;
    }
    std::unique_ptr<const Entry*[]> sorted(new const Entry*[m_nSize]);
    std::size_t count = 0;
    m_memory.ForEach([&](const Entry* entry) { sorted[count++] = entry; });
    std::sort(sorted.get(), sorted.get() + count,
              [](const Entry* a, const Entry* b) { return a->Key() < b->Key(); });
    // Several reading threads may sort at once: the first one's order is kept.
    return m_pOrdered.compare_exchange_strong(ordered, sorted.get(), std::memory_order_acq_rel)
               ? sorted.release()
               : ordered;
}

void StringMap::ForgetOrder() noexcept {
    // No thread reads a map while it changes, so this need not be one step.
    delete[] m_pOrdered.load(std::memory_order_relaxed);
    m_pOrdered.store(nullptr, std::memory_order_relaxed);
}

StringMap::Memory::Block& StringMap::Memory::AddBlock(std::size_t size) {
    const bool isLarge = size > kMaxBlock / 4;
    const std::size_t last = m_blocks.empty() ? 0 : m_blocks.back().nSize;
    const std::size_t next = std::clamp(2 * last, kFirstBlock, kMaxBlock);
    const std::size_t blockSize = isLarge ? size : std::max(size, next);
    Block block = {std::unique_ptr<char[]>(new char[blockSize]), blockSize, 0};
    // A large entry's block goes before the last one, which keeps its room.
    const bool isBeforeLast = isLarge && !m_blocks.empty();
    return *m_blocks.insert(m_blocks.end() - (isBeforeLast ? 1 : 0), std::move(block));
}

StringMap::Index::Index(std::size_t groups) : m_groups(new Group[groups]()), m_nGroups(groups) {}

StringMap::Index::Place StringMap::Index::SearchOn(std::string_view key,
                                                   std::size_t hash) const noexcept {
    Group* free = nullptr;
    for (std::size_t i = 0; i < kMaxProbes && m_nGroups != 0 && free == nullptr; ++i) {
        Group& group = m_groups[(hash + i) & (m_nGroups - 1)];
        if (const Entry* const entry = group.Find(key, hash)) {
            return {entry, &group};
        }
        free = group.HasFree() ? &group : nullptr;
    }
    const auto found = m_overflow.find(key);
    return {found == m_overflow.end() ? nullptr : found->second, free};
}

void StringMap::Index::AddToOverflow(const Entry* entry) {
    m_overflow.emplace(entry->Key(), entry);
}
