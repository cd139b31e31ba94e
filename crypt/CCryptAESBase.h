#ifndef ORVALANGUAGE_CRYPT_CCRYPTAESBASE_H
#define ORVALANGUAGE_CRYPT_CCRYPTAESBASE_H

#include "crypt/CCryptBase.h"

// The codes of SetMode and SetPadding. No other is valid; 4 for PKCS#7 is this interface's own.
enum : std::uint32_t { CRYPT_MODE_ECB = 1, CRYPT_MODE_CBC = 2 };
enum : std::uint32_t { CRYPT_PADDING_NONE = 0, CRYPT_PADDING_PKCS7 = 4 };

// What an AES operation runs with besides the key. The operations check it, the setters do not.
class CCryptAESBase : public CCryptBase {
public:
    ~CCryptAESBase() override;

    // Keeps a copy of nLength bytes as the IV, in place of the one before. An operation wants 16,
    // in ECB mode too, which has no use for them. Null is fine with a length of 0.
    //
    // Throws std::bad_alloc; then there is no IV, though the length is set, and the cipher call
    // takes 16 zero bytes for it.
    void SetIV(const std::uint8_t* pIV, std::uint32_t nLength);

    void SetMode(std::uint32_t nMode) noexcept { m_nMode = nMode; }
    void SetPadding(std::uint32_t nPadding) noexcept { m_nPadding = nPadding; }

protected:
    CCryptAESBase() noexcept = default;

    std::uint32_t m_nMode = CRYPT_MODE_CBC;
    std::uint32_t m_nPadding = CRYPT_PADDING_PKCS7;
    std::uint8_t* m_pIV = nullptr;  // owned, or null
    std::uint32_t m_nIVLength = 0;
};

#endif
