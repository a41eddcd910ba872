#include <scene/Renderer.h>

int main() {
    gxtext::Renderer renderer(gxtext::FontSource::installed());
    renderer.render(gxtext::Style(), "a");
    return 0;
}
