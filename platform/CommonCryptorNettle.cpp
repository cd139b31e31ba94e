#include <algorithm>
#include <cstring>
#include <iterator>
#include <nettle/aes.h>
#include <nettle/cbc.h>
#include <nettle/nettle-meta.h>

#include "clearing/Cleared.h"
#include "platform/CommonCryptor.h"

namespace {

constexpr std::size_t kBlock = kCCBlockSizeAES128;
constexpr std::size_t kPiece = 32 * kBlock;

const nettle_cipher* CipherOf(std::size_t keyLength) {
    switch (keyLength) {
        case kCCKeySizeAES128:
            return &nettle_aes128;
        case kCCKeySizeAES192:
            return &nettle_aes192;
        case kCCKeySizeAES256:
            return &nettle_aes256;
        default:
            return nullptr;
    }
}

// One operation in progress: the key schedule and the chaining value.
class BlockChain {
public:
    BlockChain(const nettle_cipher& cipher, CCOperation op, CCOptions options, const void* key,
               const void* iv)
        : m_cipher(cipher),
          m_isEncryption(op == kCCEncrypt),
          m_isEcb((options & kCCOptionECBMode) != 0) {
        const auto setKey = m_isEncryption ? cipher.set_encrypt_key : cipher.set_decrypt_key;
        setKey(&m_schedule.value, static_cast<const std::uint8_t*>(key));
        if (iv != nullptr && !m_isEcb) {
            std::memcpy(m_iv.value, iv, kBlock);
        }
    }

    // Processes the next whole blocks, in place or not.
    void Run(std::uint8_t* out, const std::uint8_t* in, std::size_t length) {
        const auto function = m_isEncryption ? m_cipher.encrypt : m_cipher.decrypt;
        if (m_isEcb) {
            function(&m_schedule.value, length, out, in);
        } else if (m_isEncryption) {
            cbc_encrypt(&m_schedule.value, function, kBlock, m_iv.value, length, out, in);
        } else {
            // Decrypt from a copy, piece by piece: in place, Nettle leaves plaintext in its own
            // buffer. The copy holds only ciphertext.
            std::uint8_t piece[kPiece];
            for (std::size_t done = 0; done < length; done += kPiece) {
                const std::size_t size = std::min(kPiece, length - done);
                std::memcpy(piece, in + done, size);
                cbc_decrypt(&m_schedule.value, function, kBlock, m_iv.value, size, out + done,
                            piece);
            }
        }
    }

private:
    union Schedule {
        aes128_ctx of128;
        aes192_ctx of192;
        aes256_ctx of256;
    };

    const nettle_cipher& m_cipher;
    const bool m_isEncryption;
    const bool m_isEcb;
    // Aligned: otherwise CBC encryption takes a fifth longer.
    alignas(16) Cleared<Schedule> m_schedule;
    alignas(16) Cleared<std::uint8_t[kBlock]> m_iv = {};
};

// The number of padding bytes at the end of a decrypted block, or 0 if the padding is bad.
std::size_t PaddingOf(const std::uint8_t (&block)[kBlock]) {
    const std::size_t padding = block[kBlock - 1];
    if (padding == 0 || padding > kBlock) {
        return 0;
    }
    const bool isWhole = std::all_of(block + kBlock - padding, block + kBlock,
                                     [&](std::uint8_t byte) { return byte == padding; });
    return isWhole ? padding : 0;
}

}  // namespace

extern "C" CCCryptorStatus CCCrypt(CCOperation op, CCAlgorithm alg, CCOptions options,
                                   const void* key, std::size_t keyLength, const void* iv,
                                   const void* dataIn, std::size_t dataInLength, void* dataOut,
                                   std::size_t dataOutAvailable, std::size_t* dataOutMoved) {
    if (key == nullptr || alg != kCCAlgorithmAES128 || (op != kCCEncrypt && op != kCCDecrypt)) {
        return kCCParamError;
    }
    const nettle_cipher* const cipher = CipherOf(keyLength);
    if (cipher == nullptr) {
        return kCCParamError;
    }

    const bool isPadded = (options & kCCOptionPKCS7Padding) != 0;
    const std::size_t rest = dataInLength % kBlock;
    const std::size_t whole = dataInLength - rest;
    std::size_t needed = whole;
    if (isPadded) {
        needed = op == kCCEncrypt ? whole + kBlock : dataInLength;
    }
    *dataOutMoved = needed;
    if (needed > dataOutAvailable || needed < whole) {  // less: it overflowed
        return kCCBufferTooSmall;
    }

    BlockChain chain(*cipher, op, options, key, iv);
    const auto* const in = static_cast<const std::uint8_t*>(dataIn);
    auto* const out = static_cast<std::uint8_t*>(dataOut);
    Cleared<std::uint8_t[kBlock]> last;

    if (isPadded && op == kCCEncrypt) {
        chain.Run(out, in, whole);
        std::fill(std::copy_n(in + whole, rest, last.value), std::end(last.value),
                  static_cast<std::uint8_t>(kBlock - rest));
        chain.Run(out + whole, last.value, kBlock);
        return kCCSuccess;
    }
    if (!isPadded || rest != 0 || whole == 0) {
        chain.Run(out, in, whole);
        *dataOutMoved = whole;
        return isPadded || rest != 0 ? kCCAlignmentError : kCCSuccess;
    }

    const std::size_t before = whole - kBlock;
    chain.Run(out, in, before);
    chain.Run(last.value, in + before, kBlock);
    const std::size_t padding = PaddingOf(last.value);
    if (padding == 0) {
        *dataOutMoved = before;
        return kCCDecodeError;
    }
    std::copy_n(last.value, kBlock - padding, out + before);
    *dataOutMoved = whole - padding;
    return kCCSuccess;
}
