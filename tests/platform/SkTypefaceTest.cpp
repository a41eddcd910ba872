#include "SkTypeface.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "SkDrawing.h"
#include "SkFontArguments.h"

namespace gxtest {
namespace {

bool draws(const sk_sp<SkTypeface>& typeface, SkGlyphID glyph) {
    MaskCanvas mask(64, 64);
    mask.draw(SkFont(typeface, 40), {{glyph, 10, 50}});
    return mask.pixels != MaskCanvas(64, 64).pixels;
}

TEST(SkTypefaceTest, WhatIsNoFontGivesNull) {
    const std::vector<char>& font = fontBytes(kDejaVuSans);
    const auto make = [](const void* data, size_t size, int index) {
        return SkTypeface::MakeFromStream(std::make_unique<SkMemoryStream>(data, size), index);
    };
    EXPECT_TRUE(make(font.data(), font.size(), 0));
    EXPECT_FALSE(SkTypeface::MakeFromStream(nullptr, 0));
    EXPECT_FALSE(make(nullptr, 100, 0));
    EXPECT_FALSE(make(font.data(), 0, 0));
    EXPECT_FALSE(make("not a font, just text", 21, 0));
    for (const int index : {-1, 1, 7, 0x10000, 0x7FFFFFFF, -0x7FFFFFFF - 1}) {
        EXPECT_FALSE(make(font.data(), font.size(), index)) << index;
    }
    EXPECT_FALSE(loadTypeface(kNotoCjk, 1000));
    // Other formats that FreeType reads.
    std::vector<char> other = font;
    for (const char* signature : {"wOFF", "wOF2", "\x1F\x8B\x08", "%!PS", "STAR", "lst "}) {
        std::copy_n(signature, 4, other.begin());
        EXPECT_FALSE(makeTypeface(other)) << signature;
    }
}

TEST(SkTypefaceTest, BytesAreBorrowedOrCopiedAsAsked) {
    const std::vector<char>& font = fontBytes(kDejaVuSans);
    EXPECT_EQ(SkMemoryStream(font.data(), font.size()).getMemoryBase(), font.data());

    auto temporary = std::make_unique<std::vector<char>>(font);
    auto stream = std::make_unique<SkMemoryStream>(temporary->data(), temporary->size(), true);
    temporary.reset();
    sk_sp<SkTypeface> typeface = SkTypeface::MakeFromStream(std::move(stream));
    EXPECT_TRUE(draws(typeface, 36));
    // A clone shares the copy and outlives the first.
    const sk_sp<SkTypeface> clone = typeface->makeClone(SkFontArguments());
    typeface.reset();
    EXPECT_TRUE(draws(clone, 36));
}

TEST(SkMemoryStreamTest, ReadsSkipsAndStopsAtTheEnd) {
    SkMemoryStream stream("abcdef", 6);
    char buffer[8] = {};
    EXPECT_EQ(stream.skip(1), 1u);
    EXPECT_EQ(stream.read(buffer, 8), 5u);
    EXPECT_STREQ(buffer, "bcdef");
    EXPECT_TRUE(stream.isAtEnd() && stream.rewind() && !stream.isAtEnd());
    EXPECT_TRUE(stream.seek(100) && stream.isAtEnd());
    EXPECT_EQ(stream.duplicate()->getPosition(), 0u);
    EXPECT_EQ(SkMemoryStream(nullptr, 10).getLength(), 0u);
}

// A stream that does not hold its bytes in memory, and may end too early.
class SlowStream : public SkMemoryStream {
public:
    SlowStream(const std::vector<char>& bytes, size_t promised)
        : SkMemoryStream(bytes.data(), bytes.size()), fPromised(promised) {}
    size_t getLength() const override { return fPromised; }
    const void* getMemoryBase() override { return nullptr; }

private:
    size_t fPromised;
};

TEST(SkTypefaceTest, StreamsOutsideMemoryAreRead) {
    const std::vector<char>& font = fontBytes(kDejaVuSans);
    const auto typeface =
        SkTypeface::MakeFromStream(std::make_unique<SlowStream>(font, font.size()));
    ASSERT_TRUE(typeface);
    EXPECT_TRUE(draws(typeface, 36));
    EXPECT_FALSE(SkTypeface::MakeFromStream(std::make_unique<SlowStream>(font, font.size() + 1)));
}

}  // namespace
}  // namespace gxtest
