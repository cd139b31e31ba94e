// How long a load and a plain look-up take, through the built library.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

#include <OrvaLanguage/KorString.h>
#include <OrvaLanguage/OrvaLanguage.h>
#include <benchmark/benchmark.h>

namespace fs = std::filesystem;

namespace {

constexpr int kSections = 10;
constexpr char kFile[] = "bench.strings";

std::string Key(int i) {
    std::string number = std::to_string(i);
    return "MENU_ENTRY_" + std::string(8 - number.size(), '0') + number + "_TXT";  // 23 bytes
}

// A bundle with one strings file of ten sections, "0" to "9", each with the same keys; removed at
// the end.
class Bundle {
public:
    explicit Bundle(int entries) {
        std::string name = (fs::temp_directory_path() / "orva-bench-XXXXXX").string();
        m_folder = mkdtemp(name.data());
        std::ofstream file(m_folder / kFile);
        for (int section = 0; section < kSections; ++section) {
            file << "QVLANG=" << section << '\n';
            for (int i = 0; i < entries; ++i) {
                file << Key(i) << "=\"Text number " << i << " of section " << section << "\"\n";
            }
        }
        file.close();
        m_bundle = ZuOpenBundle(m_folder.c_str());
    }
    ~Bundle() {
        ZuCloseBundle(m_bundle);
        fs::remove_all(m_folder);
    }
    Bundle(const Bundle&) = delete;
    Bundle& operator=(const Bundle&) = delete;

    int Load(int section) const {
        return ZuLoadStrings(std::to_string(section).c_str(), kFile, m_bundle);
    }

    std::size_t FileSize() const { return fs::file_size(m_folder / kFile); }

private:
    fs::path m_folder;
    __CFBundle* m_bundle = nullptr;
};

// Arguments: entries in a section, which section.
void Load(benchmark::State& state) {
    const auto entries = static_cast<int>(state.range(0));
    const auto section = static_cast<int>(state.range(1));
    const Bundle bundle(entries);
    for (auto _ : state) {
        if (bundle.Load(section) != entries + 1) {
            state.SkipWithError("the load failed");
        }
    }
    // The sections have nearly the same length.
    const auto bytes = static_cast<std::int64_t>(bundle.FileSize()) * (section + 1) / kSections;
    state.SetBytesProcessed(state.iterations() * bytes);
}
BENCHMARK(Load)
    ->ArgNames({"entries", "section"})
    ->Args({10'000, 0})
    ->Args({10'000, kSections - 1})
    ->Unit(benchmark::kMillisecond);

// The keys first to first + count - 1 in random order.
std::vector<std::string> ShuffledKeys(int first, int count) {
    std::vector<std::string> keys;
    for (int i = first; i < first + count; ++i) {
        keys.push_back(Key(i));
    }
    std::shuffle(keys.begin(), keys.end(), std::mt19937(1));  // NOLINT: the same order at every run
    return keys;
}

void LookUpAll(benchmark::State& state, const std::vector<std::string>& keys, bool isThere) {
    std::size_t next = 0;
    for (auto _ : state) {
        const char* const text = KorGetLocalizedString(keys[next].c_str());
        if ((text != nullptr) != isThere) {
            state.SkipWithError("a wrong answer");
        }
        next = next + 1 == keys.size() ? 0 : next + 1;
    }
    state.SetItemsProcessed(state.iterations());
}

// Argument: entries in the table.
void LookUpHit(benchmark::State& state) {
    const auto entries = static_cast<int>(state.range(0));
    Bundle(entries).Load(0);
    LookUpAll(state, ShuffledKeys(0, entries), true);
}
BENCHMARK(LookUpHit)->ArgName("entries")->Arg(100)->Arg(1'000)->Arg(10'000)->Arg(100'000);

void LookUpMiss(benchmark::State& state) {
    const auto entries = static_cast<int>(state.range(0));
    Bundle(entries).Load(0);
    LookUpAll(state, ShuffledKeys(entries, entries), false);
}
BENCHMARK(LookUpMiss)->ArgName("entries")->Arg(100)->Arg(1'000)->Arg(10'000)->Arg(100'000);

}  // namespace
