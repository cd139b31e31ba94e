#include "strings/StringMap.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace {

constexpr std::size_t kFirstSlots = 64;
// Each block is twice as large as the one before, between these limits: a small map takes little
// memory, and a large one few blocks.
constexpr std::size_t kFirstBlock = std::size_t{4} * 1024;
constexpr std::size_t kMaxBlock = std::size_t{256} * 1024;

// Copies a text, adds a NUL and returns the place after it.
char* CopyText(char* to, std::string_view text) noexcept {
    if (!text.empty()) {
        std::memcpy(to, text.data(), text.size());
    }
    to[text.size()] = '\0';
    return to + text.size() + 1;
}

}  // namespace

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
    if (m_index.Find(key, hash) != nullptr) {
        return false;
    }
    // Half of the slots stay free to keep searches short.
    if (m_nSize >= m_index.Slots() / 2) {
        Grow();
    }
    const std::size_t size = sizeof(Entry) + key.size() + value.size() + 2;
    auto* const entry = new (m_memory.Take(size)) Entry(key.size(), value.size());
    CopyText(CopyText(reinterpret_cast<char*>(entry + 1), key), value);
    m_index.Add(entry, hash);
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
    Index grown(m_index.Slots() == 0 ? kFirstSlots : 2 * m_index.Slots());
    m_index.ForEach([&](const Entry* entry, std::size_t hash) { grown.Add(entry, hash); });
    m_index = std::move(grown);
}

const StringMap::Entry* const* StringMap::Ordered() const {
    const Entry** ordered = m_pOrdered.load(std::memory_order_acquire);
    if (ordered != nullptr) {
        return ordered;
    }
    std::unique_ptr<const Entry*[]> sorted(new const Entry*[m_nSize]);
    std::size_t count = 0;
    m_index.ForEach([&](const Entry* entry, std::size_t) { sorted[count++] = entry; });
    std::sort(sorted.get(), sorted.get() + count,
              [](const Entry* a, const Entry* b) { return a->Key() < b->Key(); });
    // Several reading threads may sort at once: the first one's order is kept.
    return m_pOrdered.compare_exchange_strong(ordered, sorted.get(), std::memory_order_acq_rel)
               ? sorted.release()
               : ordered;
}

void StringMap::ForgetOrder() noexcept {
    delete[] m_pOrdered.exchange(nullptr, std::memory_order_relaxed);
}

void* StringMap::Memory::Take(std::size_t size) {
    const std::size_t aligned = (size + alignof(Entry) - 1) / alignof(Entry) * alignof(Entry);
    if (aligned > kMaxBlock / 4) {
        return AddBlock(aligned);  // its own block; the shared one keeps its room
    }
    if (aligned > m_nFree) {
        const std::size_t next = std::clamp(2 * m_nLastBlock, kFirstBlock, kMaxBlock);
        m_pFree = AddBlock(std::max(aligned, next));
        m_nFree = m_nLastBlock = std::max(aligned, next);
    }
    m_nFree -= aligned;
    return std::exchange(m_pFree, m_pFree + aligned);
}

char* StringMap::Memory::AddBlock(std::size_t size) {
    std::unique_ptr<char[]> block(new char[size]);
    m_blocks.push_back(std::move(block));
    return m_blocks.back().get();
}

StringMap::Index::Index(std::size_t slots) : m_slots(new Slot[slots]()), m_nSlots(slots) {}

void StringMap::Index::Add(const Entry* entry, std::size_t hash) {
    for (std::size_t i = 0; i < kMaxProbes; ++i) {
        Slot& slot = m_slots[(hash + i) & (m_nSlots - 1)];
        if (slot.pEntry == nullptr) {
            slot = {hash, entry};
            return;
        }
    }
    m_overflow.emplace(entry->Key(), entry);
}
