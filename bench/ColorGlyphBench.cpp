// Rows of emoji: loaded, and measured and drawn in colour and as silhouettes, against FreeType
// unpacking the same pictures at the size that the font has them in, which is the least that
// drawing them takes.
#include <ft2build.h>
#include FT_FREETYPE_H

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "Bench.h"
#include "SkBitmap.h"
#include "SkCanvas.h"
#include "SkFont.h"
#include "SkTextBlob.h"
#include "font/FontBuffer.h"
#include "skia/GlyphCache.h"

namespace gxbench {

namespace {

constexpr int kEmoji = 8;

class Emoji {
public:
    Emoji() : bytes_(GxFontEffect::FontBuffer::LoadFile(GXBENCH_EMOJI_FONT)) {
        const auto* data = reinterpret_cast<const FT_Byte*>(bytes_->data());
        if (FT_Init_FreeType(&library_) != 0 ||
            FT_New_Memory_Face(library_, data, bytes_->length(), 0, &face_) != 0 ||
            FT_Select_Size(face_, 0) != 0) {
            std::abort();
        }
        for (int i = 0; i < kEmoji; ++i) {
            const FT_UInt glyph = FT_Get_Char_Index(face_, 0x1F600 + static_cast<FT_ULong>(i));
            glyphs_.push_back(static_cast<SkGlyphID>(glyph));
        }
        typeface_ = SkTypeface::MakeFromStream(
            std::make_unique<SkMemoryStream>(bytes_->data(), bytes_->length()));
    }

    void load() const {
        for (const SkGlyphID glyph : glyphs_) {
            if (FT_Load_Glyph(face_, glyph, FT_LOAD_COLOR) != 0) std::abort();
        }
    }

    // Their boxes, for which the pictures are unpacked and kept.
    SkFont measure(float size) const {
        SkFont font(typeface_, size);
        font.setColorGlyphs(true);
        SkRect boxes[kEmoji];
        font.getBounds(glyphs_.data(), kEmoji, boxes, nullptr);
        return font;
    }

    // A line of them: boxes, colours, silhouettes.
    void draw(float size) {
        const SkFont font = measure(size);
        const int side = static_cast<int>(size * 1.5f);
        const int width = side * kEmoji;
        colors_.assign(static_cast<size_t>(width) * side, 0);
        mask_.assign(static_cast<size_t>(width) * side, 0);
        drawOnto(font, side,
                 SkImageInfo::Make(width, side, kRGBA_8888_SkColorType, kPremul_SkAlphaType),
                 colors_.data(), size_t{4} * width);
        drawOnto(font, side, SkImageInfo::MakeA8(width, side), mask_.data(), width);
    }

private:
    void drawOnto(const SkFont& font, int side, const SkImageInfo& info, void* pixels,
                  size_t rowBytes) const {
        SkBitmap bitmap;
        if (!bitmap.installPixels(info, pixels, rowBytes)) std::abort();
        SkTextBlobBuilder builder;
        const auto& run = builder.allocRunPos(font, kEmoji);
        for (size_t i = 0; i < kEmoji; ++i) {
            run.glyphs[i] = glyphs_[i];
            run.pos[2 * i] = static_cast<float>(i) * static_cast<float>(side);
            run.pos[2 * i + 1] = static_cast<float>(side) * 0.75f;
        }
        SkCanvas(bitmap).drawTextBlob(builder.make(), 0, 0, SkPaint());
    }

    std::shared_ptr<const GxFontEffect::FontBuffer> bytes_;
    FT_Library library_ = nullptr;
    FT_Face face_ = nullptr;
    sk_sp<SkTypeface> typeface_;
    std::vector<SkGlyphID> glyphs_;
    std::vector<uint32_t> colors_;
    std::vector<uint8_t> mask_;
};

}  // namespace

void addColorGlyphRows() {
    constexpr double kTarget = 1 / 1.2;
    const auto add = [](const std::string& name, double target, float size, bool warm, auto use) {
        addRow({name, "FreeType loading", {0, target}, 0, [=] {
                    const auto emoji = std::make_shared<Emoji>();
                    Contenders contenders;
                    contenders.prepare = [=] {
                        portable::GlyphCache::shared().clear();
                        if (warm) emoji->draw(size);
                    };
                    contenders.ours = [=] { use(*emoji, size); };
                    contenders.peer = [=] { emoji->load(); };
                    return contenders;
                }});
    };
    add("8 emoji, loaded", kTarget, 72, false,
        [](Emoji& emoji, float size) { emoji.measure(size); });
    // Scaling to a size and painting come on top, once for each.
    const auto draw = [](Emoji& emoji, float size) { emoji.draw(size); };
    for (const float size : {40.0f, 72.0f}) {
        const std::string name = "8 emoji, " + std::to_string(static_cast<int>(size)) + " px, ";
        add(name + "new", 0, size, false, draw);
        add(name + "known", kTarget, size, true, draw);
    }
}

}  // namespace gxbench
