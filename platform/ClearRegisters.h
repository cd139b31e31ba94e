#ifndef ORVALANGUAGE_PLATFORM_CLEARREGISTERS_H
#define ORVALANGUAGE_PLATFORM_CLEARREGISTERS_H

[[gnu::noinline]] void ClearVectorRegisters() noexcept;
[[gnu::noinline]] void ClearGeneralRegisters() noexcept;

// Clears every general and vector register that a function may leave data of its own in: a caller's
// next lazily bound call would save them to its stack. Does nothing on processors other than x86-64.
//
// The general ones come last, in a function that calls none: one that does may save a register around
// the call, to keep the stack aligned, and so put back what was in it.
inline void ClearRegisters() noexcept {
    ClearVectorRegisters();
    ClearGeneralRegisters();
}

#endif
