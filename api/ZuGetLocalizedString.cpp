#include <cstdint>
#include <cstring>
#include <limits>

#include <OrvaLanguage/KorString.h>
#include <OrvaLanguage/OrvaLanguage.h>

#include "api/DecodeProtectedString.h"
#include "api/LoadedCount.h"
#include "api/PlaintextCache.h"
#include "api/ProtectedForm.h"
#include "platform/ClearMemory.h"
#include "platform/ClearRegisters.h"

namespace {

// What a buffer for so many bytes asks for. A length of 2 to 4 GiB has come out negative and asks
// for the impossible.
std::size_t BufferSize(std::int32_t length) {
    return length < 0 ? std::numeric_limits<std::size_t>::max() : static_cast<std::size_t>(length);
}

// The text of a protected entry, whose key and stored text these are, or null. Not inline, so that
// a plain look-up does not save the registers that this takes.
[[gnu::noinline]] const char* GetDecodedString(const char* key, const char* stored) {
    // The stored text is not looked at any more once a key has been decoded: what a host was given
    // first stays, over reloads too.
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
        // Its status is not asked: the sizing call has decided, with the same text and key.
        DecodeProtectedString(&status, length, stored, &outputLength, output);
        output[outputLength] = '\0';
        gMapDecodedStrings.Insert(key, output);
        ClearMemory(output, static_cast<std::size_t>(length));
        delete[] output;
        ClearRegisters();  // of the text
    } catch (...) {
        // The buffer is left unreleased on purpose: it may hold plaintext, which the heap would
        // hand on uncleared, and with memory at its end the process has little time left to miss
        // it.
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
