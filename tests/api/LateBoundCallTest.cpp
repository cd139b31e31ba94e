// A late-bound call saves the vector registers to the stack. The tests that search the stack after a
// lookup rely on this.
#include <unistd.h>

#include <gtest/gtest.h>

#include "tests/support/StackAfter.h"

#ifdef __x86_64__

namespace {

TEST(LateBoundCall, SavesVectorRegistersToTheStack) {
    alignas(16) const char secret[] = "in a register...";
    const Bytes stack = StackAfter([&] {
        __asm__ volatile("movdqa %0, %%xmm1\n\tmovdqa %0, %%xmm9" : : "m"(secret) : "xmm1", "xmm9");
        getsid(0);
    });
    EXPECT_TRUE(Holds(stack, Bytes(secret, secret + 16)));
}

}  // namespace

#endif
