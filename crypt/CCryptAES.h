#ifndef ORVALANGUAGE_CRYPT_CCRYPTAES_H
#define ORVALANGUAGE_CRYPT_CCRYPTAES_H

#include <mutex>

#include "crypt/CCryptAESBase.h"
#include "platform/CommonCryptor.h"

// Held during every cipher call of the library, so that no two ever run at once and nobody has to
// know how a system's call behaves then; and during the parameter checks before it, so that what
// was checked is what is used. The innermost lock: nothing else is taken while it is held.
extern std::mutex gCryptMutex;

// AES over the system's cipher call. The error codes are those of the operations in CCryptBase.
class CCryptAES : public CCryptAESBase {
public:
    CCryptAES() noexcept = default;
    ~CCryptAES() override;

    void Encrypt(std::uint8_t* pData, std::size_t* pnLength, std::size_t nCapacity) const override;
    void Decrypt(std::uint8_t* pData, std::size_t* pnLength, std::size_t nCapacity) const override;
    std::size_t GetEncryptedSize(const std::uint8_t* pData, std::size_t nLength) const override;
    std::size_t GetDecryptedSize(const std::uint8_t* pData, std::size_t nLength) const override;

private:
    // The one place where the cipher call is made: nCapacity bytes of room at pData, in place, the
    // length read before and written after.
    void Crypt(std::uint8_t* pData, std::size_t* pnLength, std::size_t nCapacity,
               CCOperation nOperation) const;

    // Checks the arguments of Encrypt and Decrypt, then runs Crypt.
    void CryptChecked(std::uint8_t* pData, std::size_t* pnLength, std::size_t nCapacity,
                      CCOperation nOperation) const;

    // Runs Crypt on a copy of the bytes at pData. *pnLength is as Crypt, or a failure before it,
    // leaves it.
    void CryptCopy(const std::uint8_t* pData, std::size_t* pnLength, CCOperation nOperation) const;

    // The object's parameters as the cipher call wants them. Throws the code of the first that is
    // wrong: IV length, key length, mode, padding.
    void GetCryptParams(CCAlgorithm* pAlgorithm, CCOptions* pModeOption,
                        CCOptions* pPaddingOption) const;
};

#endif
