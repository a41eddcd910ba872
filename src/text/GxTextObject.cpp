#include "text/GxTextObject.h"

#include <SkBitmap.h>
#include <SkCanvas.h>
#include <SkColorSpace.h>
#include <SkImageInfo.h>
#include <SkPaint.h>
#include <SkRect.h>
#include <android/log.h>
#include <hb.h>
#include <minikin/LocaleList.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <exception>
#include <mutex>
#include <new>
#include <utility>
#include <vector>

#include "base/GxLog.h"
#include "base/GxString.h"
#include "base/List.h"
#include "base/NativeError.h"
#include "base/Unicode.h"
#include "effect/GxEffect.h"
#include "font/FontManager.h"
#include "raster/BorrowedBitmap.h"
#include "raster/GxBitmap.h"
#include "raster/GxMath.h"
#include "raster/PlaneMemory.h"
#include "text/GxFontDrawing.h"
#include "text/GxLineInfo.h"
#include "text/GxTextInstanceManager.h"
#include "text/GxView.h"
#include "text/RoundedBoxes.h"

namespace GxFontEffect {

namespace {

constexpr const char* kObjectTag = "GxTextObject";
constexpr uint32_t kStyleBold = 1u << 0;
constexpr uint32_t kStyleItalic = 1u << 1;
constexpr uint32_t kOpaqueBlack = 0xFF000000u;

// Failure sites that the operations of the class do not name themselves.
constexpr int kSiteDestructor = 217;
constexpr int kSiteConstructTwice = 229;
constexpr int kSiteConstructNoMemory = 235;
constexpr int kSiteRenderBadSize = 250;
constexpr int kSiteRenderNoFontDrawing = 266;
constexpr int kSiteRenderNoMemory = 270;
constexpr int kSiteRenderNoPixels = 272;
constexpr int kSiteResultBitmap = 280;
constexpr int kSiteTextNoMemory = 400;
constexpr int kSiteCountedText = 430;
constexpr int kSiteTextLength = 431;
constexpr int kSiteLocaleNoMemory = 470;
constexpr int kSiteFontNoMemory = 610;
constexpr int kSiteFontFamilies = 618;
constexpr int kSiteGetPaintNoMemory = 726;
constexpr int kSitePaintNoMemory = 732;
constexpr int kSiteFitBitmap = 276;
constexpr int kSiteFitBitmapTooLarge = 277;
constexpr int kSiteFadesFill = 754;
constexpr int kSiteWholeInk = 758;
constexpr int kSiteColorGlyphs = 762;
constexpr int kSiteBackgroundShape = 739;
constexpr int kSiteCanvas = 741;
constexpr int kSiteMeasureNoMemory = 278;

// The registry's way of deleting an object whose last binding was released.
void releaseTextCallback(GxTextObject* object) {
    __android_log_print(ANDROID_LOG_DEBUG, kObjectTag,
                        "Delete GxTextObject by InstanceManager : %p", object);
    delete object;
}

void clearLineInfoList(List& lines) {
    for (int i = 0, count = lines.GetCount(); i < count; ++i) {
        delete static_cast<GxLineInfo*>(lines.Get(i));
    }
    lines.RemoveAll();
}

// --- scripts of a text ---

// Code point at `position`, which moves past it. A lone surrogate is U+FFFD.
uint32_t nextCodePoint(const uint16_t* text, int length, int& position) {
    constexpr uint32_t kPairOffset = 0x35FDC00;  // (0xD800 << 10) + 0xDC00 - 0x10000
    const uint32_t unit = text[position++];
    if (IsLeadSurrogate(unit) && position < length && IsTrailSurrogate(text[position])) {
        return (unit << 10) + text[position++] - kPairOffset;
    }
    return IsSurrogate(unit) ? 0xFFFD : unit;
}

hb_script_t scriptOf(uint32_t codePoint) {
    return hb_unicode_script(hb_unicode_funcs_get_default(), codePoint);
}

bool isCommonOrInherited(hb_script_t script) {
    return script == HB_SCRIPT_COMMON || script == HB_SCRIPT_INHERITED;
}

// Script of the run that starts at `position`, which moves to the run's end. Common and inherited
// characters belong to whatever run they stand in.
hb_script_t nextScriptRun(const uint16_t* text, int length, int& position) {
    hb_script_t script = scriptOf(nextCodePoint(text, length, position));
    while (position < length) {
        int next = position;
        const hb_script_t following = scriptOf(nextCodePoint(text, length, next));
        if (following != script) {
            if (isCommonOrInherited(script)) {
                script = following;
            } else if (!isCommonOrInherited(following)) {
                break;
            }
        }
        position = next;
    }
    return script == HB_SCRIPT_INHERITED ? HB_SCRIPT_COMMON : script;
}

// False when memory runs out, like the next two; families that cannot be read are not a failure.
bool loadFamilyOf(const char* locales) {
    const uint32_t id = minikin::registerLocaleList(locales);
    return id == 0 || FontManager::GetInstance().TryLoadMinikinFontFamily(id);
}

// Latin and the scripts without letters need no family of their own.
bool loadFamiliesOf(hb_script_t script) {
    switch (script) {
        case HB_SCRIPT_HANGUL:
            return loadFamilyOf("ko");
        case HB_SCRIPT_HIRAGANA:
        case HB_SCRIPT_KATAKANA:
            return loadFamilyOf("ja");
        case HB_SCRIPT_HAN:
            return loadFamilyOf("zh-Hans") && loadFamilyOf("zh-Hant");
        case HB_SCRIPT_INVALID:
        case HB_SCRIPT_LATIN:
        case HB_SCRIPT_COMMON:
        case HB_SCRIPT_UNKNOWN:
            return true;
        default: {
            const auto tag = static_cast<uint32_t>(script);
            char locales[16];
            snprintf(locales, sizeof(locales), "und-%c%c%c%c", static_cast<char>(tag >> 24),
                     static_cast<char>(tag >> 16), static_cast<char>(tag >> 8),
                     static_cast<char>(tag));
            return loadFamilyOf(locales);
        }
    }
}

bool loadFamiliesOf(const GxString& text) {
    const int length = text.GetUTF16Size() - 1;
    if (length < 0) return true;
    const std::unique_ptr<uint16_t[]> utf16(text.GetUTF16());
    if (!utf16) {
        __android_log_print(ANDROID_LOG_DEBUG, kObjectTag,
                            "SetTextLocaleListId - textString is null.");
        return false;
    }
    for (int position = 0; position < length;) {
        if (!loadFamiliesOf(nextScriptRun(utf16.get(), length, position))) return false;
    }
    return true;
}

// --- composing ---

// Edges to whole pixels as the platform's canvas rounds them.
int32_t roundEdge(int64_t edge) {
    return toInt(std::floor(static_cast<float>(edge) + 0.5f));
}

SkIRect boundsOf(const GxBitmap& bitmap) {
    return SkIRect::MakeWH(saturateInt(bitmap.width), saturateInt(bitmap.height));
}

// What `bounds` holds of a rectangle, whichever way round its edges are.
SkIRect cutTo(const SkIRect& bounds, int64_t left, int64_t top, int64_t right, int64_t bottom) {
    SkIRect cut =
        SkIRect::MakeLTRB(roundEdge(std::min(left, right)), roundEdge(std::min(top, bottom)),
                          roundEdge(std::max(left, right)), roundEdge(std::max(top, bottom)));
    return cut.intersect(bounds) ? cut : SkIRect::MakeEmpty();
}

// The smallest rectangle around both, of which either may be empty.
SkIRect unite(const SkIRect& a, const SkIRect& b) {
    if (a.isEmpty()) return b;
    if (b.isEmpty()) return a;
    return SkIRect::MakeLTRB(std::min(a.fLeft, b.fLeft), std::min(a.fTop, b.fTop),
                             std::max(a.fRight, b.fRight), std::max(a.fBottom, b.fBottom));
}

// Padding cuts the text, but not on the side that the gravity pushes it to.
SkIRect clipOf(const GxView& view, const SkIRect& bounds) {
    const uint32_t horizontal = view.gravity & GxView::kHorizontalGravityMask;
    const uint32_t vertical = view.gravity & GxView::kVerticalGravityMask;
    const int64_t width = view.GetBitmapWidth();
    const int64_t height = view.GetBitmapHeight();
    return cutTo(bounds, horizontal == GxView::kGravityLeft ? 0 : view.paddingLeft,
                 vertical == GxView::kGravityTop ? 0 : view.paddingTop,
                 horizontal == GxView::kGravityRight ? width : width - view.paddingRight,
                 vertical == GxView::kGravityBottom ? height : height - view.paddingBottom);
}

// What `box` has beyond a view, on each side.
GxRect marginsAround(const GxRect& box, int width, int height) {
    if (box.isEmpty()) return {};
    const auto beyond = [](int64_t pixels) { return saturateInt(std::max<int64_t>(pixels, 0)); };
    return {beyond(-int64_t{box.left}), beyond(-int64_t{box.top}),
            beyond(int64_t{box.right} - width), beyond(int64_t{box.bottom} - height)};
}

size_t rowBytesOf(const GxBitmap& bitmap) {
    return size_t{bitmap.width} * 4;
}

uint8_t* pixelAt(const GxBitmap& bitmap, int x, int y) {
    return bitmap.data + static_cast<size_t>(y) * rowBytesOf(bitmap) + static_cast<size_t>(x) * 4;
}

// Clears what `painted` has outside the clip.
void clearOutside(const GxBitmap& picture, const SkIRect& clip, SkIRect painted) {
    if (!painted.intersect(boundsOf(picture))) return;
    const auto clear = [&](int left, int right, int y) {
        if (left >= right) return;
        std::memset(pixelAt(picture, left, y), 0, static_cast<size_t>(right - left) * 4);
    };
    for (int y = painted.fTop; y < painted.fBottom; ++y) {
        if (y < clip.fTop || y >= clip.fBottom) {
            clear(painted.fLeft, painted.fRight, y);
        } else {
            clear(painted.fLeft, std::min(clip.fLeft, painted.fRight), y);
            clear(std::max(clip.fRight, painted.fLeft), painted.fRight, y);
        }
    }
}

// Background boxes under a picture of words 0xAARRGGBB, drawn by the platform's canvas a tile at a
// time: a tile stays in the cache, and its coordinates are whole numbers in float, too.
class Background {
public:
    // The boxes of the lines, cut to the clip.
    Background(const List& lines, const SkIRect& clip, uint32_t color) : color_(swapped(color)) {
        for (int i = 0, count = lines.GetCount(); i < count; ++i) {
            const auto* line = static_cast<const GxLineInfo*>(lines.Get(i));
            if (!line) continue;
            const GxRect& rect = line->rect;
            const SkIRect box = cutTo(clip, rect.left, rect.top, rect.right, rect.bottom);
            if (!box.isEmpty()) boxes_.push_back(box);
        }
    }

    // Of all boxes.
    SkIRect bounds() const {
        SkIRect all = SkIRect::MakeEmpty();
        for (const SkIRect& box : boxes_) all = unite(all, box);
        return all;
    }

    // Throws std::bad_alloc before anything is drawn.
    void drawUnder(const GxBitmap& picture) const {
        if (boxes_.empty()) return;
        const SkIRect all = bounds();
        const int width = std::min(all.fRight - all.fLeft, kTileWidth);
        const int height = std::min(all.fBottom - all.fTop, std::max(kTilePixels / width, 1));
        const GxBitmap tile(static_cast<uint32_t>(width), static_cast<uint32_t>(height), 4);
        if (!tile.data) throw std::bad_alloc();
        for (int y = all.fTop, rows = 0; y < all.fBottom; y += rows) {
            rows = std::min(height, all.fBottom - y);
            for (int x = all.fLeft, columns = 0; x < all.fRight; x += columns) {
                columns = std::min(width, all.fRight - x);
                drawTile(picture, tile, SkIRect::MakeLTRB(x, y, x + columns, y + rows));
            }
        }
    }

private:
    static constexpr int kTileWidth = 1 << 12;
    static constexpr int kTilePixels = 1 << 15;  // with the picture's 256 KiB

    // The canvas writes bytes in the order R, G, B, A.
    static uint32_t swapped(uint32_t argb) {
        return (argb & 0xFF00FF00u) | ((argb >> 16) & 0xFFu) | (argb & 0xFFu) << 16;
    }

    static SkBitmap wrap(uint8_t* pixels, const SkIRect& area, size_t rowBytes) {
        SkBitmap bitmap;
        const SkImageInfo info = SkImageInfo::Make(area.fRight - area.fLeft,
                                                   area.fBottom - area.fTop, kRGBA_8888_SkColorType,
                                                   kUnpremul_SkAlphaType, SkColorSpace::MakeSRGB());
        if (!bitmap.installPixels(info, pixels, rowBytes)) throw std::bad_alloc();
        return bitmap;
    }

    void drawTile(const GxBitmap& picture, const GxBitmap& tile, const SkIRect& area) const {
        const auto misses = [&](SkIRect box) { return !box.intersect(area); };
        if (std::all_of(boxes_.begin(), boxes_.end(), misses)) return;
        SkCanvas canvas(wrap(tile.data, area, rowBytesOf(tile)));
        canvas.drawColor(0, SkBlendMode::kSrc);
        SkPaint paint;
        paint.setColor(color_);
        paint.setStyle(SkPaint::kFill_Style);
        for (SkIRect box : boxes_) {
            if (!box.intersect(area)) continue;
            canvas.drawRect(SkRect::MakeLTRB(static_cast<float>(box.fLeft - area.fLeft),
                                             static_cast<float>(box.fTop - area.fTop),
                                             static_cast<float>(box.fRight - area.fLeft),
                                             static_cast<float>(box.fBottom - area.fTop)),
                            paint);
        }
        uint8_t* under = pixelAt(picture, area.fLeft, area.fTop);
        canvas.drawBitmap(wrap(under, area, rowBytesOf(picture)), 0, 0, nullptr);
        for (int y = area.fTop; y < area.fBottom; ++y) {
            std::memcpy(pixelAt(picture, area.fLeft, y), pixelAt(tile, 0, y - area.fTop),
                        static_cast<size_t>(area.fRight - area.fLeft) * 4);
        }
    }

    uint32_t color_;
    std::vector<SkIRect> boxes_;
};

// The lines' boxes that are not empty, as the shape makes them.
std::vector<GxRect> shapedBoxes(const List& lines, const GxBackgroundShape& shape) {
    std::vector<GxRect> boxes;
    for (int i = 0, count = lines.GetCount(); i < count; ++i) {
        const auto* line = static_cast<const GxLineInfo*>(lines.Get(i));
        if (!line || line->rect.isEmpty()) continue;
        if (boxes.empty() || !shape.isBlock) {
            boxes.push_back(line->rect);
            continue;
        }
        GxRect& block = boxes.front();
        block.left = std::min(block.left, line->rect.left);
        block.top = std::min(block.top, line->rect.top);
        block.right = std::max(block.right, line->rect.right);
        block.bottom = std::max(block.bottom, line->rect.bottom);
    }
    for (GxRect& box : boxes) {
        box.left = saturateInt(int64_t{box.left} - shape.padding);
        box.top = saturateInt(int64_t{box.top} - shape.padding);
        box.right = saturateInt(int64_t{box.right} + shape.padding);
        box.bottom = saturateInt(int64_t{box.bottom} + shape.padding);
    }
    return boxes;
}

// Drawing moves the background boxes of the lines. Moves them back unless told to keep them.
class BackgroundBoxes {
public:
    explicit BackgroundBoxes(const List& lines) : lines_(lines) {
        before_.reserve(static_cast<size_t>(std::max(lines.GetCount(), 0)));
        forEach([this](GxLineInfo& line) { before_.push_back(line.rect); });
    }
    ~BackgroundBoxes() {
        auto box = before_.cbegin();
        forEach([&](GxLineInfo& line) {
            if (box != before_.cend()) line.rect = *box++;
        });
    }
    BackgroundBoxes(const BackgroundBoxes&) = delete;
    BackgroundBoxes& operator=(const BackgroundBoxes&) = delete;

    void keep() { before_.clear(); }

private:
    template <typename Visit>
    void forEach(Visit visit) const {
        for (int i = 0, count = lines_.GetCount(); i < count; ++i) {
            if (auto* line = static_cast<GxLineInfo*>(lines_.Get(i))) visit(*line);
        }
    }

    const List& lines_;
    std::vector<GxRect> before_;
};

}  // namespace

class GxTextObjectImpl {
public:
    GxTextObjectImpl()
        : fontDrawing(std::make_unique<GxFontDrawing>()),
          effect(std::make_unique<GxEffect>()),
          lineInfoList(std::make_unique<List>()),
          view(std::make_unique<GxView>()),
          paint(std::make_unique<android::Paint>()) {
        if (!lineInfoList->Construct()) throw std::bad_alloc();
        // The image starts empty, so whatever lies outside the glyphs came from effects meant for
        // their inside.
        effect->setConfineInside(true);
    }

    GxTextObjectImpl(const GxTextObjectImpl&) = delete;
    GxTextObjectImpl& operator=(const GxTextObjectImpl&) = delete;
    ~GxTextObjectImpl() { clearLineInfoList(*lineInfoList); }

    // Clips what the font drawing has drawn, and lays the background boxes under it. Returns the
    // box of both.
    GxRect compose(const GxBitmap& picture) const;

    std::unique_ptr<GxString> text;
    std::unique_ptr<GxFontDrawing> fontDrawing;
    std::unique_ptr<GxEffect> effect;
    std::unique_ptr<List> lineInfoList;  // of owned GxLineInfo
    int32_t runtimeHandle = -1;
    uint32_t textStyle = 0;
    std::unique_ptr<PlaneBitmap> result;
    std::unique_ptr<GxView> view;
    std::unique_ptr<const android::Paint> paint;
    uint32_t backgroundColor = 0;
    bool backgroundEnabled = false;
    GxBackgroundShape backgroundShape;
    uint32_t canvasColor = 0;
    bool fadesFill = false;
    bool keepsWholeInk = false;
    bool keepsColorGlyphs = false;
    GxRect inkMargins;
    uint32_t textColor = kOpaqueBlack;
};

GxRect GxTextObjectImpl::compose(const GxBitmap& picture) const {
    const SkIRect clip = keepsWholeInk ? boundsOf(picture) : clipOf(*view, boundsOf(picture));
    const GxRect& drawn = effect->getPaintedRect();
    SkIRect painted = SkIRect::MakeLTRB(drawn.left, drawn.top, drawn.right, drawn.bottom);
    clearOutside(picture, clip, painted);
    if (backgroundEnabled && backgroundShape.isPlain()) {
        const Background background(*lineInfoList, clip, backgroundColor);
        background.drawUnder(picture);
        painted = unite(painted, background.bounds());
    } else if (backgroundEnabled) {
        const GxRect within(clip.fLeft, clip.fTop, clip.fRight, clip.fBottom);
        const std::vector<GxRect> boxes = shapedBoxes(*lineInfoList, backgroundShape);
        drawBoxesUnder(picture, boxes, within, backgroundShape.radius, backgroundColor);
        for (const GxRect& box : boxes) {
            SkIRect shown = SkIRect::MakeLTRB(box.left, box.top, box.right, box.bottom);
            if (shown.intersect(clip)) painted = unite(painted, shown);
        }
    }
    const GxRect all(0, 0, saturateInt(picture.width), saturateInt(picture.height));
    if (canvasColor >> 24 != 0) {
        drawBoxesUnder(picture, {all}, all, 0, canvasColor);
        return all;
    }
    return GxRect(painted.fLeft, painted.fTop, painted.fRight, painted.fBottom);
}

GxTextObject::GxTextObject() {
    static std::once_flag callbackSet;
    std::call_once(callbackSet, [] { GxTextInstanceManager::SetCallBack(releaseTextCallback); });
    __android_log_print(ANDROID_LOG_DEBUG, kObjectTag, "GxTextObject(%p)", this);
}

GxTextObject::~GxTextObject() {
    if (!requireConstructed(kSiteDestructor)) return;
    __android_log_print(ANDROID_LOG_DEBUG, kObjectTag, "~GxTextObject(%p / %d)", this,
                        impl->runtimeHandle);
    GxTextInstanceManager::Unregister(impl->runtimeHandle);
}

bool GxTextObject::requireConstructed(int site) const {
    if (impl) return true;
    ReportNativeError(kObjectTag, GXE_ERROR_NOT_CONSTRUCTED, site);
    return false;
}

bool GxTextObject::Construct() {
    if (impl)
        return ReportNativeError(kObjectTag, GXE_ERROR_ALREADY_CONSTRUCTED, kSiteConstructTwice);
    return GuardMemory(kObjectTag, kSiteConstructNoMemory, [this] {
        auto fresh = std::make_unique<GxTextObjectImpl>();
        fresh->runtimeHandle = GxTextInstanceManager::Register(this);
        if (fresh->runtimeHandle < 0) return false;
        impl = std::move(fresh);
        __android_log_print(ANDROID_LOG_DEBUG, kObjectTag, "Construct(%p / %d)", this,
                            impl->runtimeHandle);
        return true;
    });
}

// Whatever stops a render halfway, the effect stack borrows nothing afterwards.
template <typename Draw>
bool GxTextObject::renderGuarded(int width, int height, Draw drawPicture) {
    if (!requireConstructed(248)) return false;
    __android_log_print(ANDROID_LOG_DEBUG, kObjectTag,
                        "RenderTextEffect(%p / %d) >>> Start! - (w=%d,h=%d)", this,
                        impl->runtimeHandle, width, height);
    if (width < 0 || height < 0) {
        return ReportNativeError(kObjectTag, GXE_ERROR_INVALID_ARGUMENT, kSiteRenderBadSize);
    }
    if (!impl->fontDrawing) {
        return ReportNativeError(kObjectTag, GXE_ERROR_NOT_CONSTRUCTED, kSiteRenderNoFontDrawing);
    }
    const bool done = GuardMemory(kObjectTag, kSiteRenderNoMemory, [&] {
        drawPicture(static_cast<uint32_t>(width), static_cast<uint32_t>(height));
        return true;
    });
    impl->effect->releaseBitmap();
    impl->effect->setOutput(GxEffect::Output::kAny);
    __android_log_print(ANDROID_LOG_DEBUG, kObjectTag, "RenderTextEffect(%p / %d) <<< End.", this,
                        impl->runtimeHandle);
    return done;
}

const uint32_t* GxTextObject::RenderTextEffect(int width, int height) {
    renderGuarded(width, height, [this](uint32_t columns, uint32_t rows) {
        auto picture = std::make_unique<PlaneBitmap>(columns, rows, 4);
        picture->setPainted(draw(*picture->get()));
        impl->result = std::move(picture);
    });
    return impl && impl->result ? reinterpret_cast<const uint32_t*>(impl->result->get()->data)
                                : nullptr;
}

bool GxTextObject::RenderTextEffectInto(uint32_t* pixels, int width, int height) {
    if (impl && !pixels) {
        return ReportNativeError(kObjectTag, GXE_ERROR_INVALID_ARGUMENT, kSiteRenderNoPixels);
    }
    return renderGuarded(width, height, [&](uint32_t columns, uint32_t rows) {
        BorrowedBitmap picture(pixels, columns, rows, 4);
        draw(picture);
    });
}

// Throws std::bad_alloc unless all of it could be drawn, with the lines as they were. Returns what
// was painted.
GxRect GxTextObject::draw(GxBitmap& picture) {
    if (!picture.data) throw std::bad_alloc();
    BackgroundBoxes boxes(*impl->lineInfoList);
    impl->effect->setOutput(GxEffect::Output::kFreshWords);
    if (!impl->fontDrawing->DrawTextEffect(this, &picture)) throw std::bad_alloc();
    const GxRect painted = impl->compose(picture);
    boxes.keep();
    return painted;
}

void GxTextObject::ReleaseKeptPlanes() {
    releaseKeptPlanes();
}

bool GxTextObject::FitBitmapToView() {
    if (!requireConstructed(kSiteFitBitmap)) return false;
    GxRect ink;
    const bool isMeasured =
        !impl->keepsWholeInk || GuardMemory(kObjectTag, kSiteMeasureNoMemory, [&] {
            return !impl->fontDrawing || impl->fontDrawing->MeasureInk(this, &ink);
        });
    if (!isMeasured) return false;
    const GxView& view = *impl->view;
    const GxRect margins = marginsAround(ink, view.GetWidth(), view.GetHeight());
    const GxEffect& effect = *impl->effect;
    const int64_t width = int64_t{view.GetWidth()} + effect.getLeftOffset() +
                          effect.getRightOffset() + margins.left + margins.right;
    const int64_t height = int64_t{view.GetHeight()} + effect.getTopOffset() +
                           effect.getBottomOffset() + margins.top + margins.bottom;
    if (std::max(width, height) > INT32_MAX) {
        return ReportNativeError(kObjectTag, GXE_ERROR_INVALID_ARGUMENT, kSiteFitBitmapTooLarge);
    }
    impl->inkMargins = margins;
    return impl->view->SetBitmapWidth(static_cast<int>(width)) &&
           impl->view->SetBitmapHeight(static_cast<int>(height));
}

const GxBitmap* GxTextObject::GetResultBitmap() const {
    if (!requireConstructed(kSiteResultBitmap) || !impl->result) return nullptr;
    return impl->result->get();
}

int GxTextObject::GetRuntimeHandle() const {
    return requireConstructed(374) ? impl->runtimeHandle : -1;
}

GxTextObject* GxTextObject::FindGxTextObject(int handle) {
    return GxTextInstanceManager::FindGxTextObject(handle);
}

GxEffect* GxTextObject::GetEffect() const {
    return requireConstructed(382) ? impl->effect.get() : nullptr;
}

// --- text ---

bool GxTextObject::SetText(const GxString* text) {
    if (!requireConstructed(390)) return false;
    if (GxLog::IsAllLogEnable()) {
        __android_log_print(ANDROID_LOG_DEBUG, kObjectTag, "SetText() - %p [%s] strLen=%d", this,
                            GxLog::ConvertLog(text), text ? text->GetLength() : 0);
    }
    return storeText(text);
}

bool GxTextObject::SetText(const wchar_t* text) {
    return requireConstructed(426) && storeText(text);
}

bool GxTextObject::SetText(const wchar_t* text, int length) {
    if (!requireConstructed(kSiteCountedText)) return false;
    if (length < 0)
        return ReportNativeError(kObjectTag, GXE_ERROR_INVALID_ARGUMENT, kSiteTextLength);
    return storeText(text, length);
}

template <typename Text, typename... Length>
bool GxTextObject::storeText(const Text* text, Length... length) {
    if (!text) {
        impl->text.reset();
        return true;
    }
    return GuardMemory(kObjectTag, kSiteTextNoMemory, [&] {
        auto fresh = std::make_unique<GxString>();
        if (!fresh->Construct() || !fresh->Set(text, length...)) return false;
        const bool hasOwnFamilies = impl->fontDrawing && impl->fontDrawing->HasFontFamilies();
        if (!hasOwnFamilies && !loadFamiliesOf(*fresh)) return false;
        // The string that was handed out stays the object's.
        if (impl->text) return impl->text->Set(fresh.get());
        impl->text = std::move(fresh);
        return true;
    });
}

void GxTextObject::SetTextLocaleListId() {
    if (!requireConstructed(460)) return;
    if (!impl->text) {
        __android_log_print(ANDROID_LOG_DEBUG, kObjectTag, "SetTextLocaleListId - text is null.");
        return;
    }
    GuardMemory(kObjectTag, kSiteLocaleNoMemory, [this] { return loadFamiliesOf(*impl->text); });
}

GxString* GxTextObject::GetText() const {
    return requireConstructed(542) ? impl->text.get() : nullptr;
}

// --- fonts ---

GxFontDrawing& GxTextObject::fontDrawing() {
    if (!impl->fontDrawing) impl->fontDrawing = std::make_unique<GxFontDrawing>();
    return *impl->fontDrawing;
}

bool GxTextObject::SetFontFamilyName(const char* name) {
    if (!requireConstructed(549)) return false;
    if (!name) return ReportNativeError(kObjectTag, GXE_ERROR_INVALID_ARGUMENT, 553);
    __android_log_print(ANDROID_LOG_DEBUG, kObjectTag, "SetFontFamilyName(%p) - familyName[%s]",
                        this, name);
    return GuardMemory(kObjectTag, kSiteFontNoMemory,
                       [&] { return fontDrawing().SetFontFamilyName(name); });
}

bool GxTextObject::SetFont(const char* path) {
    if (!requireConstructed(572)) return false;
    if (!path) return ReportNativeError(kObjectTag, GXE_ERROR_INVALID_ARGUMENT, 576);
    __android_log_print(ANDROID_LOG_DEBUG, kObjectTag, "SetFont(%p) - path[%s]", this, path);
    return useFont(path, nullptr, 0);
}

bool GxTextObject::SetFont(const char* path, char* data, unsigned size) {
    if (!requireConstructed(600)) return false;
    if (!path) return ReportNativeError(kObjectTag, GXE_ERROR_INVALID_ARGUMENT, 604);
    __android_log_print(ANDROID_LOG_DEBUG, kObjectTag, "SetFont2(%p) - path[%s] - size: %d", this,
                        path, static_cast<int>(size));
    return useFont(path, data, size);
}

bool GxTextObject::useFont(const char* path, char* data, unsigned size) {
    return GuardMemory(kObjectTag, kSiteFontNoMemory, [&] {
        GxFontDrawing& drawing = fontDrawing();
        return FontManager::GetInstance().AddMinikinFont(path, data, size, 0, true) &&
               drawing.SetFontPath(path);
    });
}

bool GxTextObject::SetFontFamilies(std::vector<std::shared_ptr<minikin::FontFamily>> families,
                                   int weight) {
    if (!requireConstructed(kSiteFontFamilies)) return false;
    return GuardMemory(kObjectTag, kSiteFontNoMemory, [&] {
        fontDrawing().SetFontFamilies(std::move(families), weight);
        return true;
    });
}

GxFontDrawing* GxTextObject::GetFont() const {
    return requireConstructed(628) ? impl->fontDrawing.get() : nullptr;
}

// --- lines ---

bool GxTextObject::SetLineInfo(const List* lines) {
    if (!requireConstructed(636)) return false;
    if (!lines) {
        __android_log_print(ANDROID_LOG_ERROR, kObjectTag, "SetLineInfo - lineInfo is NULL");
        return ReportNativeError(kObjectTag, GXE_ERROR_INVALID_ARGUMENT, 640);
    }
    if (!impl->lineInfoList) {
        __android_log_print(ANDROID_LOG_ERROR, kObjectTag, "SetLineInfo - M->lineInfo is NULL");
        return ReportNativeError(kObjectTag, GXE_ERROR_NOT_CONSTRUCTED, 647);
    }
    if (lines == impl->lineInfoList.get()) return true;  // these are the object's already
    List& own = *impl->lineInfoList;
    int earlier = own.GetCount();
    if (lines->GetCount() > 0 && !own.Add(lines)) return false;
    for (; earlier > 0; --earlier) {
        delete static_cast<GxLineInfo*>(own.Get(0));
        own.Remove(0);
    }
    return true;
}

List* GxTextObject::GetLineInfo() const {
    return requireConstructed(664) ? impl->lineInfoList.get() : nullptr;
}

// --- style, view, paint, colours ---

bool GxTextObject::SetTextStyle(bool bold, bool italic) {
    if (!requireConstructed(678)) return false;
    const uint32_t others = impl->textStyle & ~(kStyleBold | kStyleItalic);
    impl->textStyle = others | (bold ? kStyleBold : 0) | (italic ? kStyleItalic : 0);
    return true;
}

bool GxTextObject::isBoldTextStyle() const {
    return requireConstructed(703) && (impl->textStyle & kStyleBold) != 0;
}

bool GxTextObject::isItalicTextStyle() const {
    return requireConstructed(710) && (impl->textStyle & kStyleItalic) != 0;
}

GxView* GxTextObject::GetView() const {
    return requireConstructed(717) ? impl->view.get() : nullptr;
}

android::Paint GxTextObject::GetPaint() const {
    if (!requireConstructed(724)) return android::Paint();
    try {
        return *impl->paint;
    } catch (const std::bad_alloc&) {
        ReportNativeError(kObjectTag, GXE_ERROR_INVALID_ARGUMENT, kSiteGetPaintNoMemory);
        return android::Paint();
    }
}

const android::Paint& GxTextObject::paint() const {
    return *impl->paint;
}

bool GxTextObject::SetPaint(android::Paint& paint) {
    if (!requireConstructed(730)) return false;
    return GuardMemory(kObjectTag, kSitePaintNoMemory, [&] {
        impl->paint = std::make_unique<const android::Paint>(paint);
        return true;
    });
}

void GxTextObject::setKeepsWholeInk(bool keeps) {
    if (!requireConstructed(kSiteWholeInk)) return;
    impl->keepsWholeInk = keeps;
    if (!keeps) impl->inkMargins = GxRect();
}

bool GxTextObject::getKeepsWholeInk() const {
    return requireConstructed(kSiteWholeInk) && impl->keepsWholeInk;
}

GxRect GxTextObject::GetInkMargins() const {
    return requireConstructed(kSiteWholeInk) ? impl->inkMargins : GxRect();
}

void GxTextObject::setFadesFill(bool fades) {
    if (requireConstructed(kSiteFadesFill)) impl->fadesFill = fades;
}

bool GxTextObject::getFadesFill() const {
    return requireConstructed(kSiteFadesFill) && impl->fadesFill;
}

void GxTextObject::setKeepsColorGlyphs(bool keeps) {
    if (requireConstructed(kSiteColorGlyphs)) impl->keepsColorGlyphs = keeps;
}

bool GxTextObject::getKeepsColorGlyphs() const {
    return requireConstructed(kSiteColorGlyphs) && impl->keepsColorGlyphs;
}

void GxTextObject::SetBackgroundColor(uint32_t color, bool enabled) {
    if (!requireConstructed(736)) return;
    impl->backgroundColor = color;
    impl->backgroundEnabled = enabled;
}

void GxTextObject::SetBackgroundShape(const GxBackgroundShape& shape) {
    if (requireConstructed(kSiteBackgroundShape)) impl->backgroundShape = shape;
}

void GxTextObject::SetCanvasColor(uint32_t color) {
    if (requireConstructed(kSiteCanvas)) impl->canvasColor = color;
}

void GxTextObject::SetTextColor(uint32_t color) {
    if (requireConstructed(743)) impl->textColor = color;
}

uint32_t GxTextObject::GetTextColor() const {
    return requireConstructed(749) ? impl->textColor : kOpaqueBlack;
}

}  // namespace GxFontEffect
