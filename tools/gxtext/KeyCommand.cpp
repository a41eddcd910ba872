#include <cstdio>
#include <memory>

#include "Commands.h"
#include "Streams.h"
#include "ToolError.h"
#include "effect/GxEffect.h"
#include "scene/Pattern.h"
#include "style/EffectStack.h"

namespace gxtool {

// The text fill takes part, as it does once a text is rendered.
void keyCommand(const Style& style) {
    GxFontEffect::GxEffect stack;
    gxtext::dress(stack, style, gxtext::loadPattern);
    stack.setTextOpacity(style.opacity);
    const std::unique_ptr<char[]> key(stack.getMapKey(style.color.argb));
    if (!key) throw ToolError("cannot make the key: out of memory");
    std::string hex;
    for (const char* c = key.get(); *c; c++) {
        char digits[3];
        snprintf(digits, sizeof(digits), "%02x", static_cast<unsigned char>(*c));
        hex += digits;
    }
    writeOutput("-", hex + "\n");
}

}  // namespace gxtool
