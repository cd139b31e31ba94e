#include "tools/orva-strings/Key.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>
#include <stdexcept>
#include <sys/random.h>
#include <system_error>
#include <unistd.h>

#include "DevelopmentKey.h"
#include "api/KeyMaterial.h"
#include "crypt/CCryptAES.h"
#include "platform/ClearMemory.h"
#include "tools/orva-strings/Files.h"

namespace {

constexpr std::size_t kDigits = 2 * kProtectedKey;

// The value of a hexadecimal digit of either case, or -1.
int DigitValue(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    const int letter = c | 0x20;  // in lower case
    return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

std::string Digits(const std::uint8_t* bytes, std::size_t length) {
    std::string digits;
    for (std::size_t i = 0; i < length; ++i) {
        digits += "0123456789abcdef"[bytes[i] >> 4U];
        digits += "0123456789abcdef"[bytes[i] & 0xFU];
    }
    return digits;
}

}  // namespace

Key Key::BuiltIn() {
    const KeyMaterial material;
    Key key;
    std::copy(std::begin(material.Bytes()), std::end(material.Bytes()), key.m_bytes);
    return key;
}

Key Key::FromFile(const std::string& path) {
    std::string text = ReadFile(path);
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) {
        text.pop_back();
    }
    Key key;
    bool isGood = text.size() == kDigits;
    for (std::size_t i = 0; isGood && i < kProtectedKey; ++i) {
        const int high = DigitValue(text[2 * i]);
        const int low = DigitValue(text[2 * i + 1]);
        isGood = high >= 0 && low >= 0;
        key.m_bytes[i] = static_cast<std::uint8_t>(16 * high + low);
    }
    ClearMemory(text.data(), text.size());
    if (!isGood) {
        throw std::runtime_error(path + ": a key file holds 64 hexadecimal digits");
    }
    return key;
}

Key Key::Random() {
    Key key;
    if (getentropy(key.m_bytes, sizeof key.m_bytes) != 0) {
        throw std::system_error(errno, std::generic_category(), "the system's random source");
    }
    return key;
}

Key::~Key() {
    ClearMemory(m_bytes, sizeof m_bytes);
}

std::string Key::FileText() const {
    return Digits(m_bytes, sizeof m_bytes) + '\n';
}

std::string Key::Fingerprint() const {
    // Half of the block that the next counter after the derived ones would give.
    std::uint8_t block[kProtectedBlock] = {};
    block[kProtectedBlock - 1] = 6;
    constexpr std::uint8_t kNoIV[kProtectedBlock] = {};
    CCryptAES aes;
    aes.SetKey(m_bytes, sizeof m_bytes);
    aes.SetIV(kNoIV, sizeof kNoIV);
    aes.SetMode(CRYPT_MODE_ECB);
    aes.SetPadding(CRYPT_PADDING_NONE);
    std::size_t length = sizeof block;
    aes.Encrypt(block, &length, length);
    return Digits(block, sizeof block / 2);
}

bool Key::IsDevelopmentKey() const {
    return Digits(m_bytes, sizeof m_bytes) == ORVA_DEVELOPMENT_KEY;
}
