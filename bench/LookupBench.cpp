// Lookups of keys in random order: this library's, and those of what a host would use instead. Warm,
// again and again; and cold, each key once after the processor's caches have been evicted.
//
// Usage: lookup_bench CORPUS [OPTION…]    CORPUS: a folder that make_corpora.py wrote, only one,
// since gettext keeps all that it has found in one tree; options are Google Benchmark's.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <iterator>

#include <benchmark/benchmark.h>

#include "bench/Caches.h"
#include "bench/Check.h"
#include "bench/Corpus.h"
#include "bench/peers/BoostLocale.h"
#include "bench/peers/Floor.h"
#include "bench/peers/GLib.h"
#include "bench/peers/Gettext.h"
#include "bench/peers/Icu.h"
#include "bench/peers/OrvaLanguage.h"
#include "bench/peers/QtTranslator.h"
#include "bench/peers/StandardMap.h"

namespace {

// Also does what a source does at the first lookup of a key, which is not measured.
template <typename Source>
bool AreAll(const Source& source, const KeySequence& keys, bool isHit) {
    return std::all_of(keys.begin(), keys.end(), [&](const char* key) {
        return Source::IsFound(source.LookUp(key), key) == isHit;
    });
}

const char* EndingFor(bool isHit) {
    return isHit ? "" : "~";
}

template <typename Source>
void LookUp(benchmark::State& state, const Corpus& corpus, bool isHit) {
    const Source source(corpus);
    const KeySequence keys(corpus.Keys(), Draws(corpus.Keys().size()), EndingFor(isHit));
    if (!AreAll(source, keys, isHit)) {
        state.SkipWithError("a wrong answer");
        return;
    }
    auto key = keys.begin();
    for (auto _ : state) {
        benchmark::DoNotOptimize(source.LookUp(*key));
        if (++key == keys.end()) {
            key = keys.begin();
        }
    }
}

constexpr std::size_t kBatches = 10;
constexpr std::size_t kMostInBatch = 1000;

// An iteration is a batch of lookups, after the caches have been evicted; its time is that of one
// lookup. It is read from a clock: to ask for processor time takes as long as several lookups. The
// first key is in no batch: looking it up fetches the code, whose share would depend on the batch.
template <typename Source>
void LookUpCold(benchmark::State& state, const Corpus& corpus, bool isHit) {
    const Source source(corpus);
    const KeySequence keys(corpus.Keys(), EachOnce(corpus.Keys().size()), EndingFor(isHit));
    if (!AreAll(source, keys, isHit)) {
        state.SkipWithError("a wrong answer");
        return;
    }
    const std::size_t batch = std::min((corpus.Keys().size() - 1) / kBatches, kMostInBatch);
    auto key = std::next(keys.begin());
    for (auto _ : state) {
        const auto end = std::next(key, static_cast<std::ptrdiff_t>(batch));
        EvictCaches();
        for (auto next = key; next != end; ++next) {  // a host's own keys are at hand
            benchmark::DoNotOptimize(std::strlen(*next));
        }
        benchmark::DoNotOptimize(source.LookUp(*keys.begin()));
        const auto start = std::chrono::steady_clock::now();
        for (; key != end; ++key) {
            benchmark::DoNotOptimize(source.LookUp(*key));
        }
        const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
        state.SetIterationTime(time.count() / static_cast<double>(batch));
    }
}

template <typename Source>
void Register(const Corpus& corpus) {
    for (const bool isHit : {true, false}) {
        const std::string name =
            std::string(isHit ? "/hit/" : "/miss/") + Source::kName + '/' + corpus.Size();
        benchmark::RegisterBenchmark(("Lookup" + name).c_str(), LookUp<Source>, corpus, isHit);
        benchmark::RegisterBenchmark(("LookupCold" + name).c_str(), LookUpCold<Source>, corpus,
                                     isHit)
            ->Iterations(kBatches)
            ->UseManualTime();
    }
}

template <typename... Sources>
void RegisterEach(const Corpus& corpus) {
    const StandardMap expected(corpus);
    (Check<Sources>(corpus, expected), ...);
    (Register<Sources>(corpus), ...);
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (argc != 2) {
        std::fputs("Usage: lookup_bench CORPUS [OPTION…]\n", stderr);
        return 2;
    }
    RegisterEach<OrvaLanguage, Icu, BoostLocale, QtTranslator, GLib, Gettext, StandardMap, Floor>(
        Corpus(argv[1]));
    benchmark::RunSpecifiedBenchmarks();
}
