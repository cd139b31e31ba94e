#include "api/KeyFingerprint.h"

#include "KeyFingerprints.h"

// Code never reads it, so the compiler ("used") and the linker ("retain") are told to keep it. Mach-O
// has the one attribute for both.
#if __has_attribute(retain)
#define ORVA_KEEP __attribute__((used, retain))
#else
#define ORVA_KEEP __attribute__((used))
#endif

namespace {

ORVA_KEEP const char kKeyFingerprint[] = ORVA_KEY_FINGERPRINT_LABEL ORVA_KEY_FINGERPRINT;

}  // namespace
