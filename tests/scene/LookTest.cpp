// Fields of a style that the renderer carries out itself, seen in the picture.
#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "scene/Renderer.h"
#include "support/Fonts.h"
#include "support/SyntheticFont.h"
#include "support/TempFolder.h"

namespace gxtext {
namespace {

using gxtest::fontPath;

Picture render(const std::string& fields, const char* text = "Wolf") {
    static Renderer renderer(
        FontSource::files({fontPath(gxtest::kNotoSans), fontPath(gxtest::kNotoSansItalic)}));
    return renderer.render(Style::fromJson("{\"size\": 60" + fields + "}"), text);
}

uint32_t pixelAt(const Picture& picture, int x, int y) {
    return picture.pixels()[static_cast<size_t>(y * picture.width() + x)];
}

// The letters without effects tell what is inside.
TEST(Look, FillOpacityFadesTheLettersAlone) {
    const std::string effects = R"(, "color": "#FF0000", "padding": 20, "effects": [
        {"type": "stroke", "size": 2, "color": "#0000FF"},
        {"type": "outerShadow", "size": 3, "opacity": 1}])";
    const Picture letters = render(R"(, "padding": 20)");
    const Picture nearlyWhole = render(effects + R"(, "fillOpacity": 0.999)");
    const Box margins = nearlyWhole.margins();
    for (const float opacity : {0.0f, 0.25f, 0.6f}) {
        const Picture faded = render(effects + ", \"fillOpacity\": " + std::to_string(opacity));
        int inside = 0, outside = 0;
        for (int y = 0; y < letters.height(); y++) {
            for (int x = 0; x < letters.width(); x++) {
                const uint32_t coverage = pixelAt(letters, x, y) >> 24;
                const uint32_t pixel = pixelAt(faded, x + margins.left, y + margins.top);
                if (coverage == 255) {
                    ASSERT_EQ(pixel >> 24, static_cast<uint32_t>(opacity * 255.0f + 0.5f));
                    inside++;
                } else if (coverage == 0) {
                    ASSERT_EQ(pixel, pixelAt(nearlyWhole, x + margins.left, y + margins.top));
                    outside += pixel != 0;
                }
            }
        }
        EXPECT_GT(inside, 500);
        EXPECT_GT(outside, 500);
    }
}

TEST(Look, EmojiAreInColourOrInTheTexts) {
    Renderer renderer(FontSource::files({fontPath(gxtest::kNotoColorEmoji)}));
    const auto redOnly = [&](const std::string& fields) {
        const Style style = Style::fromJson(R"({"color": "#FF0000")" + fields + "}");
        const Picture picture = renderer.render(style, "\U0001F600");
        return std::ranges::all_of(picture.pixels(), [](uint32_t pixel) {
            return pixel >> 24 == 0 || (pixel & 0xFFFFFF) == 0xFF0000;
        });
    };
    EXPECT_FALSE(redOnly(""));
    EXPECT_TRUE(redOnly(R"(, "emoji": "silhouette")"));
}

// Each corner's pixels by the distance from its circle's centre, in a box that stands alone; the
// overlap of two boxes is no darker than they are.
TEST(Look, BackgroundBoxesHaveRoundCornersAndMakeOneShape) {
    constexpr int kRadius = 9, kPadding = 11;
    const Picture one = render(
        R"(, "background": {"color": "#80204060", "radius": 9, "padding": 11}, "color": "#80FFFFFF")",
        "o");
    const Line& line = one.lines()[0];
    EXPECT_EQ(line.box.left, kPadding);
    EXPECT_EQ(line.box.top, kPadding);
    EXPECT_EQ(one.width(), line.box.right + kPadding);
    EXPECT_EQ(one.height(), line.box.bottom + kPadding);
    for (int y = 0; y < one.height(); y++) {
        for (int x = 0; x < kPadding; x++) {  // left of the letter
            const double dy = kRadius - std::min(y, one.height() - 1 - y) - 0.5;
            const double dx = kRadius - x - 0.5;
            const bool isCorner = dx > 0 && dy > 0;
            const double coverage =
                isCorner ? std::clamp(kRadius - std::hypot(dx, dy) + 0.5, 0.0, 1.0) : 1.0;
            const uint32_t pixel = pixelAt(one, x, y);
            ASSERT_NEAR(pixel >> 24, 128 * coverage, 1) << x << ", " << y;
            ASSERT_EQ(pixel & 0xFFFFFF, pixel >> 24 != 0 ? 0x204060u : 0u);
        }
    }
    const auto shape = [](const std::string& span) {
        return render(R"(, "background": {"color": "#80204060", "padding": 20, "span": ")" + span +
                          R"("}, "color": "#00000000")",
                      "oo\n\no");
    };
    const Picture lines = shape("line"), block = shape("block");
    const auto covered = [](const Picture& picture) {
        return std::count(picture.pixels().begin(), picture.pixels().end(), 0x80204060u);
    };
    EXPECT_EQ(covered(block), static_cast<long>(block.pixels().size()));
    const auto clear = std::count(lines.pixels().begin(), lines.pixels().end(), 0u);
    EXPECT_EQ(covered(lines) + clear, static_cast<long>(lines.pixels().size()));
    EXPECT_GT(clear, 500);
}

// The canvas shows through whatever the picture had, by the definition of alpha.
TEST(Look, TheCanvasLiesBeneathEverything) {
    const std::string fields =
        R"(, "color": "#C0D08040", "padding": 8, "background": "#60FF00FF", "effects": [
        {"type": "outerShadow"}])";
    const Picture plain = render(fields);
    const Picture opaque = render(fields + R"(, "canvas": "#305070")");
    const Picture thin = render(fields + R"(, "canvas": "#40305070")");
    for (int y = 0; y < plain.height(); y++) {
        for (int x = 0; x < plain.width(); x++) {
            const uint32_t p = pixelAt(plain, x, y);
            const double s = (p >> 24) / 255.0, b = 0x40 / 255.0;
            ASSERT_EQ(pixelAt(opaque, x, y) >> 24, 255u);
            const uint32_t q = pixelAt(thin, x, y);
            ASSERT_NEAR(q >> 24, 255 * (s + b * (1 - s)), 0.6);
            for (int shift = 0; shift < 24; shift += 8) {
                const double over = (p >> shift) & 0xFF, under = (0x305070 >> shift) & 0xFF;
                ASSERT_NEAR((pixelAt(opaque, x, y) >> shift) & 0xFF, over * s + under * (1 - s),
                            0.6);
                ASSERT_NEAR((q >> shift) & 0xFF,
                            (over * s + under * b * (1 - s)) / (s + b * (1 - s)), 0.6);
            }
        }
    }
}

// 'a' is a box of 100 to 600 thousandths, 'b' two that overlap; at weight 900 both are 300 wider.
FontSource variableFont(const gxtest::TempFolder& folder) {
    gxtest::SyntheticFont font;
    font.map('a', font.addGlyph(gxtest::boxGlyph({{100, 0, 600, 703}}), 700));
    font.map('b', font.addGlyph(gxtest::boxGlyph({{100, 0, 400, 703}, {250, 0, 600, 703}}), 700));
    font.addWeightAxis(100, 400, 900, 300);
    const gxtest::Bytes bytes = font.build();
    folder.write("v.ttf", std::string(bytes.begin(), bytes.end()));
    return FontSource::files({folder.path("v.ttf")});
}

TEST(Look, FontVariationsChooseAnInstance) {
    const gxtest::TempFolder folder;
    const FontSource fonts = variableFont(folder);
    struct Case {
        const char* fields;
        float weight;
    };
    const Case cases[] = {
        {"", 400},
        {R"(, "fontVariations": "'wght' 650")", 650},
        {R"(, "fontVariations": "wght=2000, 'wdth' 80")", 900},
        {R"(, "fontVariations": "'wght' 1")", 100},
        {R"(, "bold": true)", 700},
        {R"(, "bold": true, "fontVariations": "'wght' 450")", 450},
    };
    for (const char* name : {"", "v.ttf"}) {
        for (const Case& c : cases) {
            Style style = Style::fromJson(std::string(R"({"size": 1000, "padding": 9, "font": ")") +
                                              name + "\"" + c.fields + "}",
                                          folder.path("s.json"));
            const Picture picture = Renderer(fonts).render(style, "a");
            const float wider = c.weight > 400 ? 300 * (c.weight - 400) / 500 : 0;
            EXPECT_NEAR(picture.lines()[0].advance, 700 + wider, 0.6) << name << c.fields;
            const int y = picture.lines()[0].baseline - 300;
            int inked = 0;
            for (int x = 0; x < picture.width(); x++) inked += pixelAt(picture, x, y) >> 24 == 255;
            EXPECT_NEAR(inked, 500 + wider, 1) << name << c.fields;
        }
    }
}

// Neither inside nor along the edge that both share is the overlap of two contours seen.
TEST(Look, OverlappingContoursShowNoSeams) {
    const gxtest::TempFolder folder;
    Renderer renderer(variableFont(folder));
    for (const int size : {33, 50, 77}) {
        const Style style = Style::fromJson(R"({"fontVariations": "'wght' 530", "size": )" +
                                            std::to_string(size) + "}");
        const Picture one = renderer.render(style, "a"), two = renderer.render(style, "b");
        int apart = 0;
        ASSERT_EQ(one.pixels().size(), two.pixels().size());
        for (size_t i = 0; i < one.pixels().size(); i++) {
            const auto a = static_cast<int>(one.pixels()[i] >> 24);
            const auto b = static_cast<int>(two.pixels()[i] >> 24);
            apart = std::max(apart, std::abs(a - b));
        }
        EXPECT_LE(apart, 16) << size;
    }
}

// With room around it the picture has nothing more than without.
TEST(Look, NoInkIsCut) {
    int overhangs = 0;
    for (const char* text : {"Wolf", "jf", "fj\nfff\nW", "\u0131\u0301\u0301", "A\u0308"}) {
        for (const std::string fields :
             {R"(, "italic": true)", R"(, "letterSpacing": -0.3, "align": "right")",
              R"(, "skewX": -1.5, "width": 50, "effects": [{"type": "outerGlow"}])"}) {
            const Picture tight = render(fields, text);
            std::string roomyFields = fields + R"(, "padding": 150)";
            if (const size_t width = roomyFields.find("50, \"eff"); width != std::string::npos) {
                roomyFields.replace(width, 2, "350");
            }
            const Picture roomy = render(roomyFields, text);
            const Line& from = tight.lines()[0];
            const int dx = roomy.lines()[0].x - from.x;
            const int dy = roomy.lines()[0].baseline - from.baseline;
            for (int y = 0; y < roomy.height(); y++) {
                for (int x = 0; x < roomy.width(); x++) {
                    const int ax = x - dx, ay = y - dy;
                    const bool inside =
                        ax >= 0 && ay >= 0 && ax < tight.width() && ay < tight.height();
                    ASSERT_EQ(pixelAt(roomy, x, y), inside ? pixelAt(tight, ax, ay) : 0)
                        << text << fields << " at " << x << ", " << y;
                }
            }
            overhangs += from.ink.left < from.x || from.ink.right > from.x + from.advance;
        }
    }
    EXPECT_GT(overhangs, 5);
}

}  // namespace
}  // namespace gxtext
