// Loads: this library's, and those of what a host would use instead, also with the processor's
// caches evicted; then the cost of skipping the sections before the wanted one, and how the time of a
// load grows with the table.
//
// Usage: load_bench CORPUS… [OPTION…]    CORPUS: a folder that make_corpora.py wrote; options are
// Google Benchmark's.
#include <cstdio>
#include <ctime>

#include <benchmark/benchmark.h>

#include "bench/Caches.h"
#include "bench/Check.h"
#include "bench/Corpus.h"
#include "bench/peers/Floor.h"
#include "bench/peers/GLib.h"
#include "bench/peers/NlohmannJson.h"
#include "bench/peers/OrvaLanguage.h"
#include "bench/peers/StandardMap.h"
#include "support/TemporaryBundle.h"

namespace {

template <typename Source>
bool CanLoad(const Corpus& corpus) {
    const Source source(corpus);
    const char* const last = corpus.Keys().back().c_str();
    return Source::IsFound(source.LookUp(last), last);
}

template <typename Source>
void Load(benchmark::State& state, const Corpus& corpus) {
    for (auto _ : state) {
        if (!CanLoad<Source>(corpus)) {
            state.SkipWithError("a text is missing");
        }
    }
    state.counters["entries"] = static_cast<double>(corpus.Keys().size());
}

double ProcessorSeconds() {
    timespec time = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

// The file stays in the system's memory.
template <typename Source>
void LoadCold(benchmark::State& state, const Corpus& corpus) {
    for (auto _ : state) {
        EvictCaches();
        const double start = ProcessorSeconds();
        if (!CanLoad<Source>(corpus)) {
            state.SkipWithError("a text is missing");
        }
        state.SetIterationTime(ProcessorSeconds() - start);
    }
}

template <typename Source>
void Register(const Corpus& corpus) {
    constexpr int kLoads = 5;
    const std::string name = std::string("/") + Source::kName + '/' + corpus.Size();
    benchmark::RegisterBenchmark(("Load" + name).c_str(), Load<Source>, corpus);
    benchmark::RegisterBenchmark(("LoadCold" + name).c_str(), LoadCold<Source>, corpus)
        ->Iterations(kLoads)
        ->UseManualTime();
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

// Loads a section of the file "x", and says whether it has that many entries.
using Loader = bool (*)(const TemporaryBundle&, const std::string& section, int entries);

bool LoadWithLibrary(const TemporaryBundle& bundle, const std::string& section, int entries) {
    return ZuLoadStrings(section.c_str(), "x", bundle.Get()) == entries + 1;  // and its header
}

bool LoadWithFloor(const TemporaryBundle& bundle, const std::string& section, int entries) {
    return Floor(bundle.Resources() / "x", section).Size() == static_cast<std::size_t>(entries);
}

// Arguments: entries in each of ten sections, which one is loaded.
void LoadSection(benchmark::State& state, Loader load) {
    const auto entries = static_cast<int>(state.range(0));
    const std::string section = std::to_string(state.range(1));
    const std::string file = FileOf(kSections, entries);
    const TemporaryBundle bundle;
    bundle.Write("x", file);
    for (auto _ : state) {
        if (!load(bundle, section, entries)) {
            state.SkipWithError("the load failed");
        }
    }
    // How many bytes precede the section.
    state.counters["skipped"] = static_cast<double>(file.find("QVLANG=" + section));
}

// Argument: entries.
void LoadGrowing(benchmark::State& state, Loader load) {
    const auto entries = static_cast<int>(state.range(0));
    const TemporaryBundle bundle;
    bundle.Write("x", FileOf(1, entries));
    for (auto _ : state) {
        if (!load(bundle, "0", entries)) {
            state.SkipWithError("the load failed");
        }
    }
}

void RegisterGenerated(const std::string& name, Loader load) {
    benchmark::RegisterBenchmark(("LoadSection/" + name).c_str(), LoadSection, load)
        ->Args({10'000, 0})
        ->Args({10'000, kSections - 1});
    benchmark::RegisterBenchmark(("LoadGrowing/" + name).c_str(), LoadGrowing, load)
        ->RangeMultiplier(10)
        ->Range(1000, 1'000'000);
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (argc < 2) {
        std::fputs("Usage: load_bench CORPUS… [OPTION…]\n", stderr);
        return 2;
    }
    for (int i = 1; i < argc; ++i) {
        RegisterEach<OrvaLanguage, StandardMap, GLib, NlohmannJson, Floor>(Corpus(argv[i]));
    }
    RegisterGenerated(OrvaLanguage::kName, LoadWithLibrary);
    RegisterGenerated(Floor::kName, LoadWithFloor);
    benchmark::RunSpecifiedBenchmarks();
}
