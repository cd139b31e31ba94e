// What protected texts cost: the first look-up of one, against its floor, which it is to stay within
// twice of; every later one, against a plain look-up; and protecting a file of 10,000 of them.
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include <OrvaLanguage/OrvaLanguage.h>
#include <benchmark/benchmark.h>

#include "platform/CommonCryptor.h"
#include "tools/orva-strings/Commands.h"
#include "tools/orva-strings/Key.h"
#include "tools/orva-strings/ProtectedText.h"
#include "tools/orva-strings/TemporaryBundle.h"

namespace {

constexpr int kLookUps = 2000;  // in a run; each key has only one first look-up
constexpr std::size_t kTextLength = 64;

std::string KeyOf(int i) {
    return "IDE_TEXT_" + std::to_string(i);
}

std::string Text(int i) {
    std::string text = "Text number " + std::to_string(i);
    text.resize(kTextLength, '.');
    return text;
}

// Entries of the keys first to first + count - 1.
std::string File(int first, int count, bool isStored) {
    const Key key = Key::BuiltIn();
    const ProtectionKeys keys = key.Derive();
    std::string file = "QVLANG=en\nPLAIN_TEXT=\"a plain text\"\n";
    for (int i = first; i < first + count; ++i) {
        const std::string text = Text(i);
        file += KeyOf(i) + "=\"" + (isStored ? EncodeProtectedText(keys, text) : text) + "\"\n";
    }
    return file;
}

void LookUpFirst(benchmark::State& state) {
    static int done = 0;
    const TemporaryBundle bundle;
    bundle.Write("x", File(done, kLookUps, true));
    ZuLoadStrings("en", "x", bundle.Get());
    std::vector<std::string> keys;
    for (int i = 0; i < kLookUps; ++i) {
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
BENCHMARK(LookUpFirst)->Name("LookUp/First")->Iterations(kLookUps);

// Twice the reading of the digits by "%x" and the cipher calls, and nothing else. The digits are
// those of real entries: random ones take longer to read than a text of all the same.
void LookUpFirstFloor(benchmark::State& state) {
    const Key builtIn = Key::BuiltIn();
    const ProtectionKeys keys = builtIn.Derive();
    std::vector<std::string> texts;
    for (int i = 0; i < kLookUps; ++i) {
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
BENCHMARK(LookUpFirstFloor)->Name("LookUp/FirstFloor")->Iterations(kLookUps);

void LookUp(benchmark::State& state, const char* key) {
    const TemporaryBundle bundle;
    bundle.Write("x", File(0, 1000, true));
    ZuLoadStrings("en", "x", bundle.Get());
    for (auto _ : state) {
        benchmark::DoNotOptimize(ZuGetLocalizedString(key));
    }
}
BENCHMARK_CAPTURE(LookUp, Cached, "IDE_TEXT_7");
BENCHMARK_CAPTURE(LookUp, Plain, "PLAIN_TEXT");

void ProtectFile(benchmark::State& state) {
    const Key key = Key::BuiltIn();
    const std::string file = File(0, static_cast<int>(state.range(0)), false);
    for (auto _ : state) {
        StringsDocument document(file);
        if (!Protect(document, key.Derive(), false).empty()) {
            state.SkipWithError("findings");
        }
        benchmark::DoNotOptimize(document.Bytes());
    }
}
BENCHMARK(ProtectFile)->ArgName("entries")->Arg(10'000)->Unit(benchmark::kMillisecond);

}  // namespace
