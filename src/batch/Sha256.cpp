#include "batch/Sha256.h"

namespace gxtext {

Sha256& Sha256::add(std::string_view bytes) {
    sha256_update(&state_, bytes.size(), reinterpret_cast<const uint8_t*>(bytes.data()));
    return *this;
}

Sha256& Sha256::addField(std::string_view bytes) {
    add(std::to_string(bytes.size())).add(":");
    return add(bytes);
}

Sha256::Digest Sha256::digest() {
    Digest digest;
    sha256_digest(&state_, digest.size(), digest.data());
    return digest;
}

std::string Sha256::hex() {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (const uint8_t byte : digest()) {
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text;
}

}  // namespace gxtext
