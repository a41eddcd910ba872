// The measured titles by librsvg: a document read, laid out and drawn, straight words.
#include <memory>
#include <string>

#include "TitlePeers.h"
#include "TitleSvg.h"

#ifdef GXBENCH_RSVG
#include <cairo.h>
#include <librsvg/rsvg.h>
#endif

namespace gxbench {

#ifdef GXBENCH_RSVG

namespace {

Pixels drawSvg(const std::string& svg, int width, int height) {
    Pixels pixels(static_cast<size_t>(width) * static_cast<size_t>(height));
    RsvgHandle* handle =
        rsvg_handle_new_from_data(reinterpret_cast<const guint8*>(svg.data()), svg.size(), nullptr);
    if (!handle) return pixels;
    cairo_surface_t* surface =
        cairo_image_surface_create_for_data(reinterpret_cast<unsigned char*>(pixels.data()),
                                            CAIRO_FORMAT_ARGB32, width, height, 4 * width);
    cairo_t* cairo = cairo_create(surface);
    const RsvgRectangle viewport{0, 0, double(width), double(height)};
    rsvg_handle_render_document(handle, cairo, &viewport, nullptr);
    cairo_destroy(cairo);
    cairo_surface_destroy(surface);
    g_object_unref(handle);
    straighten(pixels);
    return pixels;
}

}  // namespace

LinkedPainter svgPainter(const TitlePicture& picture) {
    return {"librsvg " LIBRSVG_VERSION, "reads and lays out an SVG document",
            [svg = svgOf(picture), width = picture.width, height = picture.height] {
                return drawSvg(svg, width, height);
            }};
}

#else

LinkedPainter svgPainter(const TitlePicture& /*picture*/) {
    return {"librsvg", "", {}};
}

#endif

}  // namespace gxbench
