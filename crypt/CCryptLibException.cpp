#include "crypt/CCryptLibException.h"

CCryptLibException::CCryptLibException(std::int32_t nErrorCode) noexcept
    : m_nErrorCode(nErrorCode) {}

CCryptLibException::~CCryptLibException() = default;
