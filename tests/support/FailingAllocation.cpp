#include "tests/support/FailingAllocation.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>

namespace {

thread_local std::size_t gCountdown = 0;  // 0: none fails
thread_local bool gHasFailed = false;
thread_local std::size_t gSizeOfFirst = 0;
std::atomic<std::size_t> gLive = 0;
std::atomic<std::size_t> gLiveBytes = 0;
std::atomic<std::size_t> gPeakBytes = 0;

thread_local const char* gWatched = nullptr;
thread_local std::size_t gWatchedLength = 0;
thread_local std::size_t gWatchedBlocks = 0;
thread_local bool gHasSeen = false;

// Each block's size precedes it; the block itself stays aligned for any type, a cache line included.
constexpr std::size_t kHeader = 64;

void* Allocate(std::size_t size) {
    if (gSizeOfFirst == 0) {
        gSizeOfFirst = size;
    }
    if (gCountdown > 0 && --gCountdown == 0) {
        gHasFailed = true;
        throw std::bad_alloc();
    }
    // For an impossible size, a sanitizer's function would end the process.
    constexpr std::size_t kMaxSize = std::numeric_limits<std::ptrdiff_t>::max() - kHeader;
    void* memory = nullptr;
    if (size > kMaxSize || posix_memalign(&memory, kHeader, size + kHeader) != 0) {
        throw std::bad_alloc();
    }
    auto* const block = static_cast<char*>(memory);
    ++gLive;
    const std::size_t bytes = gLiveBytes += size;
    for (std::size_t peak = gPeakBytes;
         bytes > peak && !gPeakBytes.compare_exchange_weak(peak, bytes);) {
    }
    std::memcpy(block, &size, sizeof size);
    if (gWatched != nullptr) {
        std::memset(block + kHeader, 0, size);  // the watch searches all of it
    }
    return block + kHeader;
}

void Free(void* block) noexcept {
    if (block == nullptr) {
        return;
    }
    auto* const bytes = static_cast<char*>(block);
    std::size_t size = 0;
    std::memcpy(&size, bytes - kHeader, sizeof size);
    gLiveBytes -= size;
    if (gWatched != nullptr) {
        ++gWatchedBlocks;
        gHasSeen = gHasSeen || std::search(bytes, bytes + size, gWatched,
                                           gWatched + gWatchedLength) != bytes + size;
    }
    --gLive;
    std::free(bytes - kHeader);
}

}  // namespace

FailingAllocation::FailingAllocation(std::size_t n) {
    gCountdown = n;
    gHasFailed = false;
    gSizeOfFirst = 0;
}

std::size_t FailingAllocation::SizeOfFirst() {
    return gSizeOfFirst;
}

FailingAllocation::~FailingAllocation() {
    gCountdown = 0;
}

bool FailingAllocation::HasFailed() {
    return gHasFailed;
}

FreedMemoryWatch::FreedMemoryWatch(const void* bytes, std::size_t length) {
    gWatched = static_cast<const char*>(bytes);
    gWatchedLength = length;
    gWatchedBlocks = 0;
    gHasSeen = false;
}

FreedMemoryWatch::~FreedMemoryWatch() {
    gWatched = nullptr;
}

bool FreedMemoryWatch::HasSeen() {
    return gHasSeen;
}

std::size_t FreedMemoryWatch::Blocks() {
    return gWatchedBlocks;
}

AllocationPeak::AllocationPeak() : m_before(gLiveBytes) {
    gPeakBytes = m_before;
}

std::size_t AllocationPeak::Bytes() const {
    return gPeakBytes - m_before;
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
// The standard library's own calls the one above, but a sanitizer's would not.
void* operator new(std::size_t size, const std::nothrow_t& /*isNothrow*/) noexcept {
    try {
        return Allocate(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
    if (static_cast<std::size_t>(alignment) > kHeader) {
        throw std::bad_alloc();
    }
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
void operator delete[](void* block, std::align_val_t) noexcept {
    Free(block);
}

// If memory runs out, a lookup leaks its buffer on purpose. Do not report that.
extern "C" const char* __lsan_default_suppressions();  // NOLINT(bugprone-reserved-identifier)
extern "C" const char* __lsan_default_suppressions() {
    return "leak:ZuGetLocalizedString";
}
