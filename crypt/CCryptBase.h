#ifndef ORVALANGUAGE_CRYPT_CCRYPTBASE_H
#define ORVALANGUAGE_CRYPT_CCRYPTBASE_H

#include <cstddef>
#include <cstdint>

// The root of the cipher classes: four operations, and the key they run with.
//
// An object is set up, used for any number of operations, and destroyed. Each operation checks the
// parameters anew and keeps no state. Several threads may run operations on one object at once, but
// none may set it up or destroy it meanwhile.
class CCryptBase {
public:
    virtual ~CCryptBase();
    CCryptBase(const CCryptBase&) = delete;
    CCryptBase& operator=(const CCryptBase&) = delete;

    // Encrypts in place.
    //
    // pData      the bytes; encrypted afterwards.
    // pnLength   in: how many bytes; out: how many there are now, padding included.
    // nCapacity  the bytes of room at pData.
    //
    // Throws CCryptLibException. With the codes of the arguments, looked for in the order
    // NULL_DATA, NULL_LENGTH, LENGTH_OVER_CAPACITY, and those of the parameters, in the order
    // IV_LENGTH, KEY_LENGTH, MODE, PADDING, nothing has changed. With those of the cipher call,
    // bytes and length are as it left them: after BUFFER_TOO_SMALL the length is the one needed,
    // after ALIGNMENT and DECODE the bytes up to it are done. The object never changes.
    virtual void Encrypt(std::uint8_t* pData, std::size_t* pnLength,
                         std::size_t nCapacity) const = 0;

    // Decrypts in place: the same the other way round. The length afterwards is without padding.
    // Not every system finds damaged data: Apple's cipher call lets bad padding pass.
    virtual void Decrypt(std::uint8_t* pData, std::size_t* pnLength,
                         std::size_t nCapacity) const = 0;

    // The length that nLength bytes at pData would have encrypted. The bytes stay as they are; the
    // whole operation is run on a copy.
    //
    // Throws CCryptLibException as Encrypt does, and std::bad_alloc.
    virtual std::size_t GetEncryptedSize(const std::uint8_t* pData, std::size_t nLength) const = 0;

    // The length that nLength bytes at pData would have decrypted, likewise.
    //
    // Throws only CRYPT_ERROR_NULL_DATA. Any other failure, for want of memory too, gives a number
    // all the same: nLength if it came before the cipher call had one, else the bytes that the call
    // had written or would need. So a number is no promise that Decrypt succeeds.
    virtual std::size_t GetDecryptedSize(const std::uint8_t* pData, std::size_t nLength) const = 0;

    // Keeps a copy of nLength bytes as the key, in place of the one before. An operation wants 16,
    // 24 or 32, which is not checked here. Null is fine with a length of 0.
    //
    // Throws std::bad_alloc; then there is no key, though the length is set.
    void SetKey(const std::uint8_t* pKey, std::uint32_t nLength);

protected:
    CCryptBase() noexcept = default;

    // Puts a copy of nNew bytes at pNew in place of the owned array that pOwned and nOwned hold.
    static void ReplaceBytes(std::uint8_t*& pOwned, std::uint32_t& nOwned, const std::uint8_t* pNew,
                             std::uint32_t nNew);

    // Clears and frees the owned array, if there is one, and sets pOwned to null.
    static void FreeBytes(std::uint8_t*& pOwned, std::uint32_t nOwned) noexcept;

    std::uint8_t* m_pKey = nullptr;  // owned, or null
    std::uint32_t m_nKeyLength = 0;
};

#endif
