#include "tools/orva-strings/protection/MasterKey.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <stdexcept>
#include <string_view>
#include <sys/random.h>
#include <system_error>
#include <unistd.h>

#include "KeyFingerprints.h"
#include "clearing/ClearMemory.h"
#include "clearing/ClearRegisters.h"
#include "clearing/ClearedArray.h"
#include "platform/Sha256.h"
#include "protection/KeyMaterial.h"
#include "tools/orva-strings/Hex.h"
#include "tools/orva-strings/system/Files.h"

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

}  // namespace

MasterKey MasterKey::BuiltIn() {
    const KeyMaterial material;
    MasterKey key;
    std::copy(std::begin(material.Bytes()), std::end(material.Bytes()), key.m_bytes.value);
    ClearRegisters();  // of the key, which a later call may save
    return key;
}

MasterKey MasterKey::FromFile(const std::string& path) {
    return FromText(ReadFile(path), path);
}

MasterKey MasterKey::FromText(std::string text, const std::string& name) {
    const std::size_t size = text.size();
    if (!text.empty() && text.back() == '\n') {
        text.pop_back();
        if (!text.empty() && text.back() == '\r') {
            text.pop_back();
        }
    }
    MasterKey key;
    const bool isLongEnough = text.size() == kDigits;
    bool isGood = isLongEnough;
    for (std::size_t i = 0; isGood && i < kProtectedKey; ++i) {
        const int high = DigitValue(text[2 * i]);
        const int low = DigitValue(text[2 * i + 1]);
        isGood = high >= 0 && low >= 0;
        key.m_bytes.value[i] = static_cast<std::uint8_t>(16 * high + low);
    }
    ClearMemory(text.data(), text.size());  // a string does not clear itself
    if (!isGood) {
        // The build reports the same.
        throw std::runtime_error(
            name + (isLongEnough ? ": must hold 64 hexadecimal digits, but has other characters"
                                 : ": must hold 64 hexadecimal digits on one line, but has " +
                                       std::to_string(size) + " bytes"));
    }
    return key;
}

MasterKey MasterKey::Random() {
    MasterKey key;
    if (getentropy(key.m_bytes.value, sizeof key.m_bytes.value) != 0) {
        throw std::system_error(errno, std::generic_category(), "the system's random source");
    }
    return key;
}

ProtectionKeys MasterKey::Derive() const {
    const struct AtEnd {
        ~AtEnd() { ClearRegisters(); }  // of round keys
    } atEnd;
    return ProtectionKeys(m_bytes.value);
}

void MasterKey::WriteFileText(char* text) const {
    WriteHexDigits(m_bytes.value, sizeof m_bytes.value, text);
    text[kDigits] = '\n';
}

std::string MasterKey::Fingerprint() const {
    constexpr std::string_view kLabel = "libOrvaLanguage key fingerprint ";
    const ClearedArray text(kLabel.size() + kDigits);
    auto* const chars = reinterpret_cast<char*>(text.Get());
    WriteHexDigits(m_bytes.value, sizeof m_bytes.value,
                   std::copy(kLabel.begin(), kLabel.end(), chars));
    std::uint8_t digest[kSha256Digest];
    Sha256({chars, text.Size()}, digest);
    ClearRegisters();  // of the digits
    return ToHexDigits(digest, kFingerprint / 2);
}

bool MasterKey::IsOfDevelopmentKey(const std::string& fingerprint) {
    return fingerprint == ORVA_DEVELOPMENT_KEY_FINGERPRINT;
}
