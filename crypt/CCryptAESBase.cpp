#include "crypt/CCryptAESBase.h"

CCryptAESBase::~CCryptAESBase() {
    FreeBytes(m_pIV, m_nIVLength);
}

void CCryptAESBase::SetIV(const std::uint8_t* pIV, std::uint32_t nLength) {
    ReplaceBytes(m_pIV, m_nIVLength, pIV, nLength);
}
