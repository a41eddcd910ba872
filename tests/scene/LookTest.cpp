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

}  // namespace
}  // namespace gxtext
