#include <cstdint>
#include <cstring>
#include <limits>

#include <OrvaLanguage/KorString.h>
#include <OrvaLanguage/OrvaLanguage.h>

#include "api/DecodeProtectedString.h"
#include "api/LoadedCount.h"
#include "api/PlaintextCache.h"
#include "clearing/ClearMemory.h"
#include "clearing/ClearRegisters.h"
#include "protection/ProtectedForm.h"

namespace {

// The size to allocate for this length. A length of 2 to 4 GiB has wrapped to negative; the maximum
// makes the allocation fail.
std::size_t BufferSize(std::int32_t length) {
    return length < 0 ? std::numeric_limits<std::size_t>::max() : static_cast<std::size_t>(length);
}

// The text of the protected entry with this key and stored text, or null. Not inlined, so that a
// plain lookup does not save the registers that this uses.
[[gnu::noinline]] const char* GetDecodedString(const char* key, const char* stored) {
    // Once a key has been decoded, its stored text no longer matters: the first text stays, across
    // reloads too.
    if (const StringMap::Entry* const cached = gMapDecodedStrings.Find(key)) {
        return cached->Value().data();
    }
    const auto length = static_cast<std::int32_t>(std::strlen(stored));
    std::int32_t status = 0;
    std::int32_t outputLength = 0;
    DecodeProtectedString(&status, length, stored, &outputLength, nullptr);
    if (status != 0) {
        return nullptr;
    }
    try {
        char* const output = new char[BufferSize(length)];
        // The status is ignored: the sizing call already decided, with the same text and key.
        DecodeProtectedString(&status, length, stored, &outputLength, output);
        output[outputLength] = '\0';
        gMapDecodedStrings.Insert(key, output);
        ClearMemory(output, static_cast<std::size_t>(length));
        delete[] output;
        ClearRegisters();  // they held the text
    } catch (...) {
        // The buffer is leaked on purpose, so no ClearedArray owns it: it may hold plaintext, which
        // the heap would pass on uncleared, and a process that is out of memory hardly misses it.
        return nullptr;
    }
    const StringMap::Entry* const entry = gMapDecodedStrings.Find(key);
    return entry == nullptr ? nullptr : entry->Value().data();
}

}  // namespace

const char* ZuGetLocalizedString(const char* key) {
    if (gLoadedCount < 1) {
        return nullptr;
    }
    const char* const stored = KorGetLocalizedString(key);
    const bool isProtected = IsProtectedKey(key);
    return stored != nullptr && isProtected ? GetDecodedString(key, stored) : stored;
}
