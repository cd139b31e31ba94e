#ifndef ORVALANGUAGE_CRYPT_CCRYPTLIBEXCEPTION_H
#define ORVALANGUAGE_CRYPT_CCRYPTLIBEXCEPTION_H

#include <cstdint>
#include <exception>

// Why a cipher operation failed. The numbers are this interface's own.
enum : std::int32_t {
    // Wrong arguments.
    CRYPT_ERROR_LENGTH_OVER_CAPACITY = 12,
    CRYPT_ERROR_NULL_DATA = 401,
    CRYPT_ERROR_NULL_LENGTH = 402,

    // Wrong parameters of the object.
    CRYPT_ERROR_PADDING = 451,
    CRYPT_ERROR_IV_LENGTH = 452,
    CRYPT_ERROR_MODE = 453,
    CRYPT_ERROR_KEY_LENGTH = 454,

    // A failed cipher call, by its status.
    CRYPT_ERROR_PARAM = 203,  // no key: there was no memory for it
    CRYPT_ERROR_BUFFER_TOO_SMALL = 204,
    CRYPT_ERROR_MEMORY_FAILURE = 205,
    CRYPT_ERROR_ALIGNMENT = 206,  // not whole blocks
    CRYPT_ERROR_DECODE = 207,     // bad padding
    CRYPT_ERROR_UNIMPLEMENTED = 208,
    CRYPT_ERROR_OTHER_STATUS = 209
};

// The only exception that the cipher classes define. It carries only the code: what() is
// std::exception's own. Thrown by value; catch it by reference.
class CCryptLibException : public std::exception {
public:
    explicit CCryptLibException(std::int32_t nErrorCode) noexcept;
    CCryptLibException(const CCryptLibException&) noexcept = default;
    CCryptLibException& operator=(const CCryptLibException&) noexcept = default;
    ~CCryptLibException() override;

    // One of the CRYPT_ERROR_… codes.
    std::int32_t GetErrorCode() const noexcept { return m_nErrorCode; }

private:
    std::int32_t m_nErrorCode;
};

#endif
