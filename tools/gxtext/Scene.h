// From a style to pixels: fills a text object the way a view's text is handed over, and renders it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Fonts.h"
#include "Measurer.h"
#include "Style.h"
#include "text/GxTextObject.h"

namespace gxtool {

struct Box {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
};

// One line as it lies in the picture, in pixels.
struct SceneLine {
    TextLine range;
    std::string text;  // UTF-8
    int x = 0;         // left end
    int baseline = 0;
    float advance = 0.0f;
    Box box;  // advance by line height: what a background covers
    Box ink;  // where glyphs are drawn
};

// One at a time: the fallback fonts are the process's.
class Scene {
public:
    // Finds and loads the fonts, breaks the lines and sets everything up. Throws ToolError.
    explicit Scene(const Style& style);

    int imageWidth() const { return imageWidth_; }
    int imageHeight() const { return imageHeight_; }
    // Around the text, for its effects.
    const Box& margins() const { return margins_; }
    const std::vector<SceneLine>& lines() const { return lines_; }
    const FontChoice& fonts() const { return fonts_; }

    // Code points that no font has, each once, in order of value.
    const std::vector<char32_t>& missing() const { return missing_; }
    // Those that each face of fonts() draws, each once, in order of value.
    std::vector<std::vector<char32_t>> coverage() const;

    // 0xAARRGGBB words, straight alpha, imageWidth() x imageHeight() of them. They belong to the
    // scene.
    const uint32_t* render();

private:
    void loadFonts();
    void makeMeasurer(const android::Paint& paint, const Style& style);
    void layOutLines(const Style& style);
    void handOverLines();
    void setUpView(const Style& style, int viewWidth, int viewHeight);

    GxFontEffect::GxTextObject object_;
    FontChoice fonts_;
    std::unique_ptr<Measurer> measurer_;
    std::vector<SceneLine> lines_;
    std::vector<char32_t> codePoints_;  // of the text that want a glyph, sorted, each once
    std::vector<char32_t> missing_;
    Box margins_;
    int imageWidth_ = 0;
    int imageHeight_ = 0;
};

}  // namespace gxtool
