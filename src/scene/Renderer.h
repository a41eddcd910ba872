// From a style and a text to a picture.
#pragma once

#include <memory>
#include <string_view>

#include "GxExport.h"
#include "scene/Arrangement.h"
#include "scene/FontSource.h"
#include "scene/Picture.h"
#include "scene/SceneError.h"
#include "style/Style.h"

namespace gxtext {

// Draws texts one after the other, each with a style of its own:
//
//     gxtext::Renderer renderer(gxtext::FontSource::installed());
//     gxtext::Style style = gxtext::Style::fromFile("gold.json");
//     gxtext::Picture picture = renderer.render(style, u8"Hello");
//     picture.writePng("hello.png");
//
// The same style, text and font files give the same bytes, on every machine and thread. A renderer
// is for one thread at a time; renderers on different threads do not disturb each other, and share
// the fonts of one FontSource.
class GXTEXT_API Renderer {
public:
    explicit Renderer(FontSource fonts);
    Renderer(Renderer&&) noexcept;
    Renderer& operator=(Renderer&&) noexcept;
    ~Renderer();

    // Lays out and draws `text` (UTF-8; line breaks start new lines) as the style says; without a
    // text, the style's own. Throws FontError for a font that is not there or cannot be used,
    // TextError for a text that is missing, empty or malformed or a line beyond 65,535 pixels,
    // PictureError for a picture beyond kMaxPixels or a pattern that cannot be read, and
    // std::bad_alloc; the renderer is good for the next text in every case.
    Picture render(const Style& style, std::string_view text);
    Picture render(const Style& style, std::u8string_view text);
    Picture render(const Style& style);

    // Lays out without drawing. Throws like render().
    Arrangement arrange(const Style& style, std::string_view text);
    Arrangement arrange(const Style& style);

private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace gxtext
