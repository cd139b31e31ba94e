#include <nettle/sha2.h>

#include "clearing/Cleared.h"
#include "platform/Sha256.h"

void Sha256(std::string_view bytes, std::uint8_t (&digest)[kSha256Digest]) noexcept {
    Cleared<sha256_ctx> context;
    sha256_init(&context.value);
    sha256_update(&context.value, bytes.size(),
                  reinterpret_cast<const std::uint8_t*>(bytes.data()));
    sha256_digest(&context.value, sizeof digest, digest);
}
