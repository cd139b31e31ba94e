#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

#include <OrvaLanguage/StringMap.h>

namespace {

constexpr std::size_t kFirstSlots = 64;
// Each block is twice the one before, so that a small map takes little and a large one few.
constexpr std::size_t kFirstBlock = std::size_t{4} * 1024;
constexpr std::size_t kLargestBlock = std::size_t{256} * 1024;

// Copies a text and its NUL to the place given and returns the place behind it.
char* CopyText(char* to, std::string_view text) noexcept {
    if (!text.empty()) {
        std::memcpy(to, text.data(), text.size());
    }
    to[text.size()] = '\0';
    return to + text.size() + 1;
}

}  // namespace

StringMap::~StringMap() = default;

bool StringMap::Insert(std::string_view key, std::string_view value) {
    const std::size_t hash = Hash(key);
    if (m_index.Find(key, hash) != nullptr) {
        return false;
    }
    // Half of the slots stay free, so that a search is short.
    if (m_nSize >= m_index.Slots() / 2) {
        Grow();
    }
    const std::size_t size = sizeof(Entry) + key.size() + value.size() + 2;
    auto* const entry = new (m_memory.Take(size)) Entry(key.size(), value.size());
    CopyText(CopyText(reinterpret_cast<char*>(entry + 1), key), value);
    m_index.Add(entry, hash);
    ++m_nSize;
    return true;
}

void StringMap::Clear() noexcept {
    m_index = Index();
    m_memory = Memory();
    m_nSize = 0;
}

void StringMap::Grow() {
    Index grown(m_index.Slots() == 0 ? kFirstSlots : 2 * m_index.Slots());
    m_index.ForEach([&](const Entry* entry, std::size_t hash) { grown.Add(entry, hash); });
    m_index = std::move(grown);
}

void* StringMap::Memory::Take(std::size_t size) {
    const std::size_t aligned = (size + alignof(Entry) - 1) / alignof(Entry) * alignof(Entry);
    if (aligned > m_nFree) {
        const std::size_t next = std::clamp(2 * m_nLastBlock, kFirstBlock, kLargestBlock);
        const std::size_t blockSize = std::max(aligned, next);
        std::unique_ptr<char[]> block(new char[blockSize]);
        char* const start = block.get();
        m_blocks.push_back(std::move(block));
        m_pFree = start;
        m_nFree = blockSize;
        m_nLastBlock = blockSize;
    }
    m_nFree -= aligned;
    return std::exchange(m_pFree, m_pFree + aligned);
}

StringMap::Index::Index(std::size_t slots) : m_slots(new Slot[slots]()), m_nSlots(slots) {}

void StringMap::Index::Add(const Entry* entry, std::size_t hash) {
    for (std::size_t i = 0; i < kMostProbes; ++i) {
        Slot& slot = m_slots[(hash + i) & (m_nSlots - 1)];
        if (slot.pEntry == nullptr) {
            slot = {hash, entry};
            return;
        }
    }
    m_crowded.emplace(entry->Key(), entry);
}
