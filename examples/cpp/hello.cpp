// Renders a text in the look of a style file.
#include <scene/Renderer.h>

#include <cstdio>

int main(int argc, char** argv) try {
    if (argc != 4) return fprintf(stderr, "usage: hello STYLE.json TEXT OUT.png\n"), 2;

    gxtext::Renderer renderer(gxtext::FontSource::installed());
    gxtext::Style style = gxtext::Style::fromFile(argv[1]);
    gxtext::Picture picture = renderer.render(style, argv[2]);  // pixels, size, margins, lines
    picture.writePng(argv[3]);
    return 0;
} catch (const gxtext::Error& error) {
    return fprintf(stderr, "%s\n", error.what()), 1;  // place, reason, and what is allowed
}
