// What our own cipher call costs compared with Nettle alone, for 64 bytes, key schedule included.
// The goal is less than 1.3 times.
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

void NettleDecrypt(benchmark::State& state) {
    std::uint8_t data[kLength] = {};
    for (auto _ : state) {
        alignas(16) aes256_ctx schedule;
        alignas(16) std::uint8_t iv[16];
        std::memcpy(iv, kIV, sizeof iv);
        aes256_set_decrypt_key(&schedule, kKey);
        nettle_cbc_decrypt(&schedule, reinterpret_cast<nettle_cipher_func*>(aes256_decrypt), 16, iv,
                           kLength, data, data);
        benchmark::DoNotOptimize(data);
    }
}
BENCHMARK(NettleDecrypt)->Name("Nettle/Decrypt");

void NettleEncrypt(benchmark::State& state) {
    std::uint8_t data[kLength] = {};
    for (auto _ : state) {
        alignas(16) aes256_ctx schedule;
        alignas(16) std::uint8_t iv[16];
        std::memcpy(iv, kIV, sizeof iv);
        aes256_set_encrypt_key(&schedule, kKey);
        nettle_cbc_encrypt(&schedule, reinterpret_cast<nettle_cipher_func*>(aes256_encrypt), 16, iv,
                           kLength, data, data);
        benchmark::DoNotOptimize(data);
    }
}
BENCHMARK(NettleEncrypt)->Name("Nettle/Encrypt");

void CCCryptCall(benchmark::State& state, CCOperation op) {
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
BENCHMARK_CAPTURE(CCCryptCall, Decrypt, kCCDecrypt)->Name("CCCrypt/Decrypt");
BENCHMARK_CAPTURE(CCCryptCall, Encrypt, kCCEncrypt)->Name("CCCrypt/Encrypt");

}  // namespace
