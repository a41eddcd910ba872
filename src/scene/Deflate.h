// The stream of RFC 1951 as it is written: literals and matches in, bits out.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace gxtext::deflate {

inline constexpr size_t kShortestMatch = 3;
inline constexpr size_t kLongestMatch = 258;
inline constexpr size_t kFarthestMatch = 32768;

// Eight bytes as a number whose lowest byte is the first, on every machine.
inline uint64_t littleEndian(uint64_t word) {
    if constexpr (std::endian::native == std::endian::little) return word;
    uint64_t swapped = 0;
    for (int i = 0; i < 8; i++) swapped = swapped << 8 | (word >> 8 * i & 0xFF);
    return swapped;
}

inline uint64_t load64(const uint8_t* bytes) {
    uint64_t word;
    std::memcpy(&word, bytes, sizeof(word));
    return littleEndian(word);
}

// Bits on their way to bytes, the lowest first. A value: a loop that keeps its own copy keeps it in
// registers.
struct BitWriter {
    uint8_t* to = nullptr;  // room for 8 bytes more than are told
    uint64_t held = 0;
    unsigned heldBits = 0;  // below 8

    // At most 56; those above them are zero.
    void put(uint64_t bits, unsigned count) {
        held |= bits << heldBits;
        heldBits += count;
        const uint64_t word = littleEndian(held);
        std::memcpy(to, &word, sizeof(word));
        to += heldBits / 8;
        held >>= heldBits & ~7u;
        heldBits &= 7;
    }
};

// Literals and matches, which become a block with codes of its own when there are enough of them.
class Blocks {
public:
    // Appends to `out`, which stays where it is until finish.
    explicit Blocks(std::vector<uint8_t>& out);

    void addLiteral(uint8_t byte) { add(byte | kNoDistance << kSymbolShift); }
    // Of any length from kShortestMatch, in as many matches as it takes.
    void addMatch(size_t length, size_t distance) {
        while (length > kLongestMatch) {
            // No rest shorter than a match may be.
            const size_t part = std::min(length - kShortestMatch, kLongestMatch);
            addOne(part, distance);
            length -= part;
        }
        addOne(length, distance);
    }
    void finish();

private:
    // A literal, or 256 more than a length less 3; above it the symbol of the distance, or that for
    // none; above that what the symbol leaves open of the distance.
    using Token = uint32_t;
    static constexpr unsigned kSymbolShift = 9;
    static constexpr unsigned kExtraShift = 14;
    static constexpr Token kNoDistance = 30;
    // The codes of a block suit what is in it: fewer tokens follow the picture, more save headers.
    static constexpr size_t kBlockTokens = size_t{1} << 13;

    void add(Token token) {
        tokens_[count_++] = token;
        if (count_ == kBlockTokens) write(false);
    }
    void addOne(size_t length, size_t distance) {
        const auto less1 = static_cast<unsigned>(distance - 1);
        // Distances lie in steps that double after every two.
        const unsigned bits = less1 < 4 ? 0 : static_cast<unsigned>(std::bit_width(less1)) - 2;
        const unsigned symbol = 2 * bits + (less1 >> bits);
        const unsigned extra = less1 & ((1u << bits) - 1);
        add(static_cast<Token>(256 + length - kShortestMatch) | symbol << kSymbolShift |
            extra << kExtraShift);
    }
    void write(bool isLast);

    std::vector<uint8_t>& out_;
    size_t size_;  // what is written of it
    BitWriter bits_;
    std::array<Token, kBlockTokens> tokens_;
    size_t count_ = 0;
};

}  // namespace gxtext::deflate
