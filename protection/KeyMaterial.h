#ifndef ORVALANGUAGE_PROTECTION_KEYMATERIAL_H
#define ORVALANGUAGE_PROTECTION_KEYMATERIAL_H

#include <cstdint>

#include "clearing/Cleared.h"
#include "protection/ProtectedForm.h"

// The library's own key material, combined from its two shares; cleared when destroyed. The build
// chooses it (ORVA_KEY_FILE). It is in memory only while one of these lives, and nowhere in the
// binary.
class KeyMaterial {
public:
    KeyMaterial() noexcept;
    KeyMaterial(const KeyMaterial&) = delete;
    KeyMaterial& operator=(const KeyMaterial&) = delete;

    const std::uint8_t (&Bytes() const noexcept)[kProtectedKey] { return m_bytes.value; }

private:
    Cleared<std::uint8_t[kProtectedKey]> m_bytes;
};

#endif
