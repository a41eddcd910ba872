#include "PangoFonts.h"

#include <cairo.h>
#include <fontconfig/fontconfig.h>
#include <pango/pangofc-fontmap.h>

namespace gxbench {

namespace {

// What asks for the face by name, as fontconfig reads it from the file; null when it cannot.
PangoFontDescription* describe(const std::string& fontFile, int faceIndex) {
    int count = 0;
    FcPattern* pattern = FcFreeTypeQuery(reinterpret_cast<const FcChar8*>(fontFile.c_str()),
                                         static_cast<unsigned>(faceIndex), nullptr, &count);
    if (!pattern) return nullptr;
    PangoFontDescription* description = pango_fc_font_description_from_pattern(pattern, FALSE);
    FcPatternDestroy(pattern);
    return description;
}

}  // namespace

PangoFonts::PangoFonts(const std::string& fontFile, int faceIndex, double size)
    : description_(describe(fontFile, faceIndex)) {
    FcConfig* config = FcConfigCreate();
    const auto* file = reinterpret_cast<const FcChar8*>(fontFile.c_str());
    ready_ = description_ && FcConfigAppFontAddFile(config, file);
    fonts_ = pango_cairo_font_map_new_for_font_type(CAIRO_FONT_TYPE_FT);
    pango_fc_font_map_set_config(PANGO_FC_FONT_MAP(fonts_), config);
    FcConfigDestroy(config);  // the map has a reference of its own

    context_ = pango_font_map_create_context(fonts_);
    cairo_font_options_t* options = cairo_font_options_create();
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_MEDIUM);
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_ON);
    pango_cairo_context_set_font_options(context_, options);
    cairo_font_options_destroy(options);
    if (ready_) pango_font_description_set_absolute_size(description_, size * PANGO_SCALE);
}

PangoFonts::~PangoFonts() {
    if (description_) pango_font_description_free(description_);
    g_object_unref(context_);
    g_object_unref(fonts_);
}

PangoLayout* PangoFonts::newLayout(const std::string& text) const {
    PangoLayout* layout = pango_layout_new(context_);
    pango_layout_set_font_description(layout, description_);
    pango_layout_set_text(layout, text.data(), static_cast<int>(text.size()));
    return layout;
}

}  // namespace gxbench
