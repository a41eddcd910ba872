// Rows of what looks are made of: repeated effects against as many stacks of one, casting from the
// outline and spread against one more stroke beside.
#include <functional>
#include <memory>
#include <string>

#include "Bench.h"
#include "Painter.h"
#include "Planes.h"
#include "effect/GxEffect.h"

namespace gxbench {

using namespace GxFontEffect;

namespace {

using Dress = std::function<void(GxEffect& stack)>;

constexpr int kMargin = 40;

// A stack over the measured text, and the picture that it renders.
class StackScene {
public:
    explicit StackScene(const Dress& dress) : out_(kWidth + 2 * kMargin, kHeight + 2 * kMargin, 4) {
        stack_.setRepeats(true);
        dress(stack_);
        stack_.addText(0xFFF0F0E0);
        glyph_.pixels = const_cast<uint8_t*>(textMask().data());
        glyph_.width = kWidth;
        glyph_.height = kHeight;
    }

    void clear() { gxbench::clear(out_); }
    void render() {
        stack_.setOutput(GxEffect::Output::kFreshWords);
        stack_.initEffect(out_.width, out_.height);
        stack_.setDstBitmap(&out_);
        stack_.setTextBox(GxRect(kMargin, kMargin, kMargin + kWidth, kMargin + kHeight));
        stack_.renderEffectLayer(kMargin, kMargin, &glyph_);
        stack_.doEffectPostProcessing();
        stack_.compositeLayers(&out_);
    }

private:
    GxEffect stack_;
    GxBitmap out_;
    GxGlyph glyph_;
};

void stroke(GxEffect& stack) {
    stack.addStrokeText(6, 0xFF402000, 1, 0, GxStrokeProperty::kOutside);
}

int shadow(GxEffect& stack) {
    return stack.addOuterShadowText(120, 8, 10, 0xFF000000, 0.6f);
}

// Our stack once against the other one `times` times, in pictures of its own.
void addStackRow(const std::string& name, const std::string& peer, const Dress& dress,
                 const Dress& other, int times) {
    addRow({name, peer, {0, 1}, kPixels, [=] {
                const auto ours = std::make_shared<StackScene>(dress);
                const auto theirs = std::make_shared<StackScene>(other);
                Contenders contenders;
                contenders.prepare = [=] {
                    ours->clear();
                    theirs->clear();
                };
                contenders.ours = [=] { ours->render(); };
                contenders.peer = [=] {
                    for (int i = 0; i < times; ++i) theirs->render();
                };
                return contenders;
            }});
}

}  // namespace

void addLookRows() {
    constexpr int kRepeats = 3;
    const auto repeated = [](const Dress& dress) {
        return [dress](GxEffect& stack) {
            for (int i = 0; i < kRepeats; ++i) dress(stack);
        };
    };
    addStackRow("3 strokes in a stack", "3 stacks of one", repeated(stroke), stroke, kRepeats);
    addStackRow("3 shadows in a stack", "3 stacks of one", repeated(shadow), shadow, kRepeats);
    addStackRow(
        "shadow cast from a stroke", "a stroke more",
        [](GxEffect& stack) {
            stroke(stack);
            stack.setSilhouette(shadow(stack), {GxSilhouette::kOutline, 0});
        },
        [](GxEffect& stack) {
            stroke(stack);
            stroke(stack);
            shadow(stack);
        },
        1);
    addStackRow(
        "shadow spread by 6", "a stroke beside",
        [](GxEffect& stack) {
            stack.setSilhouette(shadow(stack), {GxSilhouette::kLetters, 6});
        },
        [](GxEffect& stack) {
            stroke(stack);
            shadow(stack);
        },
        1);
}

}  // namespace gxbench
