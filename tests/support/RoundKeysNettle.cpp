#include <nettle/aes.h>

#include "tests/support/RoundKeys.h"

namespace {

using SetKey = void(aes256_ctx*, const std::uint8_t*);

Bytes RoundKeys(SetKey* setKey, const std::uint8_t* key) {
    aes256_ctx schedule = {};
    setKey(&schedule, key);
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(schedule.keys);
    return {bytes, bytes + sizeof schedule.keys};
}

}  // namespace

std::vector<std::pair<const char*, Bytes>> RoundKeysOf(const Bytes& material,
                                                       const Bytes& derived) {
    const std::uint8_t* const encryptionKey = derived.data();
    const std::uint8_t* const tagKey = derived.data() + 48;
    return {
        {"the material's round keys", RoundKeys(nettle_aes256_set_encrypt_key, material.data())},
        {"the encryption's round keys", RoundKeys(nettle_aes256_set_encrypt_key, encryptionKey)},
        {"the decryption's round keys", RoundKeys(nettle_aes256_set_decrypt_key, encryptionKey)},
        {"the tag's round keys", RoundKeys(nettle_aes256_set_encrypt_key, tagKey)}};
}
