#include "tests/support/FailingAllocation.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

thread_local std::size_t gCountdown = 0;  // 0: nothing is to fail
thread_local bool gHasFailed = false;
std::atomic<std::size_t> gLive = 0;

void* Allocate(std::size_t size) {
    if (gCountdown > 0 && --gCountdown == 0) {
        gHasFailed = true;
        throw std::bad_alloc();
    }
    void* const block = std::malloc(size == 0 ? 1 : size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    ++gLive;
    return block;
}

void Free(void* block) noexcept {
    if (block != nullptr) {
        --gLive;
        std::free(block);
    }
}

}  // namespace

FailingAllocation::FailingAllocation(std::size_t n) {
    gCountdown = n;
    gHasFailed = false;
}

FailingAllocation::~FailingAllocation() {
    gCountdown = 0;
}

bool FailingAllocation::HasFailed() {
    return gHasFailed;
}

std::size_t LiveAllocations() {
    return gLive;
}

void* operator new(std::size_t size) {
    return Allocate(size);
}
void* operator new[](std::size_t size) {
    return Allocate(size);
}
void operator delete(void* block) noexcept {
    Free(block);
}
void operator delete[](void* block) noexcept {
    Free(block);
}
void operator delete(void* block, std::size_t) noexcept {
    Free(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    Free(block);
}
