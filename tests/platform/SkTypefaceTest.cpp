#include "SkTypeface.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "FreeTypeReference.h"
#include "SfntFile.h"
#include "SkDrawing.h"
#include "support/AllocationFailure.h"
#include "support/Random.h"

namespace gxtest {
namespace {

constexpr SkFontTableTag tag(const char (&name)[5]) {
    return static_cast<SkFontTableTag>(name[0]) << 24 | name[1] << 16 | name[2] << 8 | name[3];
}

// Measures and draws with a font that may hold anything; all that is asked is an end and finite
// numbers.
void exercise(const sk_sp<SkTypeface>& typeface, const std::vector<SkGlyphID>& glyphs) {
    const auto count = static_cast<int>(glyphs.size());
    std::vector<float> widths(glyphs.size());
    std::vector<SkRect> bounds(glyphs.size());
    MaskCanvas mask(64, 64);
    for (const float size : {15.0f, 200.0f, 400.0f}) {
        for (const bool hinted : {true, false}) {
            SkFont font(typeface, size);
            font.setEmbolden(!hinted);
            font.setEdging(hinted ? SkFont::Edging::kAntiAlias : SkFont::Edging::kAlias);
            font.setSkewX(hinted ? 0 : -0.25f);
            font.getWidthsBounds(glyphs.data(), count, widths.data(), bounds.data(), nullptr);
            for (int i = 0; i < count; ++i) {
                ASSERT_TRUE(std::isfinite(widths[i]) && bounds[i].isFinite());
                mask.draw(font, {{glyphs[i], 10, 50}});
            }
        }
    }
}

TEST(SkTypefaceTest, WhatIsNoFontGivesNull) {
    const std::vector<char>& font = fontBytes(kDejaVuSans);
    EXPECT_FALSE(SkTypeface::MakeFromStream(nullptr, 0));
    const auto make = [](const void* data, size_t size, int index) {
        return SkTypeface::MakeFromStream(std::make_unique<SkMemoryStream>(data, size), index);
    };
    EXPECT_FALSE(make(nullptr, 100, 0));
    EXPECT_FALSE(make(font.data(), 0, 0));
    EXPECT_FALSE(make("not a font, just text", 21, 0));
    for (const int index : {-1, 1, 7, 0x10000, 0x7FFFFFFF, -0x7FFFFFFF - 1}) {
        EXPECT_FALSE(make(font.data(), font.size(), index)) << index;
    }
    EXPECT_TRUE(make(font.data(), font.size(), 0));
    // A bitmap font of the X window system: FreeType reads it, but there is nothing to lay out
    // with.
    const std::string bdf =
        "STARTFONT 2.1\nFONT x\nSIZE 8 75 75\nFONTBOUNDINGBOX 8 8 0 0\nSTARTPROPERTIES 2\n"
        "FONT_ASCENT 8\nFONT_DESCENT 0\nENDPROPERTIES\nCHARS 1\nSTARTCHAR A\nENCODING 65\n"
        "SWIDTH 500 0\nDWIDTH 8 0\nBBX 8 1 0 0\nBITMAP\nFF\nENDCHAR\nENDFONT\n";
    EXPECT_FALSE(make(bdf.data(), bdf.size(), 0));
}

TEST(SkTypefaceTest, CollectionsHoldSeveralFonts) {
    std::set<SkFontID> ids;
    for (const int index : {0, 4}) {
        const sk_sp<SkTypeface> typeface = loadTypeface(kNotoCjk, index);
        ASSERT_TRUE(typeface);
        FreeTypeReference reference(fontBytes(kNotoCjk), index);
        EXPECT_EQ(typeface->countGlyphs(), reference.face()->num_glyphs);
        EXPECT_EQ(typeface->getUnitsPerEm(), 1000);
        EXPECT_NE(typeface->uniqueID(), 0u);
        EXPECT_TRUE(ids.insert(typeface->uniqueID()).second);
        int stored = -1;
        EXPECT_EQ(typeface->openStream(&stored)->getLength(), fontBytes(kNotoCjk).size());
        EXPECT_EQ(stored, index);
    }
    EXPECT_FALSE(loadTypeface(kNotoCjk, 1000));
}

TEST(SkTypefaceTest, StyleComesFromTheTables) {
    const struct {
        const char* file;
        int weight;
        bool bold, italic;
    } cases[] = {{kNotoSans, 400, false, false},
                 {kNotoSansBold, 700, true, false},
                 {kNotoSansItalic, 400, false, true}};
    for (const auto& c : cases) {
        const sk_sp<SkTypeface> typeface = loadTypeface(c.file);
        EXPECT_EQ(typeface->fontStyle().weight(), c.weight);
        EXPECT_EQ(typeface->isBold(), c.bold);
        EXPECT_EQ(typeface->isItalic(), c.italic);
    }
    EXPECT_EQ(loadTypeface(kNotoColorEmoji)->getUnitsPerEm(), 2048);
}

TEST(SkTypefaceTest, TablesAreCopiedInParts) {
    const SfntFile file(fontBytes(kNotoSans));
    const Bytes& head = file.tables.at("head");
    const sk_sp<SkTypeface> typeface = loadTypeface(kNotoSans);
    ASSERT_EQ(typeface->getTableSize(tag("head")), head.size());
    Bytes copy(head.size() + 10, 0xAB);
    EXPECT_EQ(typeface->getTableData(tag("head"), 0, copy.size(), copy.data()), head.size());
    EXPECT_TRUE(std::equal(head.begin(), head.end(), copy.begin()));
    EXPECT_EQ(copy[head.size()], 0xAB);
    EXPECT_EQ(typeface->getTableData(tag("head"), 12, 4, copy.data()), 4u);
    EXPECT_EQ(readBig(copy, 0, 4), 0x5F0F3CF5u);
    EXPECT_EQ(typeface->getTableData(tag("head"), head.size(), 4, copy.data()), 0u);
    EXPECT_EQ(typeface->getTableData(tag("head"), 0, 4, nullptr), 0u);
    EXPECT_EQ(typeface->getTableSize(tag("none")), 0u);
    EXPECT_EQ(typeface->getTableSize(0), 0u);
}

TEST(SkTypefaceTest, BytesAreBorrowedOrCopiedAsAsked) {
    const std::vector<char>& font = fontBytes(kDejaVuSans);
    SkMemoryStream borrowed(font.data(), font.size());
    EXPECT_EQ(borrowed.getMemoryBase(), font.data());

    auto temporary = std::make_unique<std::vector<char>>(font);
    auto stream = std::make_unique<SkMemoryStream>(temporary->data(), temporary->size(), true);
    temporary.reset();
    sk_sp<SkTypeface> typeface = SkTypeface::MakeFromStream(std::move(stream));
    ASSERT_TRUE(typeface);
    exercise(typeface, {36, 72});
    // A stream of the typeface shares the copy and outlives it.
    const auto again = typeface->openStream(nullptr);
    typeface.reset();
    ASSERT_EQ(again->getLength(), font.size());
    EXPECT_EQ(std::memcmp(again->getMemoryBase(), font.data(), font.size()), 0);
}

TEST(SkMemoryStreamTest, ReadsSkipsAndStopsAtTheEnd) {
    SkMemoryStream stream("abcdef", 6);
    char buffer[8] = {};
    EXPECT_EQ(stream.read(buffer, 2), 2u);
    EXPECT_EQ(stream.skip(1), 1u);
    EXPECT_EQ(stream.read(buffer, 8), 3u);
    EXPECT_EQ(std::string(buffer, 3), "def");
    EXPECT_TRUE(stream.isAtEnd());
    EXPECT_TRUE(stream.seek(100));
    EXPECT_EQ(stream.getPosition(), 6u);
    EXPECT_EQ(stream.duplicate()->getPosition(), 0u);
    EXPECT_TRUE(stream.rewind());
    EXPECT_FALSE(stream.isAtEnd());
    SkMemoryStream empty(nullptr, 10);
    EXPECT_EQ(empty.getLength(), 0u);
    EXPECT_EQ(empty.read(buffer, 1), 0u);
}

// A stream that does not hold its bytes in memory, and may end too early.
class SlowStream : public SkStreamAsset {
public:
    SlowStream(const std::vector<char>& bytes, size_t promised)
        : fBytes(bytes), fInner(bytes.data(), bytes.size()), fPromised(promised) {}
    size_t read(void* buffer, size_t size) override { return fInner.read(buffer, size); }
    bool isAtEnd() const override { return fInner.isAtEnd(); }
    bool rewind() override { return fInner.rewind(); }
    size_t getPosition() const override { return fInner.getPosition(); }
    bool seek(size_t position) override { return fInner.seek(position); }
    size_t getLength() const override { return fPromised; }

private:
    SkStreamAsset* onDuplicate() const override { return new SlowStream(fBytes, fPromised); }

    const std::vector<char>& fBytes;
    SkMemoryStream fInner;
    size_t fPromised;
};

TEST(SkTypefaceTest, StreamsOutsideMemoryAreRead) {
    const std::vector<char>& font = fontBytes(kDejaVuSans);
    const auto typeface =
        SkTypeface::MakeFromStream(std::make_unique<SlowStream>(font, font.size()));
    ASSERT_TRUE(typeface);
    exercise(typeface, {36});
    EXPECT_FALSE(SkTypeface::MakeFromStream(std::make_unique<SlowStream>(font, font.size() + 1)));
}

TEST(SkTypefaceTest, TruncatedFontsAreRefusedOrHarmless) {
    Random random(11);
    GX_TRACE_SEED(random);
    for (const char* file : {kDejaVuSans, kNotoColorEmoji}) {
        const std::vector<char>& whole = fontBytes(file);
        std::vector<size_t> lengths = {1, 3, 11, 12, 13, 28, whole.size() - 1};
        for (int i = 0; i < 40; ++i) {
            lengths.push_back(random.between(1, 4000));
            lengths.push_back(random.word() % whole.size());
        }
        for (const size_t length : lengths) {
            // In memory of exactly this length, where the sanitizer sees each byte beyond.
            const std::vector<char> cut(whole.begin(), whole.begin() + static_cast<long>(length));
            const sk_sp<SkTypeface> typeface = makeTypeface(cut);
            if (typeface) exercise(typeface, {0, 36, 68, 200, 1000, 3000});
        }
    }
}

TEST(SkTypefaceTest, GlyphsMadeOfThemselvesAreBlank) {
    SfntFile file(fontBytes(kDejaVuSans));
    FreeTypeReference reference(fontBytes(kDejaVuSans));
    const SkGlyphID composite = reference.glyph(0xE9);  // e with acute
    const size_t at = file.glyphOffset(composite);
    Bytes& glyf = file.tables["glyf"];
    ASSERT_EQ(readBig(glyf, at, 2), 0xFFFFu) << "no composite glyph";
    writeBig(glyf, at + 12, 2, composite);  // the first component
    const Bytes bytes = file.build();
    const sk_sp<SkTypeface> typeface = makeTypeface(bytes);
    ASSERT_TRUE(typeface);
    const SkFont font(typeface, 30);
    SkRect bounds = SkRect::MakeWH(1, 1);
    font.getBounds(&composite, 1, &bounds, nullptr);
    EXPECT_EQ(bounds, SkRect::MakeEmpty());
    exercise(typeface, {composite});
}

TEST(SkTypefaceTest, EveryFailedAllocationIsAnswered) {
    const std::vector<char>& font = fontBytes(kNotoSans);
    MaskCanvas expected(64, 64);
    expected.draw(SkFont(makeTypeface(font), 30), {{40, 5, 50}, {41, 25, 50}});
    const int failures = failEachAllocation([&] {
        try {
            const sk_sp<SkTypeface> typeface = makeTypeface(font);
            const SkFont face(typeface, 30);
            const auto blob = makeBlob(face, {{40, 5, 50}, {41, 25, 50}});
            MaskCanvas mask(64, 64);
            mask.canvas->drawTextBlob(blob, 0, 0, SkPaint());
        } catch (const std::bad_alloc&) {
            // the stream, the blob and the canvas of the test itself
        }
    });
    EXPECT_GT(failures, 10);
    // Nothing that failed is remembered.
    MaskCanvas mask(64, 64);
    mask.draw(SkFont(makeTypeface(font), 30), {{40, 5, 50}, {41, 25, 50}});
    EXPECT_EQ(mask.pixels, expected.pixels);
}

TEST(SkTypefaceTest, ThreadsShareATypeface) {
    const sk_sp<SkTypeface> typeface = loadTypeface(kDejaVuSans);
    const auto draw = [&](int thread) {
        MaskCanvas mask(300, 60);
        for (int size = 10; size < 26; ++size) {
            // Each thread in another order of sizes, so that they meet in the same face.
            const SkFont font(typeface, static_cast<float>(10 + (size + 5 * thread) % 16));
            for (SkGlyphID glyph = 36; glyph < 46; ++glyph) {
                mask.draw(font, {{glyph, 5.0f + 20 * (glyph - 36), 40}});
            }
            loadTypeface(kNotoSans);
        }
        return mask.pixels;
    };
    std::vector<std::vector<uint8_t>> results(4);
    std::vector<std::thread> threads;
    threads.reserve(results.size());
    for (int i = 0; i < 4; ++i) threads.emplace_back([&, i] { results[i] = draw(i); });
    for (std::thread& thread : threads) thread.join();
    for (int i = 0; i < 4; ++i) EXPECT_EQ(results[i], draw(i)) << i;
}

}  // namespace
}  // namespace gxtest
