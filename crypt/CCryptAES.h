#ifndef ORVALANGUAGE_CRYPT_CCRYPTAES_H
#define ORVALANGUAGE_CRYPT_CCRYPTAES_H

#include <mutex>

#include "crypt/CCryptAESBase.h"
#include "platform/CommonCryptor.h"

// Held during every cipher call, so that none depends on how a system's call behaves on several
// threads, and during the parameter checks before it, so that what was checked is what is used. The
// innermost lock: no other is taken while it is held.
extern std::mutex gCryptMutex;

// AES over the system's cipher call. The error codes are those of CCryptBase's operations.
class CCryptAES : public CCryptAESBase {
public:
    CCryptAES() noexcept = default;
    ~CCryptAES() override;

    void Encrypt(std::uint8_t* pData, std::size_t* pnLength, std::size_t nCapacity) const override;
    void Decrypt(std::uint8_t* pData, std::size_t* pnLength, std::size_t nCapacity) const override;
    std::size_t GetEncryptedSize(const std::uint8_t* pData, std::size_t nLength) const override;
    std::size_t GetDecryptedSize(const std::uint8_t* pData, std::size_t nLength) const override;

private:
    // The only place that makes the cipher call. Works in place, with room for nCapacity bytes at
    // pData; the length is read before and written after.
    void Crypt(std::uint8_t* pData, std::size_t* pnLength, std::size_t nCapacity,
               CCOperation nOperation) const;

    // Checks the arguments of Encrypt and Decrypt, then runs Crypt.
    void CryptChecked(std::uint8_t* pData, std::size_t* pnLength, std::size_t nCapacity,
                      CCOperation nOperation) const;

    // Runs Crypt on a copy of the bytes at pData. *pnLength is as Crypt leaves it, or unchanged if
    // a failure comes before it.
    void CryptCopy(const std::uint8_t* pData, std::size_t* pnLength, CCOperation nOperation) const;

    // Converts the object's parameters for the cipher call. Throws the code of the first wrong one,
    // in the order IV length, key length, mode, padding.
    void GetCryptParams(CCAlgorithm* pAlgorithm, CCOptions* pModeOption,
                        CCOptions* pPaddingOption) const;
};

#endif
