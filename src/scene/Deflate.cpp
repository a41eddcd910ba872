#include "scene/Deflate.h"

namespace gxtext::deflate {

namespace {

constexpr size_t kEndOfBlock = 256;
constexpr size_t kLengthSymbols = 286;
constexpr size_t kDistanceSymbols = 30;
constexpr int kLongestCode = 15;
constexpr size_t kHeaderSymbols = 19;
constexpr int kLongestHeaderCode = 7;

struct Symbol {
    unsigned number;
    unsigned extraBits;
    unsigned extra;
};

// Lengths lie in steps that double after every four; the longest has a symbol of its own.
Symbol lengthSymbol(unsigned lengthLess3) {
    if (lengthLess3 == kLongestMatch - kShortestMatch) return {285, 0, 0};
    if (lengthLess3 < 8) return {257 + lengthLess3, 0, 0};
    const auto bits = static_cast<unsigned>(std::bit_width(lengthLess3)) - 3;
    return {257 + 4 * bits + (lengthLess3 >> bits), bits, lengthLess3 & ((1u << bits) - 1)};
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
        // By count, then by symbol.
        std::vector<uint64_t> used;
        for (size_t i = 0; i < kCount; i++) {
            if (counts[i] > 0) used.push_back(uint64_t{counts[i]} << 16 | i);
        }
        if (used.empty()) used.push_back(0);
        std::sort(used.begin(), used.end());
        std::vector<int> depths{1};
        if (used.size() > 1) {
            std::vector<uint32_t> usedCounts;
            usedCounts.reserve(used.size());
            for (const uint64_t item : used)
                usedCounts.push_back(static_cast<uint32_t>(item >> 16));
            depths = depthsOf(usedCounts);
            limitDepths(depths, limit);
        }
        lengths.fill(0);
        for (size_t i = 0; i < used.size(); i++) {
            lengths[used[i] & 0xFFFF] = static_cast<uint8_t>(depths[i]);
        }
        number();
    }

private:
    // Consecutive numbers by length, then by symbol.
    void number() {
        std::array<unsigned, kLongestCode + 1> next{};
        for (const uint8_t length : lengths) next[length]++;
        unsigned first = 0;
        for (size_t length = 1; length < next.size(); length++) {
            const unsigned codes = next[length];
            next[length] = first;
            first = (first + codes) << 1;
        }
        for (size_t i = 0; i < kCount; i++) {
            if (lengths[i] > 0) bits[i] = reversed(next[lengths[i]]++, lengths[i]);
        }
    }
    static uint16_t reversed(unsigned code, unsigned length) {
        code = (code & 0x5555) << 1 | (code >> 1 & 0x5555);
        code = (code & 0x3333) << 2 | (code >> 2 & 0x3333);
        code = (code & 0x0F0F) << 4 | (code >> 4 & 0x0F0F);
        code = (code & 0x00FF) << 8 | code >> 8;
        return static_cast<uint16_t>(code >> (16 - length));
    }
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

using LengthCode = Code<kLengthSymbols>;
using DistanceCode = Code<kDistanceSymbols>;

void writeHeader(BitWriter& out, bool isLast, const LengthCode& lengths,
                 const DistanceCode& distances) {
    // The order in which their lengths come.
    constexpr uint8_t kOrder[kHeaderSymbols] = {16, 17, 18, 0, 8,  7, 9,  6, 10, 5,
                                                11, 4,  12, 3, 13, 2, 14, 1, 15};
    std::vector<uint8_t> all(lengths.lengths.begin(), lengths.lengths.end());
    all.insert(all.end(), distances.lengths.begin(), distances.lengths.end());
    const std::vector<HeaderItem> items = headerItems(all);
    Code<kHeaderSymbols> code;
    for (const HeaderItem& item : items) code.counts[item.symbol]++;
    code.make(kLongestHeaderCode);
    out.put(isLast, 1);
    out.put(2, 2);
    out.put(kLengthSymbols - 257, 5);
    out.put(kDistanceSymbols - 1, 5);
    out.put(kHeaderSymbols - 4, 4);
    for (const uint8_t symbol : kOrder) out.put(code.lengths[symbol], 3);
    for (const HeaderItem& item : items) {
        out.put(code.bits[item.symbol], code.lengths[item.symbol]);
        out.put(item.extra, item.extraBits);
    }
}

// What a token's literal or length is written as, and its distance less the extra bits.
struct Pattern {
    uint32_t bits;
    uint8_t codeBits;
    uint8_t allBits;
};

std::array<Pattern, 512> lengthPatterns(const LengthCode& code) {
    std::array<Pattern, 512> patterns;
    for (unsigned i = 0; i < 256; i++)
        patterns[i] = {code.bits[i], code.lengths[i], code.lengths[i]};
    for (unsigned i = 0; i < 256; i++) {
        const Symbol symbol = lengthSymbol(i);
        const unsigned bits = code.lengths[symbol.number];
        patterns[256 + i] = {code.bits[symbol.number] | symbol.extra << bits,
                             static_cast<uint8_t>(bits),
                             static_cast<uint8_t>(bits + symbol.extraBits)};
    }
    return patterns;
}

// The two after the last are for no distance at all.
std::array<Pattern, 32> distancePatterns(const DistanceCode& code) {
    std::array<Pattern, 32> patterns{};
    for (unsigned i = 0; i < kDistanceSymbols; i++) {
        const unsigned extraBits = i < 4 ? 0 : i / 2 - 1;
        patterns[i] = {code.bits[i], code.lengths[i],
                       static_cast<uint8_t>(code.lengths[i] + extraBits)};
    }
    return patterns;
}

}  // namespace

Blocks::Blocks(std::vector<uint8_t>& out) : out_(out), size_(out.size()) {}

void Blocks::write(bool isLast) {
    std::array<uint32_t, 512> tokenCounts{};
    std::array<uint32_t, 32> symbolCounts{};
    for (size_t i = 0; i < count_; i++) {
        tokenCounts[tokens_[i] & 511]++;
        symbolCounts[tokens_[i] >> kSymbolShift & 31]++;
    }
    LengthCode lengths;
    std::copy_n(tokenCounts.begin(), 256, lengths.counts.begin());
    for (unsigned i = 0; i < 256; i++) {
        lengths.counts[lengthSymbol(i).number] += tokenCounts[256 + i];
    }
    lengths.counts[kEndOfBlock] = 1;
    lengths.make(kLongestCode);
    DistanceCode distances;
    std::copy_n(symbolCounts.begin(), kDistanceSymbols, distances.counts.begin());
    distances.make(kLongestCode);

    // A token takes at most 15 + 5 and 15 + 13 bits, a header below 4,000.
    out_.resize(size_ + count_ * 6 + 512);
    BitWriter bits = bits_;
    bits.to = out_.data() + size_;
    writeHeader(bits, isLast, lengths, distances);
    const auto lengthOf = lengthPatterns(lengths);
    const auto distanceOf = distancePatterns(distances);
    for (size_t i = 0; i < count_; i++) {
        const Token token = tokens_[i];
        const Pattern length = lengthOf[token & 511];
        const Pattern distance = distanceOf[token >> kSymbolShift & 31];
        const uint64_t distanceBits = distance.bits | uint64_t{token >> kExtraShift}
                                                          << distance.codeBits;
        bits.put(length.bits | distanceBits << length.allBits, length.allBits + distance.allBits);
    }
    bits.put(lengths.bits[kEndOfBlock], lengths.lengths[kEndOfBlock]);
    size_ = static_cast<size_t>(bits.to - out_.data());
    bits_ = bits;
    count_ = 0;
}

void Blocks::finish() {
    write(true);
    // What is left of a byte is there already.
    out_.resize(size_ + (bits_.heldBits > 0 ? 1 : 0));
}

}  // namespace gxtext::deflate
