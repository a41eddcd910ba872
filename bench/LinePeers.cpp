#include "LinePeers.h"

#include <ft2build.h>
#include <hb-ft.h>
#include <hb.h>
#include FT_FREETYPE_H

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#ifdef GXBENCH_PANGO
#include <cairo.h>
#include <pango/pangocairo.h>

#include "PangoFonts.h"
#endif

namespace gxbench {

namespace {

class DirectLine {
public:
    DirectLine(const LineSetting& setting, const LineCanvas& canvas)
        : canvas_(canvas),
          rightToLeft_(setting.rightToLeft),
          mask_(static_cast<size_t>(canvas.width) * static_cast<size_t>(canvas.height)) {
        if (FT_Init_FreeType(&library_) != 0 ||
            FT_New_Face(library_, setting.fontFile.c_str(), setting.faceIndex, &face_) != 0) {
            return;
        }
        const auto em = static_cast<FT_F26Dot6>(setting.size) * 64;
        FT_Set_Char_Size(face_, em, em, 72, 72);
        font_ = hb_ft_font_create_referenced(face_);
        hb_ft_font_set_load_flags(font_, kLoadFlags);
        buffer_ = hb_buffer_create();
    }
    ~DirectLine() {
        hb_buffer_destroy(buffer_);
        hb_font_destroy(font_);
        FT_Done_Face(face_);
        FT_Done_FreeType(library_);
    }
    DirectLine(const DirectLine&) = delete;
    DirectLine& operator=(const DirectLine&) = delete;

    bool ready() const { return font_ != nullptr; }

    void draw(std::u16string_view text) {
        std::fill(mask_.begin(), mask_.end(), uint8_t{0});
        hb_buffer_clear_contents(buffer_);
        hb_buffer_add_utf16(buffer_, reinterpret_cast<const uint16_t*>(text.data()),
                            static_cast<int>(text.size()), 0, -1);
        hb_buffer_set_direction(buffer_, rightToLeft_ ? HB_DIRECTION_RTL : HB_DIRECTION_LTR);
        hb_buffer_guess_segment_properties(buffer_);
        hb_shape(font_, buffer_, nullptr, 0);
        unsigned count = 0;
        const hb_glyph_info_t* infos = hb_buffer_get_glyph_infos(buffer_, &count);
        const hb_glyph_position_t* positions = hb_buffer_get_glyph_positions(buffer_, nullptr);
        hb_position_t pen = 0;
        for (unsigned i = 0; i < count; ++i) {
            drawGlyph(infos[i].codepoint, pen + positions[i].x_offset, positions[i].y_offset);
            pen += positions[i].x_advance;
        }
    }

private:
    // The hinting of a regular paint: by the font's own instructions.
    static constexpr FT_Int32 kLoadFlags = FT_LOAD_TARGET_NORMAL | FT_LOAD_NO_AUTOHINT;

    // 26.6 to the nearest pixel.
    static int toPixel(hb_position_t position) { return (position + 32) >> 6; }

    void drawGlyph(hb_codepoint_t glyph, hb_position_t x, hb_position_t y) {
        if (FT_Load_Glyph(face_, glyph, kLoadFlags | FT_LOAD_RENDER) != 0) return;
        const FT_GlyphSlot slot = face_->glyph;
        const int left = toPixel(x) + slot->bitmap_left;
        const int top = canvas_.baseline - toPixel(y) - slot->bitmap_top;
        const int firstColumn = std::max(0, -left);
        const int lastColumn = std::min(static_cast<int>(slot->bitmap.width), canvas_.width - left);
        for (int row = 0; row < static_cast<int>(slot->bitmap.rows); ++row) {
            if (top + row < 0 || top + row >= canvas_.height) continue;
            const uint8_t* source = slot->bitmap.buffer + ptrdiff_t{row} * slot->bitmap.pitch;
            uint8_t* target = mask_.data() + ptrdiff_t{top + row} * canvas_.width + left;
            for (int column = firstColumn; column < lastColumn; ++column) {
                target[column] =
                    static_cast<uint8_t>(std::min(255, int{target[column]} + int{source[column]}));
            }
        }
    }

    const LineCanvas canvas_;
    const bool rightToLeft_;
    std::vector<uint8_t> mask_;
    FT_Library library_ = nullptr;
    FT_Face face_ = nullptr;
    hb_font_t* font_ = nullptr;
    hb_buffer_t* buffer_ = nullptr;
};

}  // namespace

DrawLine drawDirectly(const LineSetting& setting, const LineCanvas& canvas) {
    const auto line = std::make_shared<DirectLine>(setting, canvas);
    if (!line->ready()) return {};
    return [line](std::u16string_view text) { line->draw(text); };
}

#ifdef GXBENCH_PANGO

namespace {

// Appends a code point of the text, which has no surrogates.
void appendUtf8(std::string& out, char16_t unit) {
    const auto byte = [&](unsigned value) { out.push_back(static_cast<char>(value)); };
    if (unit < 0x80) {
        byte(unit);
    } else if (unit < 0x800) {
        byte(0xC0u | unit >> 6);
        byte(0x80u | (unit & 0x3F));
    } else {
        byte(0xE0u | unit >> 12);
        byte(0x80u | (unit >> 6 & 0x3F));
        byte(0x80u | (unit & 0x3F));
    }
}

class PangoLine {
public:
    PangoLine(const LineSetting& setting, const LineCanvas& canvas)
        : canvas_(canvas), fonts_(setting.fontFile, setting.faceIndex, setting.size) {
        surface_ = cairo_image_surface_create(CAIRO_FORMAT_A8, canvas.width, canvas.height);
        cairo_ = cairo_create(surface_);
        pango_context_set_base_dir(fonts_.context(),
                                   setting.rightToLeft ? PANGO_DIRECTION_RTL : PANGO_DIRECTION_LTR);
    }
    ~PangoLine() {
        cairo_destroy(cairo_);
        cairo_surface_destroy(surface_);
    }
    PangoLine(const PangoLine&) = delete;
    PangoLine& operator=(const PangoLine&) = delete;

    bool ready() const {
        return fonts_.ready() && cairo_surface_status(surface_) == CAIRO_STATUS_SUCCESS;
    }

    void draw(std::u16string_view text) {
        utf8_.clear();
        for (const char16_t unit : text) appendUtf8(utf8_, unit);
        cairo_set_operator(cairo_, CAIRO_OPERATOR_CLEAR);
        cairo_paint(cairo_);
        cairo_set_operator(cairo_, CAIRO_OPERATOR_OVER);
        PangoLayout* layout = fonts_.newLayout(utf8_);
        cairo_move_to(cairo_, 0, canvas_.baseline);
        pango_cairo_show_layout_line(cairo_, pango_layout_get_line_readonly(layout, 0));
        g_object_unref(layout);
        cairo_surface_flush(surface_);
    }

private:
    const LineCanvas canvas_;
    PangoFonts fonts_;
    std::string utf8_;
    cairo_surface_t* surface_ = nullptr;
    cairo_t* cairo_ = nullptr;
};

}  // namespace

DrawLine drawWithPango(const LineSetting& setting, const LineCanvas& canvas) {
    const auto line = std::make_shared<PangoLine>(setting, canvas);
    if (!line->ready()) return {};
    return [line](std::u16string_view text) { line->draw(text); };
}

#endif

}  // namespace gxbench
