#include <scene/Renderer.h>

int main() {
    gxtext::Renderer renderer(gxtext::FontSource::installed());
    const gxtext::Style style = gxtext::Style::fromJson(R"json({
  "text": "It's \"$HOME\" \\ — 'EOF'",
  "font": "Noto Sans Display",
  "size": 72,
  "bold": true,
  "color": "#FFFFFF",
  "background": "#C4101A",
  "padding": 8,
  "effects": [
    {
      "type": "outerShadow",
      "distance": 2,
      "size": 2,
      "opacity": 0.7
    }
  ]
})json");
    renderer.render(style).writePng("title.png");
}
