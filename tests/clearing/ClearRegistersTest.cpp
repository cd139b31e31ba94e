#include <gtest/gtest.h>

#include "clearing/ClearRegisters.h"

// Compiled with its callers, so that the compiler sees what it changes, as at link time.
#include "clearing/ClearRegisters.cpp"  // NOLINT(bugprone-suspicious-include)

#ifdef __x86_64__
#include <algorithm>
#include <cstdint>
#include <iterator>

namespace {

struct Registers {
    std::uint64_t general[9];
    std::uint64_t vectors[16][4];
};

}  // namespace

// Fills the registers with 32 bytes, calls a function, and saves what they hold afterwards.
extern "C" void FillCallAndSave(const std::uint64_t (&bytes)[4], void (*function)(),
                                Registers& registers) __asm__("FillCallAndSave");

__asm__(R"(
    .text
FillCallAndSave:
    push %rbx
    push %r12
    push %r13
    mov %rdi, %r12
    mov %rsi, %r13
    mov %rdx, %rbx
    .irp n, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15
    vmovdqu (%r12), %ymm\n
    .endr
    .irp name, rax, rcx, rdx, rsi, rdi, r8, r9, r10, r11
    mov (%r12), %\name
    .endr
    call *%r13
    .irp name, rax, rcx, rdx, rsi, rdi, r8, r9, r10, r11
    mov %\name, (%rbx)
    add $8, %rbx
    .endr
    .irp n, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15
    vmovdqu %ymm\n, (%rbx)
    add $32, %rbx
    .endr
    vzeroupper
    pop %r13
    pop %r12
    pop %rbx
    ret
)");

namespace {

// Whether processor and system have the registers that this test fills. Not __builtin_cpu_supports,
// whose library is missing where this is built for macOS.
bool HasAvx() {
    constexpr unsigned kNeeded = bit_OSXSAVE | bit_AVX;
    unsigned eax = 0;
    unsigned ebx = 0;
    unsigned ecx = 0;
    unsigned edx = 0;
    if (__get_cpuid(1, &eax, &ebx, &ecx, &edx) == 0 || (ecx & kNeeded) != kNeeded) {
        return false;
    }
    __asm__ volatile("xgetbv" : "=a"(eax), "=d"(edx) : "c"(0));
    return (eax & 6U) == 6U;
}

// How many eight-byte pieces of the registers still hold a piece of the secret.
std::ptrdiff_t PiecesLeftBy(void (*function)()) {
    constexpr std::uint64_t kSecret[] = {0x5EC2E70000000001, 0x5EC2E70000000002, 0x5EC2E70000000003,
                                         0x5EC2E70000000004};
    Registers registers = {};
    FillCallAndSave(kSecret, function, registers);
    const auto isSecret = [&](std::uint64_t piece) {
        return std::find(std::begin(kSecret), std::end(kSecret), piece) != std::end(kSecret);
    };
    std::ptrdiff_t pieces =
        std::count_if(std::begin(registers.general), std::end(registers.general), isSecret);
    for (const auto& vector : registers.vectors) {
        pieces += std::count_if(std::begin(vector), std::end(vector), isSecret);
    }
    return pieces;
}

// Every register that a call may change holds a known value before the call but not afterwards.
TEST(ClearRegisters, LeavesNothingInThem) {
    if (!HasAvx()) {
        GTEST_SKIP() << "the processor's vector registers are smaller than this test saves";
    }
    EXPECT_GE(PiecesLeftBy([] {}), 16 * 4) << "an empty function changes few of them";
    EXPECT_EQ(PiecesLeftBy(ClearRegisters), 0);
}

}  // namespace
#endif

namespace {

// Values needed after the call. They would stay in registers if it left those alone.
template <typename Number>
[[gnu::noinline]] Number SumAroundIt(Number a, Number b) {
    const Number product = a * b;
    const Number difference = a - b;
    ClearRegisters();
    return product + difference + a + b;
}

TEST(ClearRegisters, LeavesItsCallerWhatItNeeds) {
    const volatile double real = 3;  // volatile: not computed at compile time
    const volatile long whole = 3;
    EXPECT_EQ(SumAroundIt<double>(real, 2), 12.0);
    EXPECT_EQ(SumAroundIt<long>(whole, 2), 12);
}

}  // namespace
