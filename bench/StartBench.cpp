// What a program costs at its start, in time and memory: one that does nothing, without this library
// and with it; and hosts that load 1,000 texts, look a hundred of them up, and exit.
//
// Usage: start_bench FOLDER [OPTION…]    FOLDER: what make_corpora.py wrote, the size 1000 and for
// the memory also 10000; options are Google Benchmark's.
#include <cstdio>
#include <filesystem>
#include <spawn.h>
#include <string>
#include <sys/wait.h>

#include <benchmark/benchmark.h>

namespace {

std::string Program(const char* name) {
    return std::string(PROGRAMS "/") + name;
}

// Runs a program that prints a number.
double NumberFrom(const std::string& command) {
    std::FILE* const output = popen(command.c_str(), "r");
    double number = 0;
    const bool isRead = output != nullptr && std::fscanf(output, "%lf", &number) == 1;
    return output != nullptr && pclose(output) == 0 && isRead ? number : 0;
}

void Start(benchmark::State& state, const char* program, std::string argument) {
    std::string path = Program(program);
    char* arguments[] = {path.data(), argument.empty() ? nullptr : argument.data(), nullptr};
    char* environment[] = {nullptr};
    for (auto _ : state) {
        pid_t process = 0;
        int status = -1;
        if (posix_spawn(&process, path.c_str(), nullptr, nullptr, arguments, environment) != 0 ||
            waitpid(process, &status, 0) != process || status != 0) {
            state.SkipWithError("the program failed");
            break;
        }
    }
}

// Not a time: the counter is the number of bytes that the command prints.
void Memory(benchmark::State& state, const std::string& command) {
    for (auto _ : state) {
    }
    const double bytes = NumberFrom(command);
    if (bytes == 0) {
        state.SkipWithError("the program failed");
    }
    state.counters["bytes"] = bytes;
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (argc != 2) {
        std::fputs("Usage: start_bench FOLDER [OPTION…]\n", stderr);
        return 2;
    }
    const std::string corpora = argv[1];
    for (const char* const name : {"start_without", "start_with"}) {
        benchmark::RegisterBenchmark((std::string("Start/") + name).c_str(), Start, name, "")
            ->UseRealTime();
        benchmark::RegisterBenchmark((std::string("Resident/") + name).c_str(), Memory,
                                     Program(name) + " memory")
            ->Iterations(1);
    }
    for (const char* const name : {"host_orvalanguage", "host_gettext", "host_icu", "host_qt"}) {
        benchmark::RegisterBenchmark((std::string("Start/") + name).c_str(), Start, name,
                                     corpora + "/1000")
            ->UseRealTime();
    }
    const std::string large = corpora + "/10000";
    if (std::filesystem::exists(large)) {
        for (const char* const name : {"host_orvalanguage", "host_map"}) {
            benchmark::RegisterBenchmark((std::string("Heap/") + name).c_str(), Memory,
                                         Program(name) + ' ' + large + " 0")
                ->Iterations(1);
        }
    }
    benchmark::RunSpecifiedBenchmarks();
}
