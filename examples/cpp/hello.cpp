// A style file and a text become a picture; README shows it.
#include <scene/Renderer.h>

int main() {
    gxtext::Renderer renderer(gxtext::FontSource::installed());
    gxtext::Style style = gxtext::Style::fromFile("gold.json");
    gxtext::Picture picture = renderer.render(style, u8"Hello");
    picture.writePng("hello.png");
}
