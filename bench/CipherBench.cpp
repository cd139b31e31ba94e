// What the cipher call of our own costs over Nettle alone: 64 bytes, the key's schedule included.
#include <cstdint>
#include <cstring>
#include <nettle/aes.h>
#include <nettle/cbc.h>

#include <benchmark/benchmark.h>

#include "platform/CommonCryptor.h"

namespace {

constexpr std::size_t kLength = 64;
const std::uint8_t kKey[32] = {1, 2, 3};
const std::uint8_t kIV[16] = {4, 5, 6};

void DecryptNettle(benchmark::State& state) {
    std::uint8_t data[kLength] = {};
    for (auto _ : state) {
        aes256_ctx schedule;
        std::uint8_t iv[16];
        std::memcpy(iv, kIV, sizeof iv);
        aes256_set_decrypt_key(&schedule, kKey);
        nettle_cbc_decrypt(&schedule, reinterpret_cast<nettle_cipher_func*>(aes256_decrypt), 16, iv,
                           kLength, data, data);
        benchmark::DoNotOptimize(data);
    }
}
BENCHMARK(DecryptNettle);

void EncryptNettle(benchmark::State& state) {
    std::uint8_t data[kLength] = {};
    for (auto _ : state) {
        aes256_ctx schedule;
        std::uint8_t iv[16];
        std::memcpy(iv, kIV, sizeof iv);
        aes256_set_encrypt_key(&schedule, kKey);
        nettle_cbc_encrypt(&schedule, reinterpret_cast<nettle_cipher_func*>(aes256_encrypt), 16, iv,
                           kLength, data, data);
        benchmark::DoNotOptimize(data);
    }
}
BENCHMARK(EncryptNettle);

void Crypt(benchmark::State& state, CCOperation op) {
    std::uint8_t data[kLength] = {};
    for (auto _ : state) {
        std::size_t moved = 0;
        if (CCCrypt(op, kCCAlgorithmAES128, 0, kKey, sizeof kKey, kIV, data, kLength, data, kLength,
                    &moved) != kCCSuccess) {
            state.SkipWithError("the call failed");
        }
        benchmark::DoNotOptimize(data);
    }
}
BENCHMARK_CAPTURE(Crypt, Decrypt, kCCDecrypt);
BENCHMARK_CAPTURE(Crypt, Encrypt, kCCEncrypt);

}  // namespace
