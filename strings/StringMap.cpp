#include <cstring>
#include <new>
#include <utility>

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

// An entry is one block, with nothing in it to destroy.
void FreeEntry(const StringMap::Entry* entry) noexcept {
    ::operator delete(const_cast<StringMap::Entry*>(entry));
}

}  // namespace

StringMap::~StringMap() {
    Clear();
}

bool StringMap::Insert(std::string_view key, std::string_view value) {
    const std::size_t hash = Hash(key);
    if (m_index.Find(key, hash) != nullptr) {
        return false;
    }
    // Half of the slots stay free, so that a search is short.
    if (m_nSize >= m_index.Slots() / 2) {
        Grow();
    }
    void* const block = ::operator new(sizeof(Entry) + key.size() + value.size() + 2);
    std::unique_ptr<Entry, decltype(&FreeEntry)> entry(new (block) Entry(key.size(), value.size()),
                                                       FreeEntry);
    CopyText(CopyText(reinterpret_cast<char*>(entry.get() + 1), key), value);
    m_index.Add(entry.get(), hash);
    static_cast<void>(entry.release());  // the index has it now
    ++m_nSize;
    return true;
}

void StringMap::Clear() noexcept {
    m_index.ForEach([](const Entry* entry, std::size_t) { FreeEntry(entry); });
    m_index = Index();
    m_nSize = 0;
}

void StringMap::Grow() {
    Index grown(m_index.Slots() == 0 ? kFirstSlots : 2 * m_index.Slots());
    m_index.ForEach([&](const Entry* entry, std::size_t hash) { grown.Add(entry, hash); });
    m_index = std::move(grown);
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
