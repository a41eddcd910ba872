// Renders one line of text with a font file and prints the picture as a PAM image:
//   title FONT.ttf "Hello" > hello.pam
#include <cstdio>
#include <memory>
#include <string>

#include "base/GxString.h"
#include "base/List.h"
#include "effect/GxEffect.h"
#include "effect/GxProperty.h"
#include "text/GxLineInfo.h"
#include "text/GxTextObject.h"
#include "text/GxView.h"

using namespace GxFontEffect;

int main(int argc, char** argv) {
    if (argc != 3) return fprintf(stderr, "usage: title FONT TEXT > picture.pam\n"), 2;

    GxString string;
    string.Construct(argv[2]);

    android::Paint paint;
    paint.setJavaFlags(0x1);  // antialias
    paint.getSkFont().setSize(96);

    auto line = std::make_unique<GxLineInfo>();  // one line over the whole text
    line->x = 10;
    line->y = 100;
    line->end = string.GetUTF16Size() - 1;
    List lines;
    lines.Construct();
    lines.Add(line.release());

    // README shows from here to the picture.
    GxTextObject text;
    text.Construct();
    if (!text.SetFont(argv[1])) return fprintf(stderr, "cannot load %s\n", argv[1]), 1;
    text.SetText(&string);
    text.SetTextColor(0xFFD04010);
    text.SetPaint(paint);      // size, antialiasing, letter spacing, ...
    text.SetLineInfo(&lines);  // one GxLineInfo per line: where it stands, which characters
    text.GetEffect()->addStrokeText(6, 0xFF102040, 1.0f, 0, GxStrokeProperty::kOutside);
    GxView& view = *text.GetView();
    view.SetSize(900, 140);
    text.FitBitmapToView();  // the view, and room for the effects around it
    const int width = view.GetBitmapWidth(), height = view.GetBitmapHeight();
    const uint32_t* pixels = text.RenderTextEffect(width, height);  // 0xAARRGGBB, straight alpha
    if (!pixels) return fprintf(stderr, "out of memory\n"), 1;

    printf("P7\nWIDTH %d\nHEIGHT %d\nDEPTH 4\nMAXVAL 255\nTUPLTYPE RGB_ALPHA\nENDHDR\n", width,
           height);
    for (int i = 0; i < width * height; ++i) {
        for (int shift : {16, 8, 0, 24}) putchar(static_cast<int>(pixels[i] >> shift & 255));
    }
    return 0;
}
