// What the library costs a program at its start: a program that does nothing, linked with the C++
// library alone, and the same one linked with this library too, which is to cost less than 0.5 ms
// and 1 MB more. The counter is the most memory that the program had resident.
#include <cstdio>
#include <spawn.h>
#include <string>
#include <sys/wait.h>

#include <benchmark/benchmark.h>

namespace {

// In bytes; 0 if the program does not say.
double ResidentMemory(const std::string& program) {
    std::FILE* const output = popen((program + " memory").c_str(), "r");
    long kibibytes = 0;
    const bool isRead = output != nullptr && std::fscanf(output, "%ld", &kibibytes) == 1;
    return output != nullptr && pclose(output) == 0 && isRead
               ? 1024 * static_cast<double>(kibibytes)
               : 0;
}

void Start(benchmark::State& state, const char* program) {
    char* arguments[] = {const_cast<char*>(program), nullptr};
    char* environment[] = {nullptr};
    for (auto _ : state) {
        pid_t process = 0;
        int status = -1;
        if (posix_spawn(&process, program, nullptr, nullptr, arguments, environment) != 0 ||
            waitpid(process, &status, 0) != process || status != 0) {
            state.SkipWithError("the program failed");
            break;
        }
    }
    const double memory = ResidentMemory(program);
    if (memory == 0) {
        state.SkipWithError("the program does not say how much memory it has");
    }
    state.counters["memory"] =
        benchmark::Counter(memory, benchmark::Counter::kDefaults, benchmark::Counter::kIs1024);
}
BENCHMARK_CAPTURE(Start, CppLibraryAlone, START_WITHOUT)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Start, WithOrvaLanguage, START_WITH)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
