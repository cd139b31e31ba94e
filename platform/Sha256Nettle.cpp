#include <nettle/sha2.h>

#include "clearing/ClearMemory.h"
#include "platform/Sha256.h"

void Sha256(std::string_view bytes, std::uint8_t (&digest)[kSha256Digest]) noexcept {
    sha256_ctx context;
    sha256_init(&context);
    sha256_update(&context, bytes.size(), reinterpret_cast<const std::uint8_t*>(bytes.data()));
    sha256_digest(&context, sizeof digest, digest);
    ClearMemory(&context, sizeof context);
}
