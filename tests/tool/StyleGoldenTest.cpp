// A few styles of the gallery, from the file to the picture's bytes: stacks of every kind of
// effect.
#include <gtest/gtest.h>

#include "Process.h"
#include "support/Fonts.h"
#include "support/GoldenImage.h"
#include "support/TempFolder.h"

namespace gxtool {
namespace {

struct Sample {
    const char* style;
    const char* text;
    const char* font;
};

// Fonts come by file: a family's file is the installation's choice.
const Sample kSamples[] = {
    {"comic", "Ka!", "truetype/noto/NotoSans-BoldItalic.ttf"},
    {"gold", "Age", "truetype/dejavu/DejaVuSerif-Bold.ttf"},
    {"planet", "Sol", "truetype/dejavu/DejaVuSans-Bold.ttf"},
    {"fire", "نار", "truetype/noto/NotoKufiArabic-Bold.ttf"},
    {"neon-japanese", "カラ", gxtest::kNotoCjk},
};

TEST(StyleGolden, GalleryKeepsItsBytes) {
    const gxtest::TempFolder folder;
    const std::string picture = folder.path("picture.png");
    for (const Sample& sample : kSamples) {
        const std::string name = sample.style;
        SCOPED_TRACE(name);
        const gxtest::Outcome outcome = gxtest::runGxtext(
            {"render", GXTEXT_SOURCE_DIR "/examples/styles/gallery/" + name + ".json", "--text",
             sample.text, "--font", gxtest::fontPath(sample.font), "--font-size", "48", "--strict",
             "-o", picture});
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        gxtest::Image image;
        EXPECT_TRUE(gxtest::readPng(picture, image));
        EXPECT_TRUE(gxtest::matchesGolden(image, "style-" + name));
        const gxtest::Outcome same =
            gxtest::runGxtext({"compare", GXTEXT_GOLDEN_DIR "/style-" + name + ".png", picture});
        EXPECT_EQ(same.status, 0) << same.out;
    }
}

}  // namespace
}  // namespace gxtool
