#ifndef ORVALANGUAGE_PROTECTION_KEYFINGERPRINT_H
#define ORVALANGUAGE_PROTECTION_KEYFINGERPRINT_H

// The library's file holds this label, the 16 upper-case digits of its key's fingerprint, and a NUL
// byte, without gaps, so that a built library's key can be identified without running it.
#define ORVA_KEY_FINGERPRINT_LABEL "libOrvaLanguage key fingerprint: "

#endif
