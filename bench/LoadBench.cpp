// Loads: this library's, and those of what a host would use instead; then the cost of skipping the
// sections before the wanted one, and how the time of a load grows with the table.
//
// Usage: load_bench CORPUS… [OPTION…]    CORPUS: a folder that make_corpora.py wrote; options are
// Google Benchmark's.
#include <cstdio>

#include <benchmark/benchmark.h>

#include "bench/Check.h"
#include "bench/Corpus.h"
#include "bench/peers/GLib.h"
#include "bench/peers/NlohmannJson.h"
#include "bench/peers/OrvaLanguage.h"
#include "bench/peers/StandardMap.h"
#include "support/TemporaryBundle.h"

namespace {

template <typename Source>
void Load(benchmark::State& state, const Corpus& corpus) {
    for (auto _ : state) {
        const Source source(corpus);
        const char* const last = corpus.Keys().back().c_str();
        if (!Source::IsFound(source.LookUp(last), last)) {
            state.SkipWithError("a text is missing");
        }
    }
    state.counters["entries"] = static_cast<double>(corpus.Keys().size());
}

template <typename Source>
void Register(const Corpus& corpus) {
    const std::string name = std::string("Load/") + Source::kName + '/' + corpus.Size();
    benchmark::RegisterBenchmark(name.c_str(), Load<Source>, corpus);
}

template <typename... Sources>
void RegisterEach(const Corpus& corpus) {
    const StandardMap expected(corpus);
    (Check<Sources>(corpus, expected), ...);
    (Register<Sources>(corpus), ...);
}

constexpr int kSections = 10;

std::string FileOf(int sections, int entries) {
    std::string file;
    for (int section = 0; section < sections; ++section) {
        file += "QVLANG=" + std::to_string(section) + '\n';
        for (int i = 0; i < entries; ++i) {
            const std::string number = std::to_string(i);
            file += "MENU_ENTRY_" + std::string(8 - number.size(), '0') + number +
                    "_TXT=\"Text number " + number + " of this section\"\n";
        }
    }
    return file;
}

// Arguments: entries in each of ten sections, which one is loaded.
void LoadSection(benchmark::State& state) {
    const auto entries = static_cast<int>(state.range(0));
    const std::string section = std::to_string(state.range(1));
    const std::string file = FileOf(kSections, entries);
    const TemporaryBundle bundle;
    bundle.Write("x", file);
    for (auto _ : state) {
        if (ZuLoadStrings(section.c_str(), "x", bundle.Get()) != entries + 1) {
            state.SkipWithError("the load failed");
        }
    }
    // How many bytes precede the section.
    state.counters["skipped"] = static_cast<double>(file.find("QVLANG=" + section));
}
BENCHMARK(LoadSection)->Args({10'000, 0})->Args({10'000, kSections - 1});

// Argument: entries.
void LoadGrowing(benchmark::State& state) {
    const auto entries = static_cast<int>(state.range(0));
    const TemporaryBundle bundle;
    bundle.Write("x", FileOf(1, entries));
    for (auto _ : state) {
        if (ZuLoadStrings("", "x", bundle.Get()) != entries + 1) {
            state.SkipWithError("the load failed");
        }
    }
}
BENCHMARK(LoadGrowing)->RangeMultiplier(10)->Range(1000, 1'000'000);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (argc < 2) {
        std::fputs("Usage: load_bench CORPUS… [OPTION…]\n", stderr);
        return 2;
    }
    for (int i = 1; i < argc; ++i) {
        RegisterEach<OrvaLanguage, StandardMap, GLib, NlohmannJson>(Corpus(argv[i]));
    }
    benchmark::RunSpecifiedBenchmarks();
}
