#include <openssl/evp.h>
#include <stdexcept>

#include "tests/support/ReferenceAes.h"

Bytes EncryptCbc(const Bytes& key, const Bytes& iv, const Bytes& data) {
    EVP_CIPHER_CTX* const context = EVP_CIPHER_CTX_new();
    Bytes encrypted(data.size());
    int length = 0;
    const bool isDone =
        EVP_EncryptInit_ex(context, EVP_aes_256_cbc(), nullptr, key.data(), iv.data()) == 1 &&
        EVP_CIPHER_CTX_set_padding(context, 0) == 1 &&
        EVP_EncryptUpdate(context, encrypted.data(), &length, data.data(),
                          static_cast<int>(data.size())) == 1;
    EVP_CIPHER_CTX_free(context);
    if (!isDone) {
        throw std::runtime_error("OpenSSL does not encrypt");
    }
    return encrypted;
}
