#ifndef ORVALANGUAGE_CRYPT_CCRYPTBASE_H
#define ORVALANGUAGE_CRYPT_CCRYPTBASE_H

#include <cstddef>
#include <cstdint>

// The base of the cipher classes: four operations and their key.
//
// An object is set up, used for any number of operations, and destroyed. Each operation checks the
// parameters and keeps no state. Several threads may run operations on one object at once, but none
// may set it up or destroy it meanwhile.
class CCryptBase {
public:
    virtual ~CCryptBase();
    CCryptBase(const CCryptBase&) = delete;
    CCryptBase& operator=(const CCryptBase&) = delete;

    // Encrypts in place.
    //
    // pData      the bytes to encrypt.
    // pnLength   in: their number; out: their number once encrypted, padding included.
    // nCapacity  the room at pData, in bytes.
    //
    // Throws CCryptLibException. Checks the arguments, in the order NULL_DATA, NULL_LENGTH,
    // LENGTH_OVER_CAPACITY, then the parameters, in the order IV_LENGTH, KEY_LENGTH, MODE, PADDING;
    // if one is wrong, nothing has changed. If the cipher call fails, bytes and length are as it
    // left them: after BUFFER_TOO_SMALL the length is the one needed, after ALIGNMENT and DECODE
    // the bytes up to it are done. The object never changes.
    virtual void Encrypt(std::uint8_t* pData, std::size_t* pnLength,
                         std::size_t nCapacity) const = 0;

    // Decrypts in place: the reverse of Encrypt. The length afterwards excludes padding. Not every
    // system detects damaged data: Apple's cipher call accepts bad padding.
    virtual void Decrypt(std::uint8_t* pData, std::size_t* pnLength,
                         std::size_t nCapacity) const = 0;

    // Returns the length that nLength bytes at pData have once encrypted. Runs the whole operation
    // on a copy; the bytes stay as they are.
    //
    // Throws CCryptLibException as Encrypt does, and std::bad_alloc.
    virtual std::size_t GetEncryptedSize(const std::uint8_t* pData, std::size_t nLength) const = 0;

    // Returns the length that nLength bytes at pData have once decrypted, in the same way.
    //
    // Throws only CRYPT_ERROR_NULL_DATA. Any other failure, lack of memory included, still returns
    // a number: the length that the cipher call reported, written or needed, or nLength if it
    // reported none. So a number does not promise that Decrypt succeeds.
    virtual std::size_t GetDecryptedSize(const std::uint8_t* pData, std::size_t nLength) const = 0;

    // Keeps a copy of nLength bytes as the key, replacing the previous one. An operation requires
    // 16, 24 or 32, which is not checked here. Null is allowed with a length of 0.
    //
    // If it throws std::bad_alloc, there is no key but its length is set.
    void SetKey(const std::uint8_t* pKey, std::uint32_t nLength);

protected:
    CCryptBase() noexcept = default;

    // Replaces the owned array that pOwned and nOwned hold with a copy of nNew bytes at pNew.
    static void ReplaceBytes(std::uint8_t*& pOwned, std::uint32_t& nOwned, const std::uint8_t* pNew,
                             std::uint32_t nNew);

    // Clears and frees the owned array, if there is one, and sets pOwned to null. A ClearedArray
    // would not do: a length may be set without bytes, as after a failed SetKey.
    static void FreeBytes(std::uint8_t*& pOwned, std::uint32_t nOwned) noexcept;

    std::uint8_t* m_pKey = nullptr;  // owned, or null
    std::uint32_t m_nKeyLength = 0;
};

#endif
