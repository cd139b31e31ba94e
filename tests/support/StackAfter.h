#ifndef ORVALANGUAGE_TESTS_SUPPORT_STACKAFTER_H
#define ORVALANGUAGE_TESTS_SUPPORT_STACKAFTER_H

#include <functional>

#include "tests/support/Hex.h"

// Calls a function in a thread of its own and returns the stack as the call left it. The thread
// sanitizer keeps copies of its own there.
Bytes StackAfter(const std::function<void()>& call);

// Whether memory holds eight or more bytes of a secret in a row.
bool Holds(const Bytes& memory, const Bytes& secret);

#endif
