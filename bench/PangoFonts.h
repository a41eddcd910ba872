// One font file for Pango and cairo, as this library sets it: grey antialiasing, hinted by the
// font's own instructions.
#pragma once

#include <pango/pangocairo.h>

#include <string>

namespace gxbench {

class PangoFonts {
public:
    // `size` in pixels per em. The font map knows no font but this one.
    PangoFonts(const std::string& fontFile, int faceIndex, double size);
    ~PangoFonts();
    PangoFonts(const PangoFonts&) = delete;
    PangoFonts& operator=(const PangoFonts&) = delete;

    bool ready() const { return ready_; }
    PangoContext* context() const { return context_; }
    // A layout of one line, to be given back with g_object_unref().
    PangoLayout* newLayout(const std::string& text) const;

private:
    bool ready_ = false;
    PangoFontMap* fonts_ = nullptr;
    PangoContext* context_ = nullptr;
    PangoFontDescription* description_ = nullptr;
};

}  // namespace gxbench
