// What a program's start costs in processor time and memory: a program that does nothing, without
// and with this library; and hosts that load 1,000 texts, look up a hundred of them, and exit.
//
// Usage: start_bench CORPUS LARGE [OPTION…]    CORPUS: the folder of 1,000 entries that
// make_corpora.py wrote; LARGE: the one for measuring memory; options are Google Benchmark's.
#include <cstdio>
#include <spawn.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>

#include <benchmark/benchmark.h>

namespace {

std::string Program(const char* name) {
    return std::string(PROGRAMS "/") + name;
}

double Seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
}

// The time is the processor's, including the system's part: by the clock, a program that waits for
// its turn on a busy machine would seem to start slowly.
void Start(benchmark::State& state, const char* program, std::string argument) {
    std::string path = Program(program);
    char* arguments[] = {path.data(), argument.empty() ? nullptr : argument.data(), nullptr};
    char* environment[] = {nullptr};
    for (auto _ : state) {
        pid_t process = 0;
        int status = -1;
        rusage usage = {};
        if (posix_spawn(&process, path.c_str(), nullptr, nullptr, arguments, environment) != 0 ||
            wait4(process, &status, 0, &usage) != process || status != 0) {
            state.SkipWithError("the program failed");
            break;
        }
        state.SetIterationTime(Seconds(usage.ru_utime) + Seconds(usage.ru_stime));
    }
}

// Not a time: the counter is the number of bytes that the command prints.
void Memory(benchmark::State& state, const std::string& command) {
    for (auto _ : state) {
    }
    std::FILE* const output = popen(command.c_str(), "r");
    double bytes = 0;
    const bool isRead = output != nullptr && std::fscanf(output, "%lf", &bytes) == 1;
    if (output == nullptr || pclose(output) != 0 || !isRead || bytes == 0) {
        state.SkipWithError("the program failed");
    }
    state.counters["bytes"] = bytes;
}

void RegisterStart(const char* program, const std::string& argument) {
    benchmark::RegisterBenchmark((std::string("Start/") + program).c_str(), Start, program,
                                 argument)
        ->UseManualTime();
}

void RegisterMemory(const char* kind, const char* program, const std::string& arguments) {
    benchmark::RegisterBenchmark((std::string(kind) + '/' + program).c_str(), Memory,
                                 '\'' + Program(program) + "' " + arguments)
        ->Iterations(1);
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (argc != 3) {
        std::fputs("Usage: start_bench CORPUS LARGE [OPTION…]\n", stderr);
        return 2;
    }
    for (const char* const program : {"start_without", "start_with"}) {
        RegisterStart(program, "");
        RegisterMemory("Resident", program, "memory");
    }
    for (const char* const program :
         {"host_orvalanguage", "host_gettext", "host_icu", "host_qt", "host_floor"}) {
        RegisterStart(program, argv[1]);
    }
    for (const char* const program :
         {"host_orvalanguage", "host_map", "host_glib", "host_json", "host_floor"}) {
        RegisterMemory("Heap", program, std::string("'") + argv[2] + "' memory");
    }
    benchmark::RunSpecifiedBenchmarks();
}
