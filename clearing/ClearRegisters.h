#ifndef ORVALANGUAGE_CLEARING_CLEARREGISTERS_H
#define ORVALANGUAGE_CLEARING_CLEARREGISTERS_H

[[gnu::noinline]] void ClearVectorRegisters() noexcept;
[[gnu::noinline]] void ClearGeneralRegisters() noexcept;

// Clears every general and vector register in which a function may leave its data: the caller's
// next lazily bound call would save them to the stack. Does nothing on processors other than
// x86-64.
//
// The general ones come last, in a function that calls no other: one that does may save a register
// around the call, to keep the stack aligned, and so restore its old content.
inline void ClearRegisters() noexcept {
    ClearVectorRegisters();
    ClearGeneralRegisters();
}

#endif
