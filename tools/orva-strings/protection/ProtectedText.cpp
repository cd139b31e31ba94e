#include "tools/orva-strings/protection/ProtectedText.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <iterator>

#include "clearing/ClearRegisters.h"
#include "clearing/ClearedArray.h"
#include "tools/orva-strings/Hex.h"

std::string EncodeProtectedText(const ProtectionKeys& keys, std::string_view text) {
    const std::size_t padding = kProtectedBlock - text.size() % kProtectedBlock;
    const ClearedArray data(kProtectedBlock + text.size() + padding);
    std::uint8_t* const padded = data.Get() + kProtectedBlock;
    std::copy(text.begin(), text.end(), padded);
    std::memset(padded + text.size(), static_cast<int>(padding), padding);
    std::uint8_t tag[kProtectedBlock];
    MakeTag(keys, text.size(), padded, text.size() + padding, tag);
    std::copy(std::begin(tag), std::end(tag), data.Get());

    std::size_t length = data.Size();
    keys.TextCipher().Encrypt(data.Get(), &length, length);
    ClearRegisters();  // of round keys
    // Byte by byte gives the same digits as big-endian groups.
    return ToHexDigits(data.Get(), data.Size());
}

std::optional<std::string> DecodeProtectedText(const ProtectionKeys& keys,
                                               std::string_view stored) {
    const ClearedArray data(stored.size() / 2);
    std::size_t length = 0;
    const bool isDecoded = ReadStoredDigits(stored.data(), stored.size(), data.Get()) &&
                           DecryptStored(keys, data.Get(), data.Size(), &length);
    ClearRegisters();  // of round keys
    if (!isDecoded) {
        return std::nullopt;
    }
    return std::string(reinterpret_cast<const char*>(data.Get()) + kProtectedBlock, length);
}

bool LooksStored(std::string_view value) {
    return IsStoredLength(value.size()) && std::all_of(value.begin(), value.end(), [](char c) {
               return std::isxdigit(static_cast<unsigned char>(c)) != 0;
           });
}
