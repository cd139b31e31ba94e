#ifndef ORVALANGUAGE_TOOLS_PROTECTION_MASTERKEY_H
#define ORVALANGUAGE_TOOLS_PROTECTION_MASTERKEY_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "protection/ProtectedForm.h"

// Key material for protected texts, as the tool handles it. Its bytes are cleared in the end.
class MasterKey {
public:
    // The material that this build of the library holds.
    static MasterKey BuiltIn();

    // The material in a key file: 64 hexadecimal digits of either case, and at most one line feed, or
    // carriage return and line feed, after them. The build (cmake/OrvaKey.cmake) accepts the same.
    // Throws std::system_error if the file can't be read, std::runtime_error if it holds anything
    // else.
    static MasterKey FromFile(const std::string& path);

    // The material in the text of a key file, whose name is for the message. Throws as FromFile.
    static MasterKey FromText(std::string text, const std::string& name);

    // New material from the system's random source. Throws std::system_error.
    static MasterKey Random();

    MasterKey(const MasterKey&) = default;
    MasterKey& operator=(const MasterKey&) = default;
    ~MasterKey();

    ProtectionKeys Derive() const;

    // The length of a key file's text, in bytes.
    static constexpr std::size_t kFileText = 2 * kProtectedKey + 1;

    // Writes the key as it stands in a key file, the line end included: kFileText bytes, which are the
    // caller's to clear.
    void WriteFileText(char* text) const;

    // The length of a fingerprint, in digits.
    static constexpr std::size_t kFingerprint = 16;

    // Upper-case digits that tell keys apart and tell nothing about the key: of the SHA-256 of a label
    // and the key's upper-case digits. The build computes the same.
    std::string Fingerprint() const;

    // Whether a fingerprint is that of the development key, which everybody knows.
    static bool IsOfDevelopmentKey(const std::string& fingerprint);

private:
    MasterKey() = default;

    std::uint8_t m_bytes[kProtectedKey] = {};
};

#endif
