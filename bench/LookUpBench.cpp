// A look-up of keys in random order: this library's, and that of what a host would use instead.
//
// Usage: look_up_bench FOLDER [OPTION…]    FOLDER: what make_corpora.py wrote, of which each corpus
// is looked through; options are Google Benchmark's.
#include <cstdio>
#include <filesystem>

#include <benchmark/benchmark.h>

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
    // What a source does at the first look-up of a key is not measured.
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

// Every source is to have the same texts, or the comparison is of nothing.
template <typename Source>
void Check(const Corpus& corpus, const StandardMap& expected) {
    const Source source(corpus);
    for (const std::string& key : corpus.Keys()) {
        const auto text = source.LookUp(key.c_str());
        if (!Source::IsFound(text, key.c_str()) ||
            Source::Utf8(text) != expected.LookUp(key.c_str())) {
            throw std::runtime_error(std::string(Source::kName) + " has another text of " + key);
        }
    }
}

template <typename Source>
void Register(const Corpus& corpus) {
    for (const bool isHit : {true, false}) {
        const std::string name = std::string("LookUp/") + (isHit ? "hit/" : "miss/") +
                                 Source::kName + '/' + corpus.Size();
        benchmark::RegisterBenchmark(name.c_str(), LookUp<Source>, corpus, isHit);
    }
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (argc != 2) {
        std::fputs("Usage: look_up_bench FOLDER [OPTION…]\n", stderr);
        return 2;
    }
    for (const auto& folder : std::filesystem::directory_iterator(argv[1])) {
        const Corpus corpus(folder.path());
        const StandardMap expected(corpus);
        Check<OrvaLanguage>(corpus, expected);
        Check<Icu>(corpus, expected);
        Check<BoostLocale>(corpus, expected);
        Check<QtTranslator>(corpus, expected);
        Check<GLib>(corpus, expected);
        Check<Gettext>(corpus, expected);
        Register<OrvaLanguage>(corpus);
        Register<Icu>(corpus);
        Register<BoostLocale>(corpus);
        Register<QtTranslator>(corpus);
        Register<GLib>(corpus);
        Register<Gettext>(corpus);
        Register<StandardMap>(corpus);
    }
    benchmark::RunSpecifiedBenchmarks();
}
