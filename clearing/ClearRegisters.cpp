#include "clearing/ClearRegisters.h"

#ifdef __x86_64__
#include <cpuid.h>

// The vector registers that code of this build may use.
#define ORVA_LOWER_VECTORS                                                                   \
    "xmm0", "xmm1", "xmm2", "xmm3", "xmm4", "xmm5", "xmm6", "xmm7", "xmm8", "xmm9", "xmm10", \
        "xmm11", "xmm12", "xmm13", "xmm14", "xmm15"
#ifdef __AVX512F__
#define ORVA_UPPER_VECTORS                                                                    \
    "xmm16", "xmm17", "xmm18", "xmm19", "xmm20", "xmm21", "xmm22", "xmm23", "xmm24", "xmm25", \
        "xmm26", "xmm27", "xmm28", "xmm29", "xmm30", "xmm31"
#else
#define ORVA_UPPER_VECTORS
#endif

namespace {

constexpr unsigned kAvx = 1U << 2U;
constexpr unsigned kAvx512 = 7U << 5U;

// The vector registers that the system has enabled. Read each time, as macOS enables the largest
// ones at their first use.
unsigned EnabledVectors() noexcept {
    static const bool hasXgetbv = [] {  // kept: CPUID is slow in a virtual machine
        unsigned eax = 0;
        unsigned ebx = 0;
        unsigned ecx = 0;
        unsigned edx = 0;
        return __get_cpuid(1, &eax, &ebx, &ecx, &edx) != 0 && (ecx & bit_OSXSAVE) != 0;
    }();
    unsigned low = 0;
    unsigned high = 0;
    if (hasXgetbv) {
        __asm__ volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    }
    return low;
}

}  // namespace
#endif

// Every register is declared as changed: link-time optimisation may inline this function, or tell
// the caller what it changes, and the caller would then keep data in a register that is not
// declared.
void ClearVectorRegisters() noexcept {
#ifdef __x86_64__
    __asm__ volatile(
        "pxor %%xmm0, %%xmm0\n\tpxor %%xmm1, %%xmm1\n\tpxor %%xmm2, %%xmm2\n\t"
        "pxor %%xmm3, %%xmm3\n\tpxor %%xmm4, %%xmm4\n\tpxor %%xmm5, %%xmm5\n\t"
        "pxor %%xmm6, %%xmm6\n\tpxor %%xmm7, %%xmm7\n\tpxor %%xmm8, %%xmm8\n\t"
        "pxor %%xmm9, %%xmm9\n\tpxor %%xmm10, %%xmm10\n\tpxor %%xmm11, %%xmm11\n\t"
        "pxor %%xmm12, %%xmm12\n\tpxor %%xmm13, %%xmm13\n\tpxor %%xmm14, %%xmm14\n\t"
        "pxor %%xmm15, %%xmm15"
        :
        :
        : ORVA_LOWER_VECTORS);
    const unsigned enabled = EnabledVectors();
    if ((enabled & kAvx) != 0) {
        // Their upper halves.
        __asm__ volatile("vzeroall" : : : ORVA_LOWER_VECTORS);
    }
    if ((enabled & kAvx512) == kAvx512) {
        // The sixteen that vzeroall leaves alone.
        __asm__ volatile(  // GCOVR_EXCL_LINE: few processors have them
            "vpxorq %%zmm16, %%zmm16, %%zmm16\n\tvpxorq %%zmm17, %%zmm17, %%zmm17\n\t"
            "vpxorq %%zmm18, %%zmm18, %%zmm18\n\tvpxorq %%zmm19, %%zmm19, %%zmm19\n\t"
            "vpxorq %%zmm20, %%zmm20, %%zmm20\n\tvpxorq %%zmm21, %%zmm21, %%zmm21\n\t"
            "vpxorq %%zmm22, %%zmm22, %%zmm22\n\tvpxorq %%zmm23, %%zmm23, %%zmm23\n\t"
            "vpxorq %%zmm24, %%zmm24, %%zmm24\n\tvpxorq %%zmm25, %%zmm25, %%zmm25\n\t"
            "vpxorq %%zmm26, %%zmm26, %%zmm26\n\tvpxorq %%zmm27, %%zmm27, %%zmm27\n\t"
            "vpxorq %%zmm28, %%zmm28, %%zmm28\n\tvpxorq %%zmm29, %%zmm29, %%zmm29\n\t"
            "vpxorq %%zmm30, %%zmm30, %%zmm30\n\tvpxorq %%zmm31, %%zmm31, %%zmm31"
            :
            :
            : ORVA_UPPER_VECTORS);
    }
#endif
}

void ClearGeneralRegisters() noexcept {
#ifdef __x86_64__
    __asm__ volatile(
        "xorl %%eax, %%eax\n\txorl %%ecx, %%ecx\n\txorl %%edx, %%edx\n\txorl %%esi, %%esi\n\t"
        "xorl %%edi, %%edi\n\txorl %%r8d, %%r8d\n\txorl %%r9d, %%r9d\n\txorl %%r10d, %%r10d\n\t"
        "xorl %%r11d, %%r11d"
        :
        :
        : "rax", "rcx", "rdx", "rsi", "rdi", "r8", "r9", "r10", "r11", "cc");
#endif
}
