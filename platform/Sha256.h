#ifndef ORVALANGUAGE_PLATFORM_SHA256_H
#define ORVALANGUAGE_PLATFORM_SHA256_H

#include <cstddef>
#include <cstdint>
#include <string_view>

// SHA-256 from a system library. For orva-strings; the library itself does not hash.

constexpr std::size_t kSha256Digest = 32;

// Writes the digest of the bytes, less than 4 GiB.
void Sha256(std::string_view bytes, std::uint8_t (&digest)[kSha256Digest]) noexcept;

#endif
