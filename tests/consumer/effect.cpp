#include <effect/GxEffect.h>

int main() {
    GxFontEffect::GxEffect stack;
    return stack.addText(0xFF000000) == 0 ? 0 : 1;
}
