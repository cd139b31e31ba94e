#include "crypt/CCryptBase.h"

#include <algorithm>

#include "clearing/ClearMemory.h"

CCryptBase::~CCryptBase() {
    FreeBytes(m_pKey, m_nKeyLength);
}

void CCryptBase::SetKey(const std::uint8_t* pKey, std::uint32_t nLength) {
    ReplaceBytes(m_pKey, m_nKeyLength, pKey, nLength);
}

void CCryptBase::ReplaceBytes(std::uint8_t*& pOwned, std::uint32_t& nOwned,
                              const std::uint8_t* pNew, std::uint32_t nNew) {
    FreeBytes(pOwned, nOwned);
    // The length first: if there is no memory for the bytes, the object has the requested length,
    // not that of bytes that are gone.
    nOwned = nNew;
    pOwned = new std::uint8_t[nNew];
    std::copy_n(pNew, nNew, pOwned);
}

void CCryptBase::FreeBytes(std::uint8_t*& pOwned, std::uint32_t nOwned) noexcept {
    if (pOwned != nullptr) {
        ClearMemory(pOwned, nOwned);
        delete[] pOwned;
        pOwned = nullptr;
    }
}
