#include "skia/TextGamma.h"

#include <cmath>
#include <cstring>

namespace portable {

namespace {

// Android's text gamma 1.4, kept in steps of 1/64.
constexpr double kExponent = 89.0 / 64;

constexpr unsigned kLevelBits = 3;
static_assert(1u << kLevelBits == kGammaLevels);

// Mixes text of the luminance with its opposite as if by coverage in linear light, and asks which
// coverage gives the same mix in the encoded values.
CoverageTable makeTable(double luminance) {
    const double other = 1 - luminance;
    const double linearText = std::pow(luminance, kExponent);
    const double linearOther = std::pow(other, kExponent);
    CoverageTable table;
    for (int i = 0; i < 256; ++i) {
        const double a = i / 255.0;
        const double mix = std::pow(linearText * a + linearOther * (1 - a), 1 / kExponent);
        const double coverage = (mix - other) / (luminance - other);
        table[i] = static_cast<uint8_t>(std::floor(255 * coverage + 0.5));
    }
    return table;
}

using Tables = std::array<CoverageTable, kGammaLevels>;

Tables makeTables() {
    Tables tables;
    for (unsigned i = 0; i < tables.size(); ++i) {
        // Three bits repeated to fill eight: never the middle, where the formula would divide by 0.
        const unsigned luminance = i << 5 | i << 2 | i >> 1;
        tables[i] = makeTable(luminance / 255.0);
    }
    return tables;
}

}  // namespace

unsigned gammaLevel(SkColor color) {
    const unsigned luminance =
        (54 * SkColorGetR(color) + 183 * SkColorGetG(color) + 19 * SkColorGetB(color)) >> 8;
    return luminance >> (8 - kLevelBits);
}

namespace {

const CoverageTable& gammaTable(unsigned level) {
    static const Tables tables = makeTables();
    return tables[level];
}

}  // namespace

void applyGamma(unsigned level, uint8_t* coverage, size_t count) {
    const CoverageTable& table = gammaTable(level);
    constexpr size_t kBlock = sizeof(uint64_t);
    size_t i = 0;
    for (; i + kBlock <= count; i += kBlock) {
        uint64_t block;
        std::memcpy(&block, coverage + i, kBlock);
        if (block == 0 || block == ~uint64_t{0}) continue;  // ends that stay
        for (size_t j = i; j < i + kBlock; ++j) coverage[j] = table[coverage[j]];
    }
    for (; i < count; ++i) coverage[i] = table[coverage[i]];
}

const CoverageTable& textGamma(SkColor color) {
    return gammaTable(gammaLevel(color));
}

}  // namespace portable
