#include "protection/KeyMaterial.h"

#include <cstddef>

#include "KeyShares.h"

namespace {

// Volatile, so that the compiler cannot combine them itself.
const volatile std::uint8_t kFirstShare[kProtectedKey] = ORVA_FIRST_KEY_SHARE;
const volatile std::uint8_t kSecondShare[kProtectedKey] = ORVA_SECOND_KEY_SHARE;

}  // namespace

KeyMaterial::KeyMaterial() noexcept {
    for (std::size_t i = 0; i < kProtectedKey; ++i) {
        m_bytes.value[i] = static_cast<std::uint8_t>(kFirstShare[i] ^ kSecondShare[i]);
    }
}
