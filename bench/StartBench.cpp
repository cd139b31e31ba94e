// What the library costs a program at its start: a program that does nothing, linked with the C++
// library alone, and the same one linked with this library too. The counter is the most memory that
// the program had resident, in KiB.
#include <cstdio>
#include <spawn.h>
#include <string>
#include <sys/wait.h>

#include <benchmark/benchmark.h>

extern char** environ;

namespace {

double ResidentKiB(const std::string& program) {
    std::FILE* const output = popen((program + " memory").c_str(), "r");
    long kibibytes = 0;
    const bool isRead = std::fscanf(output, "%ld", &kibibytes) == 1;
    return pclose(output) == 0 && isRead ? static_cast<double>(kibibytes) : -1;
}

void Start(benchmark::State& state, const char* program) {
    char* arguments[] = {const_cast<char*>(program), nullptr};
    for (auto _ : state) {
        pid_t process = 0;
        int status = -1;
        if (posix_spawn(&process, program, nullptr, nullptr, arguments, environ) != 0 ||
            waitpid(process, &status, 0) != process || status != 0) {
            state.SkipWithError("the program failed");
            break;
        }
    }
    state.counters["KiB"] = ResidentKiB(program);
}
BENCHMARK_CAPTURE(Start, CppLibraryAlone, START_WITHOUT)->UseRealTime();
BENCHMARK_CAPTURE(Start, WithOrvaLanguage, START_WITH)->UseRealTime();

}  // namespace
