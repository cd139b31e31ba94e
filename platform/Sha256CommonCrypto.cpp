#include <CommonCrypto/CommonDigest.h>

#include "platform/Sha256.h"

void Sha256(std::string_view bytes, std::uint8_t (&digest)[kSha256Digest]) noexcept {
    CC_SHA256(bytes.data(), static_cast<CC_LONG>(bytes.size()), digest);
}
