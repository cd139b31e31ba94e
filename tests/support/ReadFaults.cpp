#include "tests/support/ReadFaults.h"

#include <algorithm>
#include <cerrno>
#include <dlfcn.h>
#include <unistd.h>

namespace {

const ReadFaults::Plan* gPlan = nullptr;
std::size_t gCalls = 0;
ReadFaults::Progress gProgress;

template <typename Function>
Function* System(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

// Whether the read that begins now must fail.
bool ShouldFail() {
    ++gCalls;
    if (gCalls == gPlan->turn) {
        gPlan->beforeTurn(gProgress);
    }
    return gCalls >= gPlan->turn && gCalls - gPlan->turn < gPlan->failures;
}

void Note(std::size_t bytes) {
    gProgress.bytes += bytes;
    if (bytes == 0) {
        gProgress = {true, 0};
    }
}

}  // namespace

ReadFaults::ReadFaults(const Plan& plan) {
    gCalls = 0;
    gProgress = {};
    gPlan = new Plan(plan);
}

ReadFaults::~ReadFaults() {
    delete gPlan;
    gPlan = nullptr;
}

std::size_t ReadFaults::Calls() {
    return gCalls;
}

extern "C" ssize_t read(int file, void* bytes, size_t length) {
    static auto* const systems = System<ssize_t(int, void*, size_t)>("read");
    if (gPlan == nullptr) {
        return systems(file, bytes, length);
    }
    if (ShouldFail()) {
        Note(0);
        errno = gPlan->error;
        return -1;
    }
    const ssize_t got = systems(file, bytes, std::min(length, gPlan->maxBytes));
    Note(static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
    return got;
}
