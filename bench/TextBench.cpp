// Rows of whole titles: layout, glyphs, effects and the finished image, in process.
#include <hwui/Paint.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>

#include "Bench.h"
#include "base/List.h"
#include "effect/GxEffect.h"
#include "text/GxLineInfo.h"
#include "text/GxTextObject.h"
#include "text/GxView.h"

namespace gxbench {

namespace {

using namespace GxFontEffect;

constexpr int kViewWidth = 900;
constexpr int kViewHeight = 220;
constexpr int kBaseline = 140;
constexpr const wchar_t* kText = L"Golden Hour";

// One line in bold, drawn again and again.
class Title {
public:
    explicit Title(void (*addEffects)(GxEffect&)) {
        text_.Construct();
        text_.SetFont(GXBENCH_FONT);
        android::Paint paint;
        constexpr uint32_t kAntiAlias = 1;
        paint.setJavaFlags(kAntiAlias);
        paint.getSkFont().setSize(96);
        text_.SetPaint(paint);
        text_.SetTextColor(0xFFF0C040);
        text_.SetText(kText);
        addEffects(*text_.GetEffect());

        const GxEffect& effect = *text_.GetEffect();
        width_ = kViewWidth + effect.getLeftOffset() + effect.getRightOffset();
        height_ = kViewHeight + effect.getTopOffset() + effect.getBottomOffset();
        text_.GetView()->SetSize(kViewWidth, kViewHeight);
        text_.GetView()->SetBitmapWidth(width_);
        text_.GetView()->SetBitmapHeight(height_);
    }

    // Before each render: it moves them.
    void setLines() {
        auto line = std::make_unique<GxLineInfo>();
        line->x = 20;
        line->y = kBaseline;
        line->end = static_cast<int32_t>(std::char_traits<wchar_t>::length(kText));
        List lines;
        lines.Construct();
        lines.Add(line.release());
        text_.SetLineInfo(&lines);
    }

    const uint32_t* render() { return text_.RenderTextEffect(width_, height_); }

    bool hasInk() {
        setLines();
        const uint32_t* pixels = render();
        return pixels && std::any_of(pixels, pixels + size_t(width_) * size_t(height_),
                                     [](uint32_t pixel) { return pixel != 0; });
    }

private:
    GxTextObject text_;
    int width_ = 0;
    int height_ = 0;
};

void addTitleRow(const std::string& operation, void (*addEffects)(GxEffect&)) {
    addRow({operation, "", {}, 0, [=] {
                const auto title = std::make_shared<Title>(addEffects);
                if (!title->hasInk()) std::fprintf(stderr, "%s: drew nothing\n", operation.c_str());
                return Contenders{[=] { title->setLines(); }, [=] { title->render(); }, {}, {}};
            }});
}

}  // namespace

void addTextRows() {
    addTitleRow("plain 96 px title in process", [](GxEffect&) {});
    addTitleRow("title with stroke, shadow and glow", [](GxEffect& effect) {
        effect.addStrokeText(6, 0xFF402000, 1.0f, 0, GxStrokeProperty::kOutside);
        effect.addOuterShadowText(120, 8, 10, 0xFF000000, 0.6f);
        effect.addOuterGlowText(16, 0xFFFFE080, 0.8f, 0, nullptr);
    });
}

}  // namespace gxbench
