#include "protection/KeyFingerprint.h"

#include "KeyFingerprints.h"

// No code reads it, so the compiler ("used") and the linker ("retain") must be made to keep it. On
// Mach-O, "used" does both.
#if __has_attribute(retain)
#define ORVA_KEEP __attribute__((used, retain))
#else
#define ORVA_KEEP __attribute__((used))
#endif

namespace {

ORVA_KEEP const char kKeyFingerprint[] = ORVA_KEY_FINGERPRINT_LABEL ORVA_KEY_FINGERPRINT;

}  // namespace
