// The fast kernels against their plain forms, byte for byte, on every instruction set. That the
// plain forms are right is shown in GxBlenderTest.
#include "raster/kernels/BlendRows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "raster/SimdTest.h"
#include "support/Random.h"

namespace GxFontEffect::kernels {
namespace {

using gxtest::Random;
using Bytes = std::vector<uint8_t>;

// An operation, as (area, colour, third plane) -> pixels. Whole-image steps take the area's first
// row as their pixels.
struct Operation {
    const char* name;
    size_t destinationBytes;
    size_t sourceBytes;
    std::function<void(const BlendArea&, Rgba)> fast;
    std::function<void(const BlendArea&, Rgba)> plain;
};

template <void (*kFast)(const BlendArea&, Rgba), void (*kPlain)(const BlendArea&, Rgba)>
Operation tinting(const char* name) {
    return {name, 4, 1, kFast, kPlain};
}

template <void (*kFast)(const BlendArea&, SourceOrder),
          void (*kPlain)(const BlendArea&, SourceOrder)>
Operation blending32(const char* name, SourceOrder order) {
    return {name, 4, 4, [=](const BlendArea& area, Rgba) { kFast(area, order); },
            [=](const BlendArea& area, Rgba) { kPlain(area, order); }};
}

// The table that colours are mapped through.
const uint32_t* someTable() {
    static const std::vector<uint32_t> table = [] {
        Random random(23);
        std::vector<uint32_t> colors(257);
        for (uint32_t& color : colors) color = random.word() & (random.oneIn(4) ? 0xFFFFFF : ~0u);
        return colors;
    }();
    return table.data();
}

const Rgba* someColors() {
    static const std::vector<Rgba> colors = [] {
        std::vector<Rgba> some(256);
        for (size_t i = 1; i < some.size(); ++i) some[i] = fromWord(someTable()[i]);
        return some;
    }();
    return colors.data();
}

std::vector<Operation> operations() {
    return {
        tinting<srcOver8Rows, plain::srcOver8Rows>("source over"),
        tinting<dstOver8Rows, plain::dstOver8Rows>("destination over"),
        tinting<dstOverNsa8Rows, plain::dstOverNsa8Rows>("destination over, on or off"),
        tinting<dstOverSa8Rows, plain::dstOverSa8Rows>("other"),
        {"colours by coverage", 4, 1,
         [](const BlendArea& area, Rgba) { dstOverMapped8Rows(area, someTable()); },
         [](const BlendArea& area, Rgba) { plain::dstOverMapped8Rows(area, someTable()); }},
        {"by coverage", 4, 1,
         [](const BlendArea& area, Rgba) { paintByCoverageRows(area, someColors()); },
         [](const BlendArea& area, Rgba) { plain::paintByCoverageRows(area, someColors()); }},
        tinting<overwrite8Rows, plain::overwrite8Rows>("overwrite"),
        {"maximum", 1, 1, [](const BlendArea& area, Rgba) { max8Rows(area); },
         [](const BlendArea& area, Rgba) { plain::max8Rows(area); }},
        blending32<srcOver32Rows, plain::srcOver32Rows>("32 source over", SourceOrder::kRgba),
        blending32<srcOver32Rows, plain::srcOver32Rows>("words source over", SourceOrder::kBgra),
        blending32<dstOver32Rows, plain::dstOver32Rows>("RGBA destination over",
                                                        SourceOrder::kRgba),
        blending32<dstOver32Rows, plain::dstOver32Rows>("words destination over",
                                                        SourceOrder::kBgra),
        blending32<dstOver32Rows, plain::dstOver32Rows>("ARGB destination over",
                                                        SourceOrder::kArgb),
    };
}

// Bytes as they come in pictures: stretches of nothing, of full values, and of anything, long
// enough for whole blocks to be alike.
Bytes patchyBytes(Random& random, size_t count) {
    Bytes bytes(count);
    for (size_t i = 0; i < count;) {
        const auto end = std::min(count, i + static_cast<size_t>(random.between(1, 300)));
        const int kind = random.between(0, 2);
        for (; i < end; ++i) bytes[i] = kind == 0 ? 0 : kind == 1 ? 255 : random.edgeByte();
    }
    return bytes;
}

Bytes someBytes(Random& random, size_t count) {
    return random.oneIn(2) ? patchyBytes(random, count) : random.edgeBytes(count);
}

Rgba someColor(Random& random) {
    return {random.byte(), random.byte(), random.byte(), random.edgeByte()};
}

class BlendRows : public gxtest::SimdTest {
protected:
    // Runs both forms on the same random bytes. The buffers end with the last row's last pixel, so
    // that the address sanitizer sees a step past it, and all of the destination is compared.
    void check(const Operation& operation, size_t width, size_t height, size_t offset, size_t gap) {
        const size_t destinationStride = width * operation.destinationBytes + gap;
        const size_t sourceStride = width * operation.sourceBytes + gap;
        Bytes expected = someBytes(random, offset + destinationStride * height - gap);
        Bytes actual = expected;
        Bytes source = someBytes(random, offset + sourceStride * height - gap);
        const Rgba color = someColor(random);

        BlendArea area{expected.data() + offset,
                       static_cast<ptrdiff_t>(destinationStride),
                       source.data() + offset,
                       static_cast<ptrdiff_t>(sourceStride),
                       width,
                       height};
        operation.plain(area, color);
        area.destination = actual.data() + offset;
        operation.fast(area, color);
        ASSERT_EQ(gxtest::firstDifference(expected.data(), actual.data(), expected.size()), "")
            << operation.name << " (" << width << " x " << height << ", offset " << offset
            << ", gap " << gap << ")";
    }

    Random random{21};
};

TEST_P(BlendRows, EqualThePlainFormAtEveryWidth) {
    GX_TRACE_SEED(random);
    constexpr size_t kWidest = 3 * 64 + 5;
    for (const Operation& operation : operations()) {
        for (size_t width = 1; width <= kWidest; ++width) {
            for (size_t offset = 0; offset < 4; ++offset) {
                check(operation, width, 3, offset, 1 + width % 7);
                if (HasFatalFailure()) return;
            }
        }
        for (size_t width = 505; width < 520; ++width) check(operation, width, 3, 1, 3);
        check(operation, 41, 50, 0, 0);  // packed rows, which are taken as one
        check(operation, 1100, 20, 1, 3);
        if (HasFatalFailure()) return;
    }
}

TEST_P(BlendRows, TakeEmptyAreas) {
    for (const Operation& operation : operations()) {
        operation.fast(BlendArea(), Rgba());
        uint8_t pixel[4] = {1, 2, 3, 4};
        operation.fast({pixel, 4, pixel, 4, 0, 3}, Rgba());
        operation.fast({pixel, 4, pixel, 4, 1, 0}, Rgba());
        EXPECT_EQ(pixel[3], 4);
    }
}

TEST_P(BlendRows, RowsMayRunBackwards) {
    for (const Operation& operation : operations()) {
        const Bytes source = random.edgeBytes(40 * 4 * 3);
        Bytes expected = random.edgeBytes(40 * 4 * 3), actual = expected;
        const auto stride = static_cast<ptrdiff_t>(40 * operation.sourceBytes);
        BlendArea area{expected.data(), 40 * 4, source.data() + 2 * stride, -stride, 40, 3};
        operation.plain(area, {10, 20, 30, 200});
        area.destination = actual.data();
        operation.fast(area, {10, 20, 30, 200});
        EXPECT_EQ(actual, expected) << operation.name;
    }
}

// Every mask byte meets every destination alpha.
TEST_P(BlendRows, EqualThePlainFormForEveryCoverageAndAlpha) {
    GX_TRACE_SEED(random);
    Bytes mask(256 * 256), layer = random.edgeBytes(mask.size() * 4), source;
    for (size_t i = 0; i < mask.size(); ++i) {
        mask[i] = static_cast<uint8_t>(i);
        layer[i * 4 + 3] = static_cast<uint8_t>(i >> 8);
    }
    Bytes words = random.edgeBytes(layer.size());
    for (size_t i = 0; i < mask.size(); ++i) words[i * 4 + 3] = mask[i];
    for (const Operation& operation : operations()) {
        if (operation.destinationBytes != 4) continue;
        Bytes expected = layer, actual = layer;
        const Bytes& from = operation.sourceBytes == 1 ? mask : words;
        BlendArea area{expected.data(), 0, from.data(), 0, mask.size(), 1};
        const Rgba color = someColor(random);
        operation.plain(area, color);
        area.destination = actual.data();
        operation.fast(area, color);
        ASSERT_EQ(actual, expected) << operation.name;
    }
}

GX_INSTANTIATE_SIMD_TESTS(BlendRows);

// --- whole images ---

class CompositeRows : public gxtest::SimdTest {
protected:
    struct Row {
        Rgba* pixels;
        const Rgba* back;
        const uint8_t* mask;
        size_t count;
        uint32_t alpha;
    };
    using Step = void (*)(const Row&);

    void check(const char* name, Step fast, Step plain) {
        SCOPED_TRACE(name);
        for (size_t count = 0; count < 300; ++count) {
            const Bytes before = someBytes(random, count * 4);
            const Bytes back = someBytes(random, count * 4), mask = someBytes(random, count);
            const uint32_t alpha = random.edgeByte();
            Bytes expected = before, actual = before;
            const auto run = [&](Step step, Bytes& pixels) {
                step({reinterpret_cast<Rgba*>(pixels.data()),
                      reinterpret_cast<const Rgba*>(back.data()), mask.data(), count, alpha});
            };
            run(plain, expected);
            run(fast, actual);
            ASSERT_EQ(actual, expected) << count << " pixels, alpha " << alpha;
        }
    }

    Random random{22};
};

TEST_P(CompositeRows, EqualThePlainFormAtEveryLength) {
    GX_TRACE_SEED(random);
    check(
        "mix", [](const Row& r) { mixLayersRow(r.pixels, r.back, r.mask, r.count); },
        [](const Row& r) { plain::mixLayersRow(r.pixels, r.back, r.mask, r.count); });
    check(
        "clear", [](const Row& r) { clearUncoveredRow(r.pixels, r.mask, r.count); },
        [](const Row& r) { plain::clearUncoveredRow(r.pixels, r.mask, r.count); });
    check(
        "fade", [](const Row& r) { fadeAndUnpremultiplyRow(r.pixels, r.count, r.alpha); },
        [](const Row& r) { plain::fadeAndUnpremultiplyRow(r.pixels, r.count, r.alpha); });
    check(
        "fade into words", [](const Row& r) { fadeIntoWordsRow(r.pixels, r.count, r.alpha); },
        [](const Row& r) { plain::fadeIntoWordsRow(r.pixels, r.count, r.alpha); });
    check(
        "swap", [](const Row& r) { swapRedBlueRow(r.pixels, r.count); },
        [](const Row& r) { plain::swapRedBlueRow(r.pixels, r.count); });
}

// floor(channel x 256 / alpha), at most 255, for every pair, in each of the three channels.
TEST_P(CompositeRows, DivideExactly) {
    for (int channel = 0; channel < 3; ++channel) {
        Bytes pixels(256 * 256 * 4, 7);
        for (uint32_t i = 0; i < 256 * 256; ++i) {
            pixels[i * 4 + static_cast<uint32_t>(channel)] = static_cast<uint8_t>(i);
            pixels[i * 4 + 3] = static_cast<uint8_t>(i >> 8);
        }
        fadeAndUnpremultiplyRow(reinterpret_cast<Rgba*>(pixels.data()), 256 * 256, 255);
        for (uint32_t i = 0; i < 256 * 256; ++i) {
            const uint32_t c = i & 255, a = i >> 8;
            const uint32_t expected = a == 0 ? 0 : std::min(255u, c * 256 / a);
            ASSERT_EQ(pixels[i * 4 + static_cast<uint32_t>(channel)], expected) << c << "/" << a;
            ASSERT_EQ(pixels[i * 4 + 3], a);
        }
    }
}

GX_INSTANTIATE_SIMD_TESTS(CompositeRows);

}  // namespace
}  // namespace GxFontEffect::kernels
