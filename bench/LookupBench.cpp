// Lookups of keys in random order: this library's, and those of what a host would use instead.
//
// Usage: lookup_bench CORPUS [OPTION…]    CORPUS: a folder that make_corpora.py wrote, only one,
// since gettext keeps all that it has found in one tree; options are Google Benchmark's.
#include <cstdio>

#include <benchmark/benchmark.h>

#include "bench/Check.h"
#include "bench/Corpus.h"
#include "bench/peers/BoostLocale.h"
#include "bench/peers/GLib.h"
#include "bench/peers/Gettext.h"
#include "bench/peers/Icu.h"
#include "bench/peers/OrvaLanguage.h"
#include "bench/peers/QtTranslator.h"
#include "bench/peers/StandardMap.h"

namespace {

template <typename Source>
void LookUp(benchmark::State& state, const Corpus& corpus, bool isHit) {
    const Source source(corpus);
    const KeySequence keys(corpus.Keys(), isHit ? "" : "~");
    // What a source does at the first lookup of a key is not measured.
    for (const char* const key : keys) {
        if (Source::IsFound(source.LookUp(key), key) != isHit) {
            state.SkipWithError("a wrong answer");
            return;
        }
    }
    auto key = keys.begin();
    for (auto _ : state) {
        benchmark::DoNotOptimize(source.LookUp(*key));
        if (++key == keys.end()) {
            key = keys.begin();
        }
    }
}

template <typename Source>
void Register(const Corpus& corpus) {
    for (const bool isHit : {true, false}) {
        const std::string name = std::string("Lookup/") + (isHit ? "hit/" : "miss/") +
                                 Source::kName + '/' + corpus.Size();
        benchmark::RegisterBenchmark(name.c_str(), LookUp<Source>, corpus, isHit);
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
    RegisterEach<OrvaLanguage, Icu, BoostLocale, QtTranslator, GLib, Gettext, StandardMap>(
        Corpus(argv[1]));
    benchmark::RunSpecifiedBenchmarks();
}
