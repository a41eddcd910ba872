// Glyphs by FreeType called directly, with its own bitmap placement: what the drawn ones are held
// to.
#pragma once

#include <ft2build.h>
#include <gtest/gtest.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include <cmath>
#include <cstdint>
#include <vector>

#include "SkDrawing.h"
#include "SkRect.h"
#include "SkTypes.h"

namespace gxtest {

// Pixels in FreeType's 26.6 fixed point, truncated.
inline FT_F26Dot6 to26Dot6(float pixels) {
    return static_cast<FT_F26Dot6>(pixels * 64);
}

// What a font asks of FreeType where none of its settings says otherwise.
constexpr FT_Int32 kPlainLoad =
    FT_LOAD_IGNORE_GLOBAL_ADVANCE_WIDTH | FT_LOAD_COLOR | FT_LOAD_NO_AUTOHINT | FT_LOAD_NO_BITMAP;

// What a test asks of the reference: FreeType's own words.
struct GlyphRequest {
    FT_F26Dot6 width = 0;  // of the em, 26.6
    FT_F26Dot6 height = 0;
    FT_Int32 flags = 0;
    FT_Fixed shear = 0;   // 16.16, positive leans right
    FT_Pos strength = 0;  // emboldening, 26.6
    FT_Pos dx = 0;        // 26.6
    bool mono = false;
};

struct ReferenceGlyph {
    float advance = 0;              // of the slot, hinted
    float linearAdvance = 0;        // as the font's tables have it
    SkIRect box{};                  // of the control points, y downwards
    std::vector<uint8_t> coverage;  // of the pixels in the box
};

class FreeTypeReference {
public:
    template <typename Container>
    explicit FreeTypeReference(const Container& bytes, int index = 0) {
        EXPECT_EQ(FT_Init_FreeType(&library_), 0);
        EXPECT_EQ(FT_New_Memory_Face(library_, reinterpret_cast<const FT_Byte*>(bytes.data()),
                                     static_cast<FT_Long>(bytes.size()), index, &face_),
                  0);
    }
    ~FreeTypeReference() {
        FT_Done_Face(face_);
        FT_Done_FreeType(library_);
    }
    FreeTypeReference(const FreeTypeReference&) = delete;
    FreeTypeReference& operator=(const FreeTypeReference&) = delete;

    FT_Face face() { return face_; }
    SkGlyphID glyph(uint32_t codePoint) {
        return static_cast<SkGlyphID>(FT_Get_Char_Index(face_, codePoint));
    }

    ReferenceGlyph take(SkGlyphID glyph, const GlyphRequest& request) {
        ReferenceGlyph result;
        EXPECT_EQ(FT_Set_Char_Size(face_, request.width, request.height, 72, 72), 0);
        FT_Matrix matrix = {0x10000, request.shear, 0, 0x10000};
        FT_Set_Transform(face_, &matrix, nullptr);
        EXPECT_EQ(FT_Load_Glyph(face_, glyph, request.flags), 0);
        FT_GlyphSlot slot = face_->glyph;
        result.advance = static_cast<float>(slot->advance.x) / 64;
        result.linearAdvance = static_cast<float>(slot->linearHoriAdvance) / 65536;
        if (request.strength) FT_Outline_Embolden(&slot->outline, request.strength);
        FT_Outline_Translate(&slot->outline, request.dx, 0);
        FT_BBox box;
        FT_Outline_Get_CBox(&slot->outline, &box);
        result.box = SkIRect::MakeLTRB(box.xMin >> 6, -((box.yMax + 63) >> 6), (box.xMax + 63) >> 6,
                                       -(box.yMin >> 6));
        // As the device does, and not FT_Render_Glyph: its smaller bitmap loses thin parts.
        fill(&slot->outline, request.mono, &result);
        return result;
    }

private:
    void fill(FT_Outline* outline, bool mono, ReferenceGlyph* result) {
        const SkIRect& box = result->box;
        if (box.isEmpty()) return;
        const int width = box.fRight - box.fLeft, height = box.fBottom - box.fTop;
        const int pitch = mono ? (width + 7) / 8 : width;
        std::vector<uint8_t> rows(static_cast<size_t>(pitch) * height);
        FT_Bitmap bitmap = {};
        bitmap.width = static_cast<unsigned>(width);
        bitmap.rows = static_cast<unsigned>(height);
        bitmap.pitch = pitch;
        bitmap.buffer = rows.data();
        bitmap.num_grays = 256;
        bitmap.pixel_mode = mono ? FT_PIXEL_MODE_MONO : FT_PIXEL_MODE_GRAY;
        FT_Outline_Translate(outline, -64L * box.fLeft, 64L * box.fBottom);
        EXPECT_EQ(FT_Outline_Get_Bitmap(library_, outline, &bitmap), 0);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const uint8_t* row = &rows[static_cast<size_t>(y) * pitch];
                result->coverage.push_back(mono ? (row[x / 8] >> (7 - x % 8) & 1) * 255 : row[x]);
            }
        }
    }

    FT_Library library_ = nullptr;
    FT_Face face_ = nullptr;
};

// Whether the mask holds the glyph at (x, y), its coverage through `curve`, and nothing else.
template <typename Curve>
bool holds(const MaskCanvas& mask, const ReferenceGlyph& glyph, int x, int y, Curve curve) {
    const SkIRect& box = glyph.box;
    const int width = box.fRight - box.fLeft;
    for (int j = 0; j < mask.height; ++j) {
        for (int i = 0; i < mask.width; ++i) {
            const bool inside = i >= x + box.fLeft && i < x + box.fRight && j >= y + box.fTop &&
                                j < y + box.fBottom;
            const int at = (j - y - box.fTop) * width + i - x - box.fLeft;
            const uint8_t c = inside ? glyph.coverage[at] : 0;
            if (mask.at(i, j) != curve(c)) return false;
        }
    }
    return true;
}

// The contrast curve of black text, in closed form: the exponent is 89/64.
inline uint8_t blackTextGamma(uint8_t coverage) {
    return static_cast<uint8_t>(
        std::floor(255 * (1 - std::pow(1 - coverage / 255.0, 64.0 / 89)) + 0.5));
}

}  // namespace gxtest
