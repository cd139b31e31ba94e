// The cipher call: it agrees with OpenSSL and writes nothing past its buffer.
//
// Input: eight bytes of parameters, the key and the IV, the message.
#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "fuzz/Check.h"
#include "platform/CommonCryptor.h"
#include "tests/support/CipherPeer.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kHeader = 8;
    constexpr std::size_t kKeyAndIV = 32 + 16;
    if (size < kHeader + kKeyAndIV) {
        return 0;
    }
    const std::size_t keyLengths[] = {16, 24, 32};
    const std::size_t keyLength = keyLengths[data[0] % 3];
    const CipherPeer::Parameters p = {data[1] % 2 == 0 ? kCCEncrypt : kCCDecrypt,
                                      static_cast<CCOptions>(data[2] % 4),
                                      Bytes(data + kHeader, data + kHeader + keyLength),
                                      Bytes(data + kHeader + 32, data + kHeader + kKeyAndIV)};
    const Bytes message(data + kHeader + kKeyAndIV, data + size);
    const std::size_t capacity = message.size() + data[3] % 33;
    const bool isInPlace = data[4] % 2 == 0;

    // Exactly the stated capacity, so that the address sanitizer catches an overrun.
    Bytes out(capacity, 0x5A);
    if (isInPlace) {
        std::copy(message.begin(), message.end(), out.begin());
    }
    std::size_t moved = 0;
    const CCCryptorStatus status = CCCrypt(
        p.op, kCCAlgorithmAES128, p.options, p.key.data(), p.key.size(), p.iv.data(),
        isInPlace ? out.data() : message.data(), message.size(), out.data(), capacity, &moved);

    Bytes expected;
    const bool isGood = CipherPeer().Crypt(p, message, expected);
    if (status == kCCBufferTooSmall) {
        Check(moved > capacity && isGood && moved == expected.size(), "the needed length");
        return 0;
    }
    Check((status == kCCSuccess) == isGood, "success and failure");
    if (isGood) {
        Check(moved == expected.size() && std::equal(expected.begin(), expected.end(), out.begin()),
              "the bytes");
    }
    return 0;
}
