// From string to pixels: where ink may be, colours, clipping, boxes, and a few whole pictures.
#include <SkBitmap.h>
#include <SkCanvas.h>
#include <SkImageInfo.h>
#include <SkPaint.h>
#include <SkRect.h>
#include <gmock/gmock.h>
#include <hwui/MinikinUtils.h>
#include <hwui/Typeface.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "base/Error.h"
#include "raster/GxBlender.h"
#include "support/LogCapture.h"
#include "support/Random.h"
#include "text/GxFontDrawing.h"
#include "text/TextFixture.h"

namespace GxFontEffect {
namespace {

using gxtest::Image;

class Render : public TextFixture {
protected:
    static uint32_t at(const Image& image, int x, int y) {
        return image.pixels[size_t(y) * image.width + x];
    }
    static int opaquePixels(const Image& image) {
        return static_cast<int>(std::count_if(image.pixels.begin(), image.pixels.end(),
                                              [](uint32_t p) { return p >> 24 == 255; }));
    }
    static long coverage(const Image& image) {
        long sum = 0;
        for (uint32_t p : image.pixels) sum += p >> 24;
        return sum;
    }
};

TEST_F(Render, InkIsTheTextColourAndStaysOnItsLine) {
    setLines({L"Hxg"});
    const Image image = render(200, 80);
    const GxRect ink = inkOf(image);
    EXPECT_GE(ink.left, 4);
    EXPECT_LE(ink.right, 4 + 110);
    EXPECT_GT(ink.top, 50 - 40) << "48 px capitals are about 34 px high";
    EXPECT_LT(ink.top, 50 - 30);
    EXPECT_GT(ink.bottom, 50) << "g goes below the baseline";
    EXPECT_LT(ink.bottom, 50 + 14);
    EXPECT_GT(opaquePixels(image), 500);
    for (uint32_t p : image.pixels) {
        if (p >> 24 != 255) continue;
        ASSERT_EQ(p, 0xFF203040u);
    }
}

TEST_F(Render, TextAlphaFadesEverything) {
    setLines({L"H"});
    const Image opaque = render(60, 60);
    text.SetTextColor(0x80203040);
    const Image faded = render(60, 60);
    for (size_t i = 0; i < opaque.pixels.size(); ++i) {
        const uint32_t alpha = opaque.pixels[i] >> 24;
        ASSERT_EQ(faded.pixels[i] >> 24, ((alpha + 1) * 128) >> 8);
        if (alpha != 255) continue;
        ASSERT_EQ(faded.pixels[i] & 0xFFFFFF, 0x203040u);
    }
    text.SetTextColor(0x00203040);
    EXPECT_EQ(coverage(render(60, 60)), 0);
}

TEST_F(Render, BackgroundBoxesSpanTheAdvance) {
    setLines({L"Hi\n", L"Wide line"});
    text.SetBackgroundColor(0xFF00FF00, true);
    const Image image = render(300, 140);
    // rect.right = x + advance, the box's rows as given.
    for (int i = 0; i < 2; ++i) {
        const GxRect& box = line(i).rect;
        EXPECT_EQ(box.left, 4);
        EXPECT_EQ(box.top, 60 * i + 5);
        EXPECT_EQ(box.bottom, 60 * i + 60);
        EXPECT_EQ(at(image, box.left, box.top), 0xFF00FF00u);
        EXPECT_EQ(at(image, box.right - 1, box.bottom - 1), 0xFF00FF00u);
        EXPECT_EQ(at(image, box.right, box.top), 0u);
        EXPECT_EQ(at(image, box.left - 1, box.top), 0u);
    }
    EXPECT_LT(line(0).rect.right, line(1).rect.right);
    EXPECT_NE(std::count(image.pixels.begin(), image.pixels.end(), 0xFF203040u), 0);
    text.SetBackgroundColor(0xFF00FF00, false);
    setLines({L"Hi"});
    const Image plain = render(300, 140);
    EXPECT_EQ(std::count(plain.pixels.begin(), plain.pixels.end(), 0xFF00FF00u), 0);
}

TEST_F(Render, ALineAfterABreakIsShapedInItsParagraph) {
    // The second line starts inside an Arabic word: its first letter joins to the one before it.
    setLines({L"\x0645\x0628", L"\x0628\x0645"}, -1);
    const long joined = coverage(render(200, 140));
    setLines({L"\x0645\x0628\n", L"\x0628\x0645"}, -1);
    EXPECT_NE(coverage(render(200, 140)), joined);
}

TEST_F(Render, ItalicAndBoldAreFakedWhenTheFontHasNone) {
    setLines({L"HHH"});
    const Image upright = render(200, 80);
    text.SetTextStyle(false, true);
    const Image italic = render(200, 80);
    EXPECT_NE(italic, upright);
    // The top of a slanted stem lies to the right of its foot.
    const auto leftmost = [](const Image& image, int y) {
        for (int x = 0; x < image.width; ++x) {
            if (at(image, x, y) >> 24 > 128) return x;
        }
        return -1;
    };
    EXPECT_GT(leftmost(italic, 22), leftmost(italic, 46) + 3);
    EXPECT_EQ(leftmost(upright, 22), leftmost(upright, 46));
    text.SetTextStyle(false, false);
    setPaint(48, 0x21);  // fake bold
    EXPECT_GT(coverage(render(200, 80)), coverage(upright) * 11 / 10);
}

TEST_F(Render, HostilePaintsAndLinesGiveAnAnswer) {
    const float kNaN = std::numeric_limits<float>::quiet_NaN();
    const float kInfinity = std::numeric_limits<float>::infinity();
    for (float size : {0.0f, -5.0f, 0.01f, 256.0f, 257.0f, 4000.0f, 1e9f, kNaN, kInfinity}) {
        setPaint(size);
        setLines({L"Ag"});
        render(64, 64);
    }
    for (float bad : {kNaN, kInfinity, -kInfinity, 1e20f, -3.0f}) {
        android::Paint paint;
        paint.getSkFont().setSize(30);
        paint.getSkFont().setScaleX(bad);
        paint.getSkFont().setSkewX(bad);
        paint.setLetterSpacing(bad);
        text.SetPaint(paint);
        render(64, 64);
    }
    setPaint(20);
    gxtest::Random random(31);
    GX_TRACE_SEED(random);
    const int edges[] = {INT32_MIN, -1, 0, 1, 2, 3, 100, INT32_MAX};
    const auto edge = [&] { return edges[random.between(0, 7)]; };
    for (int round = 0; round < 200; ++round) {
        setLines({L"Agx"});
        GxLineInfo& record = line(0);
        record.x = edge();
        record.y = edge();
        record.start = edge();
        record.end = edge();
        record.direction = edge();
        record.rect = GxRect(edge(), edge(), edge(), edge());
        text.SetBackgroundColor(random.word(), true);
        text.GetView()->SetPadding(edge(), edge(), edge(), edge());
        render(40, 40);
        render(40, 40);
    }
}

TEST_F(Render, LinesOf100000CharactersAreDrawn) {
    const struct {
        wchar_t character;
        bool hasInk;  // a mask is as wide as its line's advance, which marks do not have
    } cases[] = {
        {L'a', true}, {L'\x0628', true}, {L'\x4E2D', true}, {L'\x0301', false}, {L' ', false}};
    for (const auto& c : cases) {
        setLines({std::wstring(100000, c.character)});
        EXPECT_EQ(coverage(render(100, 60)) > 0, c.hasInk) << static_cast<int>(c.character);
    }
}

TEST_F(Render, WithoutAnyFamilyNothingIsDrawn) {
    // The system Roboto set adds no family of its own; here the other families are loaded, so take
    // them away.
    std::vector<int> loaded;
    for (GxFontFamily* family : systemFamilies()) {
        loaded.push_back(static_cast<int>(family->loaded));
        family->loaded = 0;
    }
    setLines({L"A"});
    for (GxFontFamily* family : systemFamilies()) family->loaded = 0;
    EXPECT_EQ(coverage(render(50, 60)), 0);
    for (size_t i = 0; i < loaded.size(); ++i) systemFamilies()[i]->loaded = loaded[i];
    EXPECT_GT(coverage(render(50, 60)), 0);
}

TEST_F(Render, AFamilyLoadedLaterDrawsFromTheNextRenderOn) {
    setLines({L"\x0928\x092E"});
    const Image whole = render(100, 70);
    GxFontFamily* devanagari = systemFamilies()[2];
    devanagari->loaded = 0;
    const Image missing = render(100, 70);
    EXPECT_NE(missing, whole);
    EXPECT_EQ(render(100, 70), missing);
    GxTextObject other;
    ASSERT_TRUE(other.Construct());
    ASSERT_TRUE(other.SetText(L"\x0915"));  // asks for the family
    EXPECT_EQ(render(100, 70), whole);
}

// --- the drawing's own parts ---

// Two objects in turn: neither the process's fonts nor the other object's take part.
TEST_F(Render, ObjectsWithFamiliesOfTheirOwnDoNotDisturbEachOther) {
    setLines({L"Wide 中"});
    const gxtest::Image process = render(300, 70);
    const auto families = [](std::initializer_list<const char*> fonts) {
        std::vector<std::shared_ptr<minikin::FontFamily>> made;
        for (const char* font : fonts) made.push_back(gxtest::makeFamily(gxtest::loadFont(font)));
        return made;
    };
    const auto renderWith = [&](std::initializer_list<const char*> fonts) {
        EXPECT_TRUE(text.SetFontFamilies(families(fonts), 400));
        setLines({L"Wide 中"});
        return render(300, 70);
    };
    const gxtest::Image sans = renderWith({gxtest::kNotoSans});
    EXPECT_NE(sans, process);  // no glyph for the last character
    EXPECT_NE(renderWith({gxtest::kNotoSans, gxtest::kNotoCjk}), sans);
    EXPECT_NE(renderWith({gxtest::kDejaVuSans}), sans);
    EXPECT_EQ(renderWith({gxtest::kNotoSans}), sans);
    EXPECT_EQ(renderWith({}), process);
}

TEST_F(Render, TheBitmapFitsTheViewAndItsEffects) {
    setLines({L"A"});
    text.GetEffect()->addOuterShadowText(0, 7, 0, 0xFF000000, 1);  // seven pixels to the left
    text.GetView()->SetSize(100, 50);
    ASSERT_TRUE(text.FitBitmapToView());
    EXPECT_EQ(text.GetView()->GetBitmapWidth(), 107);
    EXPECT_EQ(text.GetView()->GetBitmapHeight(), 50);
    text.GetView()->SetSize(INT32_MAX, 50);
    EXPECT_FALSE(text.FitBitmapToView());
    EXPECT_EQ(Error::GetError(), GXE_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(text.GetView()->GetBitmapWidth(), 107);
}

// In a view that is too small, and that padding would cut, all of the picture that a roomy view
// shows is there.
TEST_F(Render, WholeInkReachesBeyondTheView) {
    text.setKeepsWholeInk(true);
    text.SetTextStyle(false, true);
    text.GetEffect()->addStrokeText(3, 0xFF802020, 1, 0, 1);
    GxView& view = *text.GetView();
    view.SetPadding(20, 20, 20, 20);
    for (const wchar_t* line : {L"fWolf", L"j\u0301j\n \nWf", L"\u0645\u0631", L"a"}) {
        lineX = 90;
        setLines({line});
        const Image roomy = render(400, 200);
        const GxRect none = text.GetInkMargins();
        EXPECT_EQ(none.left + none.top + none.right + none.bottom, 0);
        lineX = 0;
        setLines({line});
        const Image tight = render(10, 30);
        const GxRect grown = text.GetInkMargins();
        EXPECT_GT(grown.right, 0);
        const GxRect ink = inkOf(roomy);
        const int dx = grown.left - 90, dy = grown.top;
        EXPECT_GE(ink.left + dx, 0);
        EXPECT_GE(ink.top + dy, 0);
        ASSERT_LE(ink.right + dx, tight.width);
        ASSERT_LE(ink.bottom + dy, tight.height);
        for (int y = ink.top; y < ink.bottom; ++y) {
            for (int x = ink.left; x < ink.right; ++x) {
                ASSERT_EQ(at(tight, x + dx, y + dy), at(roomy, x, y)) << x << ", " << y;
            }
        }
        EXPECT_EQ(coverage(tight), coverage(roomy));
    }
    text.setKeepsWholeInk(false);
    EXPECT_EQ(render(10, 30).width, 16) << "the view and its outline";
}

TEST_F(Render, MasksAreHandedOverWithTheirPen) {
    struct Mask {
        GxGlyph glyph;
        uint8_t pixels[6] = {255, 255, 255, 255, 255, 255};
    };
    Mask wide, narrow;
    wide.glyph = {wide.pixels, 3, 2, 2, 0};
    narrow.glyph = {narrow.pixels, 1, 2, 1, 1};
    List glyphs;
    glyphs.Construct();
    glyphs.Add(&wide.glyph);
    glyphs.Add(&narrow.glyph);
    GxFontDrawing drawing;
    const auto drawn = [&](int direction) {
        GxEffect stack;
        stack.initEffect(12, 10);
        drawing._DoRender(2 * 64 + 63, 5 * 64, &glyphs, &stack, direction);
        std::string rows;
        for (int y = 3; y < 6; ++y) {
            for (int x = 0; x < 12; ++x) rows += stack.getSrcBitmap()->data[y * 12 + x] ? '#' : '.';
            rows += '\n';
        }
        return rows;
    };
    EXPECT_EQ(drawn(1),
              "..###.......\n"
              "..###.#.....\n"
              "......#.....\n");
    // Last mask first.
    EXPECT_EQ(drawn(-1),
              "...###......\n"
              "...###......\n"
              "...#........\n");
    drawing._DoRender(0, 0, nullptr, nullptr, 1);
    List none;
    none.Construct();
    drawing._DoRender(0, 0, &none, nullptr, 1);
}

// --- pictures, whatever is left out on the way to them ---

class Composition : public Render {
protected:
    // The plain way: every pixel is composed, then drawn over the boxes on a canvas of its own.
    Image plainPicture(int width, int height, const uint32_t* background) {
        const auto extent = [](int pixels) { return static_cast<uint32_t>(pixels); };
        const GxBitmap layer(extent(width), extent(height), 4);
        GxBitmap drawn(layer), result(layer);
        EXPECT_TRUE(text.GetFont()->DrawTextEffect(&text, &drawn));
        const GxView& view = *text.GetView();
        const bool left = (view.gravity & 7) == 3, right = (view.gravity & 7) == 5;
        const bool top = (view.gravity & 0x70) == 0x30, bottom = (view.gravity & 0x70) == 0x50;
        SkCanvas canvas(wrap(result));
        canvas.clipRect(rectOf(GxRect(left ? 0 : view.paddingLeft, top ? 0 : view.paddingTop,
                                      width - (right ? 0 : view.paddingRight),
                                      height - (bottom ? 0 : view.paddingBottom))),
                        SkClipOp::kIntersect, false);
        SkPaint paint;
        if (background) paint.setColor(*background);
        for (int i = 0; background && i < text.GetLineInfo()->GetCount(); ++i) {
            canvas.drawRect(rectOf(line(i).rect), paint);
        }
        canvas.drawBitmap(wrap(drawn), 0, 0, nullptr);
        GxBlender::convertBGRAToARGB(&result);
        const auto* words = reinterpret_cast<const uint32_t*>(result.data);
        return {width, height, {words, words + result.pixelCount()}};
    }

    static SkBitmap wrap(const GxBitmap& bitmap) {
        SkBitmap wrapped;
        wrapped.installPixels(
            SkImageInfo::Make(static_cast<int>(bitmap.width), static_cast<int>(bitmap.height),
                              kRGBA_8888_SkColorType, kUnpremul_SkAlphaType, nullptr),
            bitmap.data, size_t{bitmap.width} * 4);
        return wrapped;
    }
    static SkRect rectOf(const GxRect& rect) {
        return SkRect::MakeLTRB(static_cast<float>(rect.left), static_cast<float>(rect.top),
                                static_cast<float>(rect.right), static_cast<float>(rect.bottom));
    }

    void addSomeEffects() {
        GxEffect& stack = *text.GetEffect();
        stack.cleanAllEffect();
        stack.setTextOpacity(random.oneIn(4) ? static_cast<float>(random.between(0, 9)) / 10 : 1);
        const auto size = [this] {
            return static_cast<float>(random.between(0, random.oneIn(5) ? 60 : 12)) / 2;
        };
        const auto share = [this] { return static_cast<float>(random.between(2, 10)) / 10; };
        const auto angle = [this] { return static_cast<float>(random.between(0, 359)); };
        const auto color = [this] { return random.word(); };
        const GxGradient stops[] = {{color(), 1, 0}, {color(), share(), 1}};
        GxBitmap pattern(3, 2, random.edgeBytes(24).data(), 4);
        const std::function<int()> adders[] = {
            [&] { return stack.addOuterShadowText(angle(), 3 * size(), size(), color(), share()); },
            [&] { return stack.addInnerShadowText(angle(), 3 * size(), size(), color(), share()); },
            [&] { return stack.addOuterGlowText(size(), color(), share(), 0, nullptr); },
            [&] { return stack.addInnerGlowText(size(), color(), share(), 2, stops); },
            [&] {
                return stack.addBevelText(random.between(0, 1), size(), share(), 0, 0, 3, 1,
                                          angle(), 30, color(), share(), color(), share());
            },
            [&] {
                return stack.addEmbossText(random.between(0, 1), size(), share(), 1, 0, 0, 1,
                                           angle(), 30, color(), share(), color(), share());
            },
            [&] { return stack.addLinearGradientText(angle(), share(), share(), 2, stops); },
            [&] { return stack.addRadialGradientText(share(), share(), 2, stops); },
            [&] { return stack.addStrokeText(size(), color(), share(), 0, random.between(0, 2)); },
            [&] { return stack.addPatternText(&pattern, 5 * share(), share()); },
            [&] {
                return stack.addLinearGradientStrokeText(size(), 0, random.between(0, 2), angle(),
                                                         share(), share(), 2, stops);
            },
        };
        stack.setRepeats(random.oneIn(2));
        for (int count = random.between(0, 4); count > 0; --count) {
            const int id = adders[static_cast<size_t>(random.between(0, 10))]();
            if (random.oneIn(2)) stack.setSilhouette(id, {random.between(0, 1), size()});
            if (random.oneIn(3)) stack.setSpan(id, GXE_SPAN_LINE);
        }
    }

    gxtest::Random random{97};
};

TEST_F(Composition, EqualsThePlainOneForAnyStyleClipAndBackground) {
    GX_TRACE_SEED(random);
    GxView& view = *text.GetView();
    const uint32_t gravities[] = {0xFFFFFFFFu, 0x11, 0x33, 0x35, 0x53, 0x55};
    for (int round = 0; round < 150; ++round) {
        SCOPED_TRACE(round);
        setPaint(static_cast<float>(random.between(4, 40)));
        setLines({L"Ag\n", L"x\x2588\n", L"j"});
        for (int i = 0; i < 3; ++i) {
            line(i).x = random.between(-40, 150);
            line(i).y = random.between(-40, 150);
            line(i).rect.top = random.between(-20, 140);
            line(i).rect.bottom = random.between(-20, 140);
        }
        addSomeEffects();
        text.SetTextColor(random.word() | (random.oneIn(2) ? 0xFF000000u : 0));
        const uint32_t background = random.word();
        const bool hasBackground = random.oneIn(2);
        text.SetBackgroundColor(background, hasBackground);
        view.gravity = gravities[random.between(0, 5)];
        const int paddings = random.oneIn(3) ? 90 : 8;
        const auto padding = [&] { return random.between(0, paddings); };
        view.SetPadding(padding(), padding(), padding(), padding());

        const GxRect boxes[] = {line(0).rect, line(1).rect, line(2).rect};
        const int most = random.oneIn(8) ? 1200 : 140;
        const Image actual = render(random.between(1, most), random.between(1, most));
        for (int i = 0; i < 3; ++i) line(i).rect = boxes[i];
        Image into = {actual.width, actual.height, {}};
        into.pixels.resize(actual.pixels.size());
        ASSERT_TRUE(text.RenderTextEffectInto(into.pixels.data(), into.width, into.height));
        ASSERT_EQ(into, actual);
        for (int i = 0; i < 3; ++i) line(i).rect = boxes[i];
        ASSERT_EQ(actual,
                  plainPicture(actual.width, actual.height, hasBackground ? &background : nullptr));
    }
}

// Pixels over nothing come out of the canvas as they are: the picture needs no canvas then.
TEST_F(Composition, DrawingOverNothingKeepsEveryPixel) {
    GxBitmap from(256, 256, 4);
    for (uint32_t i = 0; i < 256 * 256; ++i) {
        const auto value = static_cast<uint8_t>(i);
        const auto alpha = static_cast<uint8_t>(i >> 8);
        const uint8_t pixel[] = {value, static_cast<uint8_t>(255 - value), value, alpha};
        if (alpha != 0) std::copy_n(pixel, 4, from.data + size_t{i} * 4);
    }
    const GxBitmap onto(256, 256, 4);
    SkCanvas(wrap(onto)).drawBitmap(wrap(from), 0, 0, nullptr);
    EXPECT_TRUE(std::equal(from.data, from.data + 256 * 256 * 4, onto.data));
}

// --- whole pictures ---

TEST_F(Render, Goldens) {
    setPaint(32);
    setLines({L"Agfx & S"});
    EXPECT_TRUE(gxtest::matchesGolden(render(160, 70), "latin"));
    setLines({L"\x0645\x0631\x062D\x0628\x0627 abc"}, -1);
    EXPECT_TRUE(gxtest::matchesGolden(render(170, 70), "arabic-latin"));
    setLines({L"\x0928\x092E\x0938\x094D\x0924\x0947"});
    EXPECT_TRUE(gxtest::matchesGolden(render(120, 70), "devanagari"));
    setLines({L"\x65E5\x672C\x8A9E\n", L"box"});
    text.SetBackgroundColor(0x60FFD040, true);
    text.SetTextColor(0xC0104080);
    EXPECT_TRUE(gxtest::matchesGolden(render(120, 130), "lines-box"));
}

}  // namespace
}  // namespace GxFontEffect
