#include "crypt/CCryptAES.h"

#include <algorithm>
#include <limits>
#include <new>

#include "clearing/ClearedArray.h"
#include "crypt/CCryptLibException.h"

namespace {

std::int32_t ErrorOfStatus(CCCryptorStatus status) noexcept {
    switch (status) {
        case kCCParamError:
            return CRYPT_ERROR_PARAM;
        case kCCBufferTooSmall:
            return CRYPT_ERROR_BUFFER_TOO_SMALL;
        case kCCMemoryFailure:
            return CRYPT_ERROR_MEMORY_FAILURE;
        case kCCAlignmentError:
            return CRYPT_ERROR_ALIGNMENT;
        case kCCDecodeError:
            return CRYPT_ERROR_DECODE;
        case kCCUnimplemented:
            return CRYPT_ERROR_UNIMPLEMENTED;
        default:
            return CRYPT_ERROR_OTHER_STATUS;
    }
}

}  // namespace

CCryptAES::~CCryptAES() = default;

void CCryptAES::Encrypt(std::uint8_t* pData, std::size_t* pnLength, std::size_t nCapacity) const {
    CryptChecked(pData, pnLength, nCapacity, kCCEncrypt);
}

void CCryptAES::Decrypt(std::uint8_t* pData, std::size_t* pnLength, std::size_t nCapacity) const {
    CryptChecked(pData, pnLength, nCapacity, kCCDecrypt);
}

std::size_t CCryptAES::GetEncryptedSize(const std::uint8_t* pData, std::size_t nLength) const {
    if (pData == nullptr) {
        throw CCryptLibException(CRYPT_ERROR_NULL_DATA);
    }
    std::size_t n = nLength;
    CryptCopy(pData, &n, kCCEncrypt);
    return n;
}

std::size_t CCryptAES::GetDecryptedSize(const std::uint8_t* pData, std::size_t nLength) const {
    if (pData == nullptr) {
        throw CCryptLibException(CRYPT_ERROR_NULL_DATA);
    }
    std::size_t n = nLength;
    try {
        CryptCopy(pData, &n, kCCDecrypt);
    } catch (...) {
        // Unlike GetEncryptedSize, returns a number even so: the caller goes on to decrypt, which
        // reports what is wrong.
    }
    return n;
}

void CCryptAES::CryptChecked(std::uint8_t* pData, std::size_t* pnLength, std::size_t nCapacity,
                             CCOperation nOperation) const {
    if (pData == nullptr) {
        throw CCryptLibException(CRYPT_ERROR_NULL_DATA);
    }
    if (pnLength == nullptr) {
        throw CCryptLibException(CRYPT_ERROR_NULL_LENGTH);
    }
    if (*pnLength > nCapacity) {
        throw CCryptLibException(CRYPT_ERROR_LENGTH_OVER_CAPACITY);
    }
    Crypt(pData, pnLength, nCapacity, nOperation);
}

void CCryptAES::CryptCopy(const std::uint8_t* pData, std::size_t* pnLength,
                          CCOperation nOperation) const {
    if (*pnLength > std::numeric_limits<std::size_t>::max() - m_nIVLength) {
        throw std::bad_array_new_length();
    }
    // Room for padding: a valid operation has an IV of one block.
    const std::size_t nCapacity = *pnLength + m_nIVLength;
    const ClearedArray scratch(nCapacity);
    std::copy_n(pData, *pnLength, scratch.Get());
    Crypt(scratch.Get(), pnLength, scratch.Size(), nOperation);
}

void CCryptAES::Crypt(std::uint8_t* pData, std::size_t* pnLength, std::size_t nCapacity,
                      CCOperation nOperation) const {
    const std::lock_guard<std::mutex> lock(gCryptMutex);
    CCAlgorithm algorithm = 0;
    CCOptions modeOption = 0;
    CCOptions paddingOption = 0;
    GetCryptParams(&algorithm, &modeOption, &paddingOption);
    const CCCryptorStatus status =
        CCCrypt(nOperation, algorithm, modeOption | paddingOption, m_pKey, m_nKeyLength, m_pIV,
                pData, *pnLength, pData, nCapacity, pnLength);
    if (status != kCCSuccess) {
        throw CCryptLibException(ErrorOfStatus(status));
    }
}

void CCryptAES::GetCryptParams(CCAlgorithm* pAlgorithm, CCOptions* pModeOption,
                               CCOptions* pPaddingOption) const {
    // In ECB mode too, which uses none: CryptCopy takes the IV's length as the room for padding.
    if (m_nIVLength != kCCBlockSizeAES128) {
        throw CCryptLibException(CRYPT_ERROR_IV_LENGTH);
    }
    if (m_nKeyLength != kCCKeySizeAES128 && m_nKeyLength != kCCKeySizeAES192 &&
        m_nKeyLength != kCCKeySizeAES256) {
        throw CCryptLibException(CRYPT_ERROR_KEY_LENGTH);
    }
    *pAlgorithm = kCCAlgorithmAES128;  // the key's length selects the variant

    switch (m_nMode) {
        case CRYPT_MODE_ECB:
            *pModeOption = kCCOptionECBMode;
            break;
        case CRYPT_MODE_CBC:
            *pModeOption = 0;
            break;
        default:
            throw CCryptLibException(CRYPT_ERROR_MODE);
    }
    switch (m_nPadding) {
        case CRYPT_PADDING_NONE:
            *pPaddingOption = 0;
            break;
        case CRYPT_PADDING_PKCS7:
            *pPaddingOption = kCCOptionPKCS7Padding;
            break;
        default:
            throw CCryptLibException(CRYPT_ERROR_PADDING);
    }
}
