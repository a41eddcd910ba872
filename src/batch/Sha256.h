// SHA-256, as FIPS 180-4 has it.
#pragma once

#include <nettle/sha2.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace gxtext {

class Sha256 {
public:
    using Digest = std::array<uint8_t, SHA256_DIGEST_SIZE>;

    Sha256() { sha256_init(&state_); }

    // Takes the bytes alone: what is put one after the other runs together.
    Sha256& add(std::string_view bytes);
    // The same with the length before it.
    Sha256& addField(std::string_view bytes);
    // To be called once.
    Digest digest();
    // 64 digits, lower case.
    std::string hex();

private:
    sha256_ctx state_;
};

}  // namespace gxtext
