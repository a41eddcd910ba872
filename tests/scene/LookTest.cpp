// Fields of a style that the renderer carries out itself, seen in the picture.
#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "scene/Renderer.h"
#include "support/Fonts.h"

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
