#ifndef ORVALANGUAGE_CRYPT_CCRYPTAESBASE_H
#define ORVALANGUAGE_CRYPT_CCRYPTAESBASE_H

#include "crypt/CCryptBase.h"

// The codes for SetMode and SetPadding; no others are valid. 4 for PKCS#7 is this interface's own.
enum : std::uint32_t { CRYPT_MODE_ECB = 1, CRYPT_MODE_CBC = 2 };
enum : std::uint32_t { CRYPT_PADDING_NONE = 0, CRYPT_PADDING_PKCS7 = 4 };

// The parameters of an AES operation besides the key. The operations check them, the setters do
// not.
class CCryptAESBase : public CCryptBase {
public:
    ~CCryptAESBase() override;

    // Keeps a copy of nLength bytes as the IV, replacing the previous one. An operation requires
    // 16, even in ECB mode, which does not use them. Null is allowed with a length of 0.
    //
    // If it throws std::bad_alloc, there is no IV but its length is set: the cipher call then uses
    // 16 zero bytes.
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
