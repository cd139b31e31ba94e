#ifndef ORVALANGUAGE_PLATFORM_CLEARREGISTERS_H
#define ORVALANGUAGE_PLATFORM_CLEARREGISTERS_H

// Clears every register that a function may leave data of its own in, the vector registers above
// all: a caller's next lazily bound call would save them to its stack. Does nothing on processors
// other than x86-64.
void ClearRegisters() noexcept;

#endif
