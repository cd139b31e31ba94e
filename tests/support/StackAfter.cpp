#include "tests/support/StackAfter.h"

#include <algorithm>
#include <cstring>
#include <pthread.h>
#include <sys/mman.h>

#include <gtest/gtest.h>

namespace {

constexpr std::size_t kStackSize = std::size_t{8} << 20U;  // sanitizers need much of it
constexpr std::size_t kWindow = 8;  // this many equal bytes in a row are no accident

void* Call(void* call) {
    (*static_cast<const std::function<void()>*>(call))();
    return nullptr;
}

}  // namespace

Bytes StackAfter(const std::function<void()>& call) {
    void* const memory =
        mmap(nullptr, kStackSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) {
        ADD_FAILURE() << "no memory for a stack";
        return {};
    }
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstack(&attributes, memory, kStackSize);
    pthread_t thread = {};
    auto argument = call;
    const bool isRunning = pthread_create(&thread, &attributes, Call, &argument) == 0;
    EXPECT_TRUE(isRunning && pthread_join(thread, nullptr) == 0);
    pthread_attr_destroy(&attributes);
    const auto* const bytes = static_cast<const std::uint8_t*>(memory);
    const auto* const lowest =
        std::find_if(bytes, bytes + kStackSize, [](std::uint8_t byte) { return byte != 0; });
    EXPECT_NE(lowest, bytes + kStackSize) << "the thread ran on another stack";
    Bytes stack(lowest, bytes + kStackSize);
    munmap(memory, kStackSize);
    return stack;
}

bool Holds(const Bytes& memory, const Bytes& secret) {
    for (std::size_t i = 0; i + kWindow <= secret.size(); i += kWindow) {
        if (memmem(memory.data(), memory.size(), secret.data() + i, kWindow) != nullptr) {
            return true;
        }
    }
    return false;
}
