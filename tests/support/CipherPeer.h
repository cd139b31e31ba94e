#ifndef ORVALANGUAGE_TESTS_SUPPORT_CIPHERPEER_H
#define ORVALANGUAGE_TESTS_SUPPORT_CIPHERPEER_H

#include <memory>
#include <openssl/evp.h>
#include <stdexcept>

#include "platform/CommonCryptor.h"
#include "tests/support/Hex.h"

// OpenSSL's AES, the reference for our own cipher call.
class CipherPeer {
public:
    struct Parameters {
        CCOperation op;
        CCOptions options;
        Bytes key;
        Bytes iv;
    };

    // What OpenSSL turns a message into; returns false if it refuses it.
    bool Crypt(const Parameters& p, const Bytes& in, Bytes& out) const {
        EVP_CIPHER_CTX* const context = m_context.get();
        const bool isEcb = (p.options & kCCOptionECBMode) != 0;
        Require(EVP_CipherInit_ex(context, CipherOf(p.key.size(), isEcb), nullptr, p.key.data(),
                                  p.iv.data(), p.op == kCCEncrypt ? 1 : 0));
        EVP_CIPHER_CTX_set_padding(context, (p.options & kCCOptionPKCS7Padding) != 0 ? 1 : 0);
        out.resize(in.size() + 32);
        int length = 0;
        int last = 0;
        Require(
            EVP_CipherUpdate(context, out.data(), &length, in.data(), static_cast<int>(in.size())));
        const bool isGood = EVP_CipherFinal_ex(context, out.data() + length, &last) == 1;
        out.resize(static_cast<std::size_t>(length) + static_cast<std::size_t>(isGood ? last : 0));
        return isGood;
    }

private:
    static void Require(int result) {
        if (result != 1) {
            throw std::logic_error("OpenSSL refused a valid call");
        }
    }

    static const EVP_CIPHER* CipherOf(std::size_t keyLength, bool isEcb) {
        switch (keyLength) {
            case 16:
                return isEcb ? EVP_aes_128_ecb() : EVP_aes_128_cbc();
            case 24:
                return isEcb ? EVP_aes_192_ecb() : EVP_aes_192_cbc();
            default:
                return isEcb ? EVP_aes_256_ecb() : EVP_aes_256_cbc();
        }
    }

    std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)> m_context{EVP_CIPHER_CTX_new(),
                                                                              EVP_CIPHER_CTX_free};
};

#endif
