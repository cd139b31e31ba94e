#ifndef ORVALANGUAGE_TOOLS_KEY_H
#define ORVALANGUAGE_TOOLS_KEY_H

#include <cstdint>
#include <string>

#include "api/ProtectedForm.h"

// Key material for protected texts, as the tool handles it. Its bytes are cleared in the end.
class Key {
public:
    // The material that this build of the library holds.
    static Key BuiltIn();

    // The material in a key file: 64 hexadecimal digits, a line end allowed behind them. Throws
    // std::system_error if the file can't be read, std::runtime_error if it holds anything else.
    static Key FromFile(const std::string& path);

    // The material in the text of a key file, whose name is for the message. Throws as FromFile.
    static Key FromText(std::string text, const std::string& name);

    // New material from the system's random source. Throws std::system_error.
    static Key Random();

    Key(const Key&) = default;
    Key& operator=(const Key&) = default;
    ~Key();

    ProtectionKeys Derive() const { return ProtectionKeys(m_bytes); }

    // As it stands in a key file, the line end included.
    std::string FileText() const;

    // 16 digits that tell keys apart and tell nothing about the key.
    std::string Fingerprint() const;

    // Whether it is the development key, which everybody knows.
    bool IsDevelopmentKey() const;

private:
    Key() = default;

    std::uint8_t m_bytes[kProtectedKey] = {};
};

#endif
