#include "api/DecodeProtectedString.h"

#include <cstddef>
#include <cstring>

#include "clearing/ClearRegisters.h"
#include "clearing/ClearedArray.h"
#include "protection/KeyMaterial.h"
#include "protection/ProtectedForm.h"

namespace {

constexpr std::int32_t kDecoded = 0;
constexpr std::int32_t kNotDecoded = 1;

// Decrypts and checks the cipher bytes with the library's own key, which exists only during this
// call. It takes the lock and handles exceptions itself, so that the key's handling does not depend
// on the caller.
bool BuildKeyAndDecrypt(std::uint8_t* data, std::size_t length, std::size_t* textLength) {
    const std::lock_guard<std::recursive_mutex> lock(gDecodeMutex);
    try {
        const KeyMaterial material;
        const ProtectionKeys keys(material.Bytes());
        return DecryptStored(keys, data, length, textLength);
    } catch (...) {
        return false;
    }
}

// Does the work of DecodeProtectedString and returns its status.
std::int32_t Decode(std::int32_t nLength, const char* pText, std::int32_t* pOutputLength,
                    char* pOutput) {
    // Check before allocating: a broken caller's length may be huge.
    if (nLength < 0 || !IsStoredLength(static_cast<std::size_t>(nLength))) {
        return kNotDecoded;
    }
    const ClearedArray data(static_cast<std::size_t>(nLength) / 2);
    std::size_t textLength = 0;
    if (!ReadStoredDigits(pText, 2 * data.Size(), data.Get()) ||
        !BuildKeyAndDecrypt(data.Get(), data.Size(), &textLength)) {
        return kNotDecoded;
    }
    if (pOutput != nullptr) {
        std::memcpy(pOutput, data.Get() + kProtectedBlock, textLength);
        *pOutputLength = static_cast<std::int32_t>(textLength);
    }
    return kDecoded;
}

}  // namespace

void DecodeProtectedString(std::int32_t* pStatus, std::int32_t nLength, const char* pText,
                           std::int32_t* pOutputLength, char* pOutput) noexcept {
    if (pStatus == nullptr) {
        return;
    }
    {
        const std::lock_guard<std::recursive_mutex> lock(gDecodeMutex);
        try {
            *pStatus = Decode(nLength, pText, pOutputLength, pOutput);
        } catch (...) {
            *pStatus = kNotDecoded;
        }
    }
    ClearRegisters();
}
