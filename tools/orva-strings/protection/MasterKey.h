#ifndef ORVALANGUAGE_TOOLS_PROTECTION_MASTERKEY_H
#define ORVALANGUAGE_TOOLS_PROTECTION_MASTERKEY_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "clearing/Cleared.h"
#include "protection/ProtectedForm.h"

// Key material for protected texts. Cleared when destroyed.
class MasterKey {
public:
    // The material of this build of the library.
    static MasterKey BuiltIn();

    // The material in a key file: 64 hexadecimal digits in either case, then at most one line
    // ending, LF or CR LF. The build (cmake/OrvaKey.cmake) accepts the same files. Throws
    // std::system_error if the file can't be read, std::runtime_error if it holds anything else.
    static MasterKey FromFile(const std::string& path);

    // The material in the text of a key file; name is for the message. Throws
    // std::runtime_error as FromFile does.
    static MasterKey FromText(std::string text, const std::string& name);

    // New material from the system's random source. Throws std::system_error if that fails.
    static MasterKey Random();

    ProtectionKeys Derive() const;

    // The length of a key file's text, in bytes.
    static constexpr std::size_t kFileText = 2 * kProtectedKey + 1;

    // Writes a key file's text, with its line feed: kFileText bytes, which the caller must clear.
    void WriteFileText(char* text) const;

    // The length of a fingerprint, in digits.
    static constexpr std::size_t kFingerprint = 16;

    // Identifies the key without revealing anything about it: the first kFingerprint upper-case
    // digits of the SHA-256 of a label and the key's upper-case digits. The build does the same.
    std::string Fingerprint() const;

    // Whether a fingerprint is that of the development key, which is public.
    static bool IsOfDevelopmentKey(const std::string& fingerprint);

private:
    MasterKey() = default;

    Cleared<std::uint8_t[kProtectedKey]> m_bytes = {};
};

#endif
