// Rows of whole titles: layout, glyphs, effects and the finished image, in process.
#include <hwui/Paint.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>

#include "Bench.h"
#ifdef GXBENCH_PILLOW
#include "PillowTitle.h"
#endif
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
constexpr int kSparseScale = 4;  // 3.2 megapixels about the same letters
constexpr int kLeft = 20;
constexpr int kBaseline = 140;
constexpr int kFontSize = 96;
constexpr const wchar_t* kText = L"Golden Hour";

constexpr int kStroke = 6;
constexpr int kShadowRadius = 10;
constexpr int kShadowDistance = 8;
constexpr int kGlowRadius = 16;

// One line in bold, drawn again and again.
class Title {
public:
    Title(void (*addEffects)(GxEffect&), int scale) {
        text_.Construct();
        text_.SetFont(GXBENCH_FONT);
        android::Paint paint;
        constexpr uint32_t kAntiAlias = 1;
        paint.setJavaFlags(kAntiAlias);
        paint.getSkFont().setSize(kFontSize);
        text_.SetPaint(paint);
        text_.SetTextColor(0xFFF0C040);
        text_.SetText(kText);
        addEffects(*text_.GetEffect());
        text_.GetView()->SetSize(scale * kViewWidth, scale * kViewHeight);
        text_.FitBitmapToView();
        width_ = text_.GetView()->GetBitmapWidth();
        height_ = text_.GetView()->GetBitmapHeight();
    }

    // Before each render: it moves them.
    void setLines() {
        auto line = std::make_unique<GxLineInfo>();
        line->x = kLeft;
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

void addPlainEffects(GxEffect& /*effect*/) {}

void addTitleEffects(GxEffect& effect) {
    effect.addStrokeText(kStroke, 0xFF402000, 1.0f, 0, GxStrokeProperty::kOutside);
    effect.addOuterShadowText(120, kShadowDistance, kShadowRadius, 0xFF000000, 0.6f);
    effect.addOuterGlowText(kGlowRadius, 0xFFFFE080, 0.8f, 0, nullptr);
}

constexpr const char* kPillow = "Pillow";

#ifdef GXBENCH_PILLOW

std::function<void()> pillow() {
    PillowTitle title;
    for (const wchar_t* c = kText; *c; ++c) title.text += static_cast<char>(*c);
    title.font = GXBENCH_FONT;
    title.size = kFontSize;
    title.width = kViewWidth;
    title.height = kViewHeight;
    title.left = kLeft;
    title.baseline = kBaseline;
    title.stroke = kStroke;
    title.shadowRadius = kShadowRadius;
    title.shadowDistance = kShadowDistance;
    title.glowRadius = kGlowRadius;
    return pillowRun(title);
}

#else

std::function<void()> pillow() {
    return {};
}

#endif

Contenders titleContenders(const std::string& operation, void (*addEffects)(GxEffect&),
                           int scale = 1) {
    const auto title = std::make_shared<Title>(addEffects, scale);
    if (!title->hasInk()) std::fprintf(stderr, "%s: drew nothing\n", operation.c_str());
    Contenders contenders;
    contenders.prepare = [=] { title->setLines(); };
    contenders.ours = [=] { title->render(); };
    return contenders;
}

}  // namespace

void addTextRows() {
#ifndef GXBENCH_PILLOW
    addMissingPeer(kPillow);
#endif
    const std::string plain = "plain 96 px title in process";
    addRow({plain, "", {}, 0, [=] { return titleContenders(plain, addPlainEffects); }});
    const std::string sparse = "plain 96 px title in 3.2 megapixels";
    addRow({sparse, "", {}, 0, [=] {
                return titleContenders(sparse, addPlainEffects, kSparseScale);
            }});
    const std::string styled = "title with stroke, shadow and glow";
    addRow({styled, kPillow, {0, 8}, 0, [=] {
                Contenders contenders = titleContenders(styled, addTitleEffects);
                contenders.peer = pillow();
                return contenders;
            }});
}

}  // namespace gxbench
