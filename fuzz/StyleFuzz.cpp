// Style files through the reader; what is valid is written and read again, then rendered, made
// small, with fonts of our own and no others in reach. The same files as layer effects.
#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <vector>

#include "Drawing.h"
#include "FontFolder.h"
#include "scene/Png.h"
#include "scene/Renderer.h"
#include "style/LayerStyle.h"

using namespace gxfuzz;

namespace {

constexpr const char* kPatternName = "pattern.png";

gxtext::FontSource ownFonts() {
    std::vector<std::filesystem::path> files;
    for (int kind = 0; kind < kFontKinds; ++kind) {
        files.push_back(fontFolder() / fontFileName(static_cast<FontKind>(kind)));
    }
    return gxtext::FontSource::files(files);
}

void writePattern() {
    const uint32_t pixels[] = {0xFFFF0000, 0x8000FF00, 0x000000FF, 0xFF808080, 0xFF000000, 0x7F};
    const std::string png = gxtext::encodePng(pixels, 3, 2);
    std::ofstream(fontFolder() / kPatternName, std::ios::binary) << png;
}

// Large pictures take long and show nothing that small ones do not.
void makeSmall(gxtext::Style& style) {
    if (style.text && style.text->size() > 48) {
        size_t end = 48;
        while (end > 0 && (static_cast<uint8_t>((*style.text)[end]) & 0xC0) == 0x80) --end;
        style.text->resize(end);
    }
    style.size = std::min(style.size, 24.0f);
    style.scaleX = std::min(style.scaleX, 3.0f);
    style.letterSpacing = std::min(style.letterSpacing, 2.0f);
    if (style.width) style.width = std::min(*style.width, 200);
    for (int* side :
         {&style.padding.left, &style.padding.top, &style.padding.right, &style.padding.bottom}) {
        *side = std::min(*side, 30);
    }
    if (style.background) {
        style.background->padding = std::min(style.background->padding, 30);
    }
    for (gxtext::Effect& effect : style.effects) {
        effect.size = std::min(effect.size, 8.0f);
        effect.distance = std::min(effect.distance, 12.0f);
        effect.spread = std::min(effect.spread, 8.0f);
    }
}

// Names that could lead out of the folder stand for a file in it.
void stayInside(gxtext::Style& style) {
    const bool isName = std::all_of(style.font.begin(), style.font.end(), [](unsigned char c) {
        return std::isalnum(c) || c == ' ' || c == '-';
    });
    if (!isName) style.font = fontFileName(static_cast<FontKind>(style.font.size() % kFontKinds));
    style.source = fontFolder() / "style.json";
    for (gxtext::Effect& effect : style.effects) {
        if (!effect.pattern.empty()) effect.pattern = kPatternName;
        for (gxtext::Effect& fill : effect.fill.effects) {
            if (!fill.pattern.empty()) fill.pattern = kPatternName;
        }
    }
}

void importAsLayerEffects(std::string_view json) {
    try {
        const gxtext::ImportedStyle imported = gxtext::importLayerStyle(json, "effects");
        require(gxtext::Style::fromJson(imported.style.toJson()) == imported.style,
                "the style that was imported");
        for (const gxtext::ImportLoss& loss : imported.losses) {
            require(loss.path.starts_with("$") && !loss.reason.empty(), "a place and a reason");
        }
    } catch (const gxtext::StyleError& error) {
        require(error.problems().front().path.starts_with("$"), "no JSON object");
    }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    writePattern();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view json(reinterpret_cast<const char*>(data), size);
    importAsLayerEffects(json);
    try {
        auto style = gxtext::Style::fromJson(json, "style");
        const std::string written = style.toJson();
        require(gxtext::Style::fromJson(written, style.source) == style,
                "the style that was written");
        require(style.toJson() == written, "one canonical form");
        makeSmall(style);
        stayInside(style);
        static gxtext::Renderer renderer(ownFonts());
        const gxtext::Picture picture = renderer.render(style);
        require(picture.width() > 0 && picture.height() > 0, "a picture");
        require(!picture.arrangement().fonts.empty(), "a font");
    } catch (const gxtext::Error& error) {
        require(*error.what() != 0, "a reason");
    }
    return 0;
}
