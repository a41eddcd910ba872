#include "scene/RowDeflate.h"

#include <libdeflate.h>

#include <algorithm>
#include <array>
#include <bit>

#include "scene/Deflate.h"

namespace gxtext {

namespace {

using deflate::kFarthestMatch;
using deflate::load64;

constexpr size_t kPixel = 4;
// Nothing shorter is looked for, but for the colour of the pixel before.
constexpr size_t kWord = 4;
// As many as there are places within reach: with fewer, others are in the way.
constexpr int kHashBits = 15;
// A match that is as long is taken without looking further, and what lies in it is not remembered.
constexpr size_t kLong = 64;
// How many places from a match's start on are remembered: more cost more than they find.
constexpr size_t kRemembered = 6;
// What is looked at past a place; the last bytes go out as they are.
constexpr size_t kAhead = 16;

// How many bytes are the same from here and there on, at most `most`.
size_t equalBytes(const uint8_t* a, const uint8_t* b, size_t most) {
    size_t count = 0;
    for (; count + 8 <= most; count += 8) {
        const uint64_t difference = load64(a + count) ^ load64(b + count);
        if (difference != 0) return count + static_cast<size_t>(std::countr_zero(difference)) / 8;
    }
    while (count < most && a[count] == b[count]) count++;
    return count;
}

// 1. The longest match with the pixel before, with the row above, and with the last places where
//    four bytes of the same hash began.
// 2. A farther one costs more bits: it is taken when it is longer by two bytes.
// 3. Without one a byte goes out as it is, or three as the colour of the pixel before, when only
//    its opacity differs.
template <int kPlaces>
class Matcher {
public:
    Matcher(const uint8_t* rows, size_t size, size_t period, deflate::Blocks& blocks)
        : rows_(rows),
          size_(size),
          above_(period <= kFarthestMatch ? period : size),
          blocks_(blocks) {}

    void run() {
        const size_t last = size_ - std::min(size_, kAhead);
        const size_t first = std::min(last, kPixel);
        for (size_t i = 0; i < first; i++) blocks_.addLiteral(rows_[i]);
        size_t at = first;
        while (at < std::min(last, above_)) at += step<false>(at);
        while (at < last) at += step<true>(at);
        for (; at < size_; at++) blocks_.addLiteral(rows_[at]);
    }

private:
    struct Match {
        size_t length = 0;
        size_t distance = 0;
    };

    // Tells what is at this place, and how many bytes of it.
    template <bool kHasAbove>
    size_t step(size_t at) {
        const uint32_t word = wordAt(at);
        Match match;
        consider(match, at, word, kPixel);
        if (kHasAbove) consider(match, at, word, above_);
        if (match.length < kLong) {
            considerPlaces(match, at, word);
            if (match.length == 0) return stepWithout(at, word);
            const size_t remembered = std::min(match.length, kRemembered);
            for (size_t i = 1; i < remembered; i++) remember(at + i);
        }
        blocks_.addMatch(match.length, match.distance);
        return match.length;
    }

    void considerPlaces(Match& match, size_t at, uint32_t word) {
        uint64_t seen = remember(at);
        for (int i = 0; i < kPlaces; i++, seen >>= 16) {
            // Of a place that is too far for its number, too, only the bytes there count.
            const size_t distance = (at - seen) & 0xFFFF;
            if (distance - 1 < std::min(at, kFarthestMatch)) consider(match, at, word, distance);
        }
    }

    void consider(Match& match, size_t at, uint32_t word, size_t distance) const {
        if (wordAt(at - distance) != word) return;
        // Those that end too early are seen by the bytes that would make them long enough.
        if (match.length > 0) {
            const size_t end = std::min(at + match.length - 2, size_ - kAhead);
            if (wordAt(end) != wordAt(end - distance)) return;
        }
        const uint8_t* here = rows_ + at + kWord;
        const size_t length = kWord + equalBytes(here, here - distance, size_ - at - kWord);
        if (match.length == 0 || length > match.length + 1) match = {length, distance};
    }

    size_t stepWithout(size_t at, uint32_t word) {
        if (((word ^ wordAt(at - kPixel)) & 0xFFFFFF) == 0) {
            blocks_.addMatch(deflate::kShortestMatch, kPixel);
            return deflate::kShortestMatch;
        }
        blocks_.addLiteral(static_cast<uint8_t>(word));
        return 1;
    }

    // The places before this one where a word of the same hash began.
    uint64_t remember(size_t at) {
        uint64_t& places = places_[hashOf(wordAt(at))];
        const uint64_t before = places;
        places = before << 16 | (at & 0xFFFF);
        return before;
    }

    uint32_t wordAt(size_t at) const { return static_cast<uint32_t>(load64(rows_ + at)); }
    static size_t hashOf(uint32_t word) { return word * 0x9E3779B1u >> (32 - kHashBits); }

    const uint8_t* rows_;
    const size_t size_;
    const size_t above_;  // how far before a pixel the one above is; beyond all when out of reach
    deflate::Blocks& blocks_;
    // The lower 16 bits of the last four places for a hash, the last one lowest.
    // A quarter of a megabyte on the stack: fresh memory of its own would take as long as a seventh
    // of a title.
    std::array<uint64_t, size_t{1} << kHashBits> places_{};
};

}  // namespace

std::vector<uint8_t> deflateRows(const uint8_t* rows, size_t size, size_t period,
                                 RowEffort effort) {
    // Window of 32 KiB, fastest level, no dictionary.
    std::vector<uint8_t> out{0x78, 0x01};
    deflate::Blocks blocks(out);
    if (effort == RowEffort::kLess) {
        Matcher<1>(rows, size, period, blocks).run();
    } else {
        Matcher<4>(rows, size, period, blocks).run();
    }
    blocks.finish();
    const uint32_t sum = libdeflate_adler32(1, rows, size);
    for (const int shift : {24, 16, 8, 0}) out.push_back(static_cast<uint8_t>(sum >> shift));
    return out;
}

}  // namespace gxtext
