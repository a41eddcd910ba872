#include "scene/RowDeflate.h"

#include <libdeflate.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace gxtext {

namespace {

// Numbers of RFC 1951.
constexpr size_t kLongestMatch = 258;
constexpr size_t kFarthestMatch = 32768;
constexpr size_t kEndOfBlock = 256;
constexpr size_t kLengthSymbols = 286;
constexpr size_t kDistanceSymbols = 30;
constexpr int kLongestCode = 15;
constexpr size_t kHeaderSymbols = 19;
constexpr int kLongestHeaderCode = 7;

constexpr size_t kPixel = 4;
// A pair of pixels that was seen is found by its hash; one alone is not worth its distance.
constexpr size_t kPair = 2 * kPixel;
constexpr int kHashBits = 12;
// The codes of a block suit what is in it: fewer tokens follow the picture, more save headers.
constexpr size_t kBlockTokens = size_t{1} << 15;

// A byte, or a match: length less 3 in the lower 8 bits, distance less 1 above, the highest bit.
using Token = uint32_t;
constexpr Token kMatch = 0x80000000u;

struct Symbol {
    unsigned number;
    unsigned extraBits;
    unsigned extra;
};

// Lengths from 3 and distances from 1 lie in steps that double after every 4 or 2 of them.
Symbol lengthSymbol(unsigned lengthLess3) {
    if (lengthLess3 == kLongestMatch - 3) return {285, 0, 0};
    if (lengthLess3 < 8) return {257 + lengthLess3, 0, 0};
    const auto bits = static_cast<unsigned>(std::bit_width(lengthLess3)) - 3;
    return {257 + 4 * bits + (lengthLess3 >> bits), bits, lengthLess3 & ((1u << bits) - 1)};
}

Symbol distanceSymbol(unsigned distanceLess1) {
    if (distanceLess1 < 4) return {distanceLess1, 0, 0};
    const auto bits = static_cast<unsigned>(std::bit_width(distanceLess1)) - 2;
    return {2 * bits + (distanceLess1 >> bits), bits, distanceLess1 & ((1u << bits) - 1)};
}

// Depths of the leaves in a Huffman tree; counts are in ascending order, two at least.
std::vector<int> depthsOf(const std::vector<uint32_t>& counts) {
    const size_t leaves = counts.size();
    std::vector<uint64_t> weight(counts.begin(), counts.end());
    std::vector<size_t> parent(2 * leaves - 1);
    size_t leaf = 0, inner = leaves;
    const auto lightest = [&] {
        const bool isLeaf =
            leaf < leaves && (inner == weight.size() || weight[leaf] <= weight[inner]);
        return isLeaf ? leaf++ : inner++;
    };
    while (weight.size() < parent.size()) {
        const size_t a = lightest(), b = lightest();
        parent[a] = parent[b] = weight.size();
        weight.push_back(weight[a] + weight[b]);
    }
    std::vector<int> depth(parent.size());
    for (size_t node = parent.size() - 1; node-- > 0;) depth[node] = depth[parent[node]] + 1;
    depth.resize(leaves);
    return depth;
}

// No code longer than `limit`: leaves that lie too deep are lifted, and others pushed down until
// there is room for all.
void limitDepths(std::vector<int>& depths, int limit) {
    std::vector<int> perDepth(static_cast<size_t>(limit) + 1);
    for (const int depth : depths) perDepth[static_cast<size_t>(std::min(depth, limit))]++;
    const auto last = static_cast<size_t>(limit);
    uint64_t room = 0;
    for (size_t i = 1; i <= last; i++) room += static_cast<uint64_t>(perDepth[i]) << (last - i);
    for (; room > uint64_t{1} << last; room--) {
        size_t i = last - 1;
        while (perDepth[i] == 0) i--;
        perDepth[last]--;
        perDepth[i]--;
        perDepth[i + 1] += 2;
    }
    // The rarest come first and get the longest.
    size_t next = 0;
    for (size_t i = last; i > 0; i--) {
        for (int k = 0; k < perDepth[i]; k++) depths[next++] = static_cast<int>(i);
    }
}

// A prefix code for symbols that occur so often.
template <size_t kCount>
struct Code {
    std::array<uint32_t, kCount> counts{};
    std::array<uint8_t, kCount> lengths{};
    std::array<uint16_t, kCount> bits{};  // the first one lowest

    void make(int limit) {
        std::vector<size_t> used;
        for (size_t i = 0; i < kCount; i++) {
            if (counts[i] > 0) used.push_back(i);
        }
        if (used.empty()) used.push_back(0);
        std::sort(used.begin(), used.end(), [this](size_t a, size_t b) {
            return counts[a] != counts[b] ? counts[a] < counts[b] : a < b;
        });
        std::vector<int> depths{1};
        if (used.size() > 1) {
            std::vector<uint32_t> usedCounts;
            usedCounts.reserve(used.size());
            for (const size_t symbol : used) usedCounts.push_back(counts[symbol]);
            depths = depthsOf(usedCounts);
            limitDepths(depths, limit);
        }
        lengths.fill(0);
        for (size_t i = 0; i < used.size(); i++) lengths[used[i]] = static_cast<uint8_t>(depths[i]);
        number();
    }

private:
    // Consecutive numbers by length, then by symbol.
    void number() {
        unsigned next = 0;
        for (int length = 1; length <= kLongestCode; length++) {
            next <<= 1;
            for (size_t i = 0; i < kCount; i++) {
                if (lengths[i] == length) bits[i] = reversed(next++, length);
            }
        }
    }
    static uint16_t reversed(unsigned code, int length) {
        unsigned result = 0;
        for (int i = 0; i < length; i++) result |= (code >> i & 1) << (length - 1 - i);
        return static_cast<uint16_t>(result);
    }
};

class BitWriter {
public:
    explicit BitWriter(std::vector<uint8_t>& out) : out_(out) {}

    // Room for so many bits to come.
    void reserve(size_t bits) { out_.resize(size_ + bits / 8 + 16); }
    // At most 32 of them.
    void put(uint64_t bits, unsigned count) {
        held_ |= bits << heldBits_;
        heldBits_ += count;
        if (heldBits_ < 32) return;
        for (int i = 0; i < 4; i++) out_[size_++] = static_cast<uint8_t>(held_ >> 8 * i);
        held_ >>= 32;
        heldBits_ -= 32;
    }
    void finish() {
        for (; heldBits_ > 0; heldBits_ -= std::min(heldBits_, 8u), held_ >>= 8) {
            out_[size_++] = static_cast<uint8_t>(held_);
        }
        out_.resize(size_);
    }

private:
    std::vector<uint8_t>& out_;
    size_t size_ = out_.size();
    uint64_t held_ = 0;
    unsigned heldBits_ = 0;
};

// Lengths of codes in runs, as the header of a block has them.
struct HeaderItem {
    uint8_t symbol;
    uint8_t extraBits;
    uint8_t extra;
};

std::vector<HeaderItem> headerItems(const std::vector<uint8_t>& lengths) {
    std::vector<HeaderItem> items;
    for (size_t i = 0; i < lengths.size();) {
        size_t run = 1;
        while (i + run < lengths.size() && lengths[i + run] == lengths[i]) run++;
        if (lengths[i] == 0 && run >= 3) {
            run = std::min<size_t>(run, 138);
            if (run <= 10) {
                items.push_back({17, 3, static_cast<uint8_t>(run - 3)});
            } else {
                items.push_back({18, 7, static_cast<uint8_t>(run - 11)});
            }
            i += run;
            continue;
        }
        items.push_back({lengths[i++], 0, 0});
        for (run--; run >= 3;) {
            const size_t part = std::min<size_t>(run, 6);
            items.push_back({16, 2, static_cast<uint8_t>(part - 3)});
            i += part;
            run -= part;
        }
    }
    return items;
}

// Tokens, which become a block when there are enough of them.
class Blocks {
public:
    explicit Blocks(std::vector<uint8_t>& out) : out_(out) { tokens_.reserve(kBlockTokens + 8); }

    void addBytes(const uint8_t* bytes, size_t count) {
        for (size_t i = 0; i < count; i++) {
            tokens_.push_back(bytes[i]);
            lengths_.counts[bytes[i]]++;
        }
        if (tokens_.size() >= kBlockTokens) write(false);
    }

    void addMatch(size_t length, size_t distance) {
        const auto distanceLess1 = static_cast<unsigned>(distance - 1);
        const unsigned symbol = distanceSymbol(distanceLess1).number;
        while (length > 0) {
            // No rest shorter than a match may be.
            size_t part = std::min(length, kLongestMatch);
            if (length > part && length - part < 3) part -= 3;
            length -= part;
            const auto lengthLess3 = static_cast<unsigned>(part - 3);
            tokens_.push_back(kMatch | distanceLess1 << 8 | lengthLess3);
            lengths_.counts[lengthSymbol(lengthLess3).number]++;
            distances_.counts[symbol]++;
            if (tokens_.size() >= kBlockTokens) write(false);
        }
    }

    void finish() {
        write(true);
        out_.finish();
    }

private:
    void write(bool isLast) {
        lengths_.counts[kEndOfBlock]++;
        lengths_.make(kLongestCode);
        distances_.make(kLongestCode);
        // A match is at most 15 + 5 and 15 + 13 bits, a header below 4,000.
        out_.reserve(tokens_.size() * 48 + 4096);
        writeHeader(isLast);
        for (const Token token : tokens_) writeToken(token);
        out_.put(lengths_.bits[kEndOfBlock], lengths_.lengths[kEndOfBlock]);
        tokens_.clear();
        lengths_.counts.fill(0);
        distances_.counts.fill(0);
    }

    void writeHeader(bool isLast) {
        // The order in which their lengths come.
        constexpr uint8_t kOrder[kHeaderSymbols] = {16, 17, 18, 0, 8,  7, 9,  6, 10, 5,
                                                    11, 4,  12, 3, 13, 2, 14, 1, 15};
        std::vector<uint8_t> all(lengths_.lengths.begin(), lengths_.lengths.end());
        all.insert(all.end(), distances_.lengths.begin(), distances_.lengths.end());
        const std::vector<HeaderItem> items = headerItems(all);
        Code<kHeaderSymbols> code;
        for (const HeaderItem& item : items) code.counts[item.symbol]++;
        code.make(kLongestHeaderCode);
        out_.put(isLast, 1);
        out_.put(2, 2);
        out_.put(kLengthSymbols - 257, 5);
        out_.put(kDistanceSymbols - 1, 5);
        out_.put(kHeaderSymbols - 4, 4);
        for (const uint8_t symbol : kOrder) out_.put(code.lengths[symbol], 3);
        for (const HeaderItem& item : items) {
            out_.put(code.bits[item.symbol], code.lengths[item.symbol]);
            out_.put(item.extra, item.extraBits);
        }
    }

    void writeToken(Token token) {
        if (!(token & kMatch)) return out_.put(lengths_.bits[token], lengths_.lengths[token]);
        const Symbol length = lengthSymbol(token & 0xFF);
        out_.put(lengths_.bits[length.number], lengths_.lengths[length.number]);
        out_.put(length.extra, length.extraBits);
        const Symbol distance = distanceSymbol((token & ~kMatch) >> 8);
        out_.put(distances_.bits[distance.number], distances_.lengths[distance.number]);
        out_.put(distance.extra, distance.extraBits);
    }

    BitWriter out_;
    std::vector<Token> tokens_;
    Code<kLengthSymbols> lengths_;
    Code<kDistanceSymbols> distances_;
};

uint64_t load64(const uint8_t* bytes) {
    uint64_t value;
    std::memcpy(&value, bytes, sizeof(value));
    return value;
}

// How many bytes are the same from here and there on, at most `most`.
size_t equalBytes(const uint8_t* a, const uint8_t* b, size_t most) {
    size_t count = 0;
    for (; count + 8 <= most; count += 8) {
        const uint64_t difference = load64(a + count) ^ load64(b + count);
        if (difference == 0) continue;
        const int zeros = std::endian::native == std::endian::little ? std::countr_zero(difference)
                                                                     : std::countl_zero(difference);
        return count + static_cast<size_t>(zeros) / 8;
    }
    while (count < most && a[count] == b[count]) count++;
    return count;
}

// The bytes' order is that of the memory, so that the hash is the same on every machine.
size_t hashOf(const uint8_t* pair) {
    uint64_t value = load64(pair);
    if constexpr (std::endian::native == std::endian::big) {
        uint64_t swapped = 0;
        for (int i = 0; i < 8; i++) swapped = swapped << 8 | (value >> 8 * i & 0xFF);
        value = swapped;
    }
    return value * 0x9E3779B97F4A7C15u >> (64 - kHashBits);
}

struct Match {
    size_t length = 0;
    size_t distance = 0;
};

// 1. The longest of three matches: with the pixel before, with the row above, and with where the
//    same pair of pixels was seen last.
// 2. Without one a pixel goes out as its bytes; so do those up to the next whole pixel where a
//    match ended within one, and the byte before a row's first.
class Matcher {
public:
    Matcher(const uint8_t* rows, size_t size, size_t period)
        : rows_(rows), size_(size), period_(period) {}

    void run(Blocks& blocks) {
        for (size_t at = 0; at < size_;) {
            const size_t column = at % period_;
            const size_t within = column == 0 ? kPixel - 1 : (column - 1) % kPixel;
            const Match match = within == 0 ? longestAt(at) : Match{};
            if (match.length >= kPixel) {
                blocks.addMatch(match.length, match.distance);
                at += match.length;
                continue;
            }
            const size_t count = std::min(kPixel - within, size_ - at);
            blocks.addBytes(rows_ + at, count);
            at += count;
        }
    }

private:
    Match longestAt(size_t at) {
        Match best;
        consider(best, at, kPixel);
        if (period_ <= kFarthestMatch) consider(best, at, period_);
        if (size_ - at < kPair) return best;
        uint32_t& seen = seen_[hashOf(rows_ + at)];
        // Where a long match begins is not asked for again.
        if (seen > 0 && best.length < 8 * kPixel) {
            const size_t distance = at + 1 - seen;
            if (distance <= kFarthestMatch && load64(rows_ + at) == load64(rows_ + at - distance)) {
                consider(best, at, distance);
            }
        }
        seen = static_cast<uint32_t>(at + 1);
        return best;
    }

    void consider(Match& best, size_t at, size_t distance) const {
        if (distance > at) return;
        const size_t length = equalBytes(rows_ + at, rows_ + at - distance, size_ - at);
        if (length > best.length) best = {length, distance};
    }

    const uint8_t* rows_;
    const size_t size_;
    const size_t period_;
    std::array<uint32_t, size_t{1} << kHashBits> seen_{};  // 1 more than the place; 0 for none
};

}  // namespace

std::vector<uint8_t> deflateRows(const uint8_t* rows, size_t size, size_t period) {
    // Window of 32 KiB, fastest level, no dictionary.
    std::vector<uint8_t> out{0x78, 0x01};
    Blocks blocks(out);
    Matcher(rows, size, period).run(blocks);
    blocks.finish();
    const uint32_t sum = libdeflate_adler32(1, rows, size);
    for (const int shift : {24, 16, 8, 0}) out.push_back(static_cast<uint8_t>(sum >> shift));
    return out;
}

}  // namespace gxtext
