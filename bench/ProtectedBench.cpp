// What looking up a protected text costs: the first time compared with its floor, every later time
// with a plain text in the same table. Also what protecting a file of 10,000 texts costs.
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include <OrvaLanguage/OrvaLanguage.h>
#include <benchmark/benchmark.h>

#include "bench/Corpus.h"
#include "platform/CommonCryptor.h"
#include "support/TemporaryBundle.h"
#include "tools/orva-strings/document/ProtectedEntries.h"
#include "tools/orva-strings/protection/MasterKey.h"
#include "tools/orva-strings/protection/ProtectedText.h"

namespace {

constexpr int kLookups = 2000;  // per run; each key has only one first lookup
constexpr int kEntries = 1000;  // the first ones, which are looked up repeatedly
constexpr std::size_t kTextLength = 64;

std::string KeyOf(int i) {
    return "IDE_TEXT_" + std::to_string(i);
}

std::string PlainKeyOf(int i) {
    return "MENU_TEXT" + std::to_string(i);
}

std::string Text(int i) {
    std::string text = "Text number " + std::to_string(i);
    text.resize(kTextLength, '.');
    return text;
}

// A protected entry and a plain one for each number from first to first + count - 1.
std::string File(int first, int count) {
    const MasterKey key = MasterKey::BuiltIn();
    const ProtectionKeys keys = key.Derive();
    std::string file = "QVLANG=en\n";
    for (int i = first; i < first + count; ++i) {
        file += KeyOf(i) + "=\"" + EncodeProtectedText(keys, Text(i)) + "\"\n";
        file += PlainKeyOf(i) + "=\"" + Text(i) + "\"\n";
    }
    return file;
}

void FirstLookup(benchmark::State& state) {
    static int done = kEntries;
    const TemporaryBundle bundle;
    bundle.Write("x", File(done, kLookups));
    ZuLoadStrings("en", "x", bundle.Get());
    std::vector<std::string> keys;
    for (int i = 0; i < kLookups; ++i) {
        keys.push_back(KeyOf(done++));
    }
    auto key = keys.begin();
    for (auto _ : state) {
        if (ZuGetLocalizedString((key++)->c_str()) == nullptr) {
            state.SkipWithError("no answer");
            break;
        }
    }
}
BENCHMARK(FirstLookup)->Name("Lookup/First")->Iterations(kLookups);

// The floor: reading the digits with "%x" and the cipher calls, each twice, and nothing else. The
// digits are those of real entries: random ones take longer to read than equal ones.
void FirstLookupFloor(benchmark::State& state) {
    const MasterKey builtIn = MasterKey::BuiltIn();
    const ProtectionKeys keys = builtIn.Derive();
    std::vector<std::string> texts;
    for (int i = 0; i < kLookups; ++i) {
        texts.push_back(EncodeProtectedText(keys, Text(i)));
    }
    auto text = texts.begin();
    std::uint8_t data[kTextLength + 32] = {};
    const std::uint8_t key[32] = {1};
    const std::uint8_t iv[16] = {2};
    std::size_t moved = 0;
    const auto crypt = [&](CCOperation op, CCOptions options, std::size_t length) {
        CCCrypt(op, kCCAlgorithmAES128, options, key, sizeof key, iv, data, length, data, length,
                &moved);
    };
    for (auto _ : state) {
        const std::string& digits = *text++;
        for (int run = 0; run < 2; ++run) {
            char group[9] = {};
            unsigned value = 0;
            for (std::size_t i = 0; i < digits.size(); i += 8) {
                std::memcpy(group, digits.data() + i, 8);
                benchmark::DoNotOptimize(std::sscanf(group, "%x", &value));
            }
            crypt(kCCEncrypt, kCCOptionECBMode, 80);  // the keys
            crypt(kCCDecrypt, 0, sizeof data);        // the size
            crypt(kCCDecrypt, 0, sizeof data);        // the text
            crypt(kCCEncrypt, 0, sizeof data);        // the tag
        }
        benchmark::DoNotOptimize(data);
    }
}
BENCHMARK(FirstLookupFloor)->Name("Lookup/FirstFloor")->Iterations(kLookups);

void LookUp(benchmark::State& state, bool isProtected) {
    const TemporaryBundle bundle;
    bundle.Write("x", File(0, kEntries));
    ZuLoadStrings("en", "x", bundle.Get());
    std::vector<std::string> keys;
    for (int i = 0; i < kEntries; ++i) {
        keys.push_back(isProtected ? KeyOf(i) : PlainKeyOf(i));
    }
    const KeySequence sequence(keys, Draws(keys.size()));
    for (const char* const each : sequence) {
        if (ZuGetLocalizedString(each) == nullptr) {  // now it is cached
            state.SkipWithError("no answer");
            return;
        }
    }
    auto key = sequence.begin();
    for (auto _ : state) {
        benchmark::DoNotOptimize(ZuGetLocalizedString(*key));
        if (++key == sequence.end()) {
            key = sequence.begin();
        }
    }
}
BENCHMARK_CAPTURE(LookUp, Cached, true)->Name("Lookup/Cached");
BENCHMARK_CAPTURE(LookUp, Plain, false)->Name("Lookup/Plain");

void ProtectFile(benchmark::State& state) {
    const ProtectionKeys keys = MasterKey::BuiltIn().Derive();
    std::string file = "QVLANG=en\n";
    for (int i = 0; i < 10'000; ++i) {
        file += KeyOf(i) + "=\"" + Text(i) + "\"\n";
    }
    for (auto _ : state) {
        StringsDocument document(file);
        if (HasError(ProtectEntries(document, keys, false))) {
            state.SkipWithError("findings");
        }
        benchmark::DoNotOptimize(document.Bytes());
    }
}
BENCHMARK(ProtectFile);

}  // namespace
