#include "minikin/PieceShaper.h"

#include <hb-ot.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <exception>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>

#include "AllocationWatch.h"
#include "minikin/FontFile.h"
#include "minikin/LayoutCache.h"
#include "minikin/Unicode.h"

namespace minikin {
namespace {

// HarfBuzz positions are 24.8 fixed point.
constexpr float kFixedOne = 256.0f;
// Beyond this the sums of positions would not fit 32 bits.
constexpr float kMaxPixels = 1 << 21;

// HarfBuzz makes its own functions on first use, for the whole process and for good, memory or not:
// while this library is loaded there is some.
[[maybe_unused]] const bool gFunctionsMade = [] {
    hb_unicode_funcs_get_default();
    hb_font_destroy(hb_font_create(hb_face_get_empty()));
    return true;
}();

// The list ends with null. Without it the environment chooses, or what the library was built with.
constexpr const char* kShapers[] = {"ot", nullptr};

// Letters further apart than this fraction of an em are not drawn as a ligature.
constexpr float kMaxLigatureSpacing = 0.03f;

float finiteOr0(float value) {
    return std::isfinite(value) ? value : 0.0f;
}

hb_position_t toFixed(float pixels) {
    return static_cast<hb_position_t>(std::clamp(pixels, -kMaxPixels, kMaxPixels) * kFixedOne);
}

// 64 bits, for sums of the file's numbers.
float toPixels(int64_t fixed) {
    return static_cast<float>(fixed) / kFixedOne;
}

unsigned toPpem(float pixels) {
    return static_cast<unsigned>(std::clamp(pixels, 0.0f, kMaxPixels));
}

// HarfBuzz asks for advances through these two; `data` is the ScaledFont. Nothing may be thrown
// through HarfBuzz: running out of memory is noted and reported after shaping.
void glyphAdvances(hb_font_t* /*hbFont*/, void* data, unsigned count, const hb_codepoint_t* glyphs,
                   unsigned glyphStride, hb_position_t* advances, unsigned advanceStride,
                   void* /*user*/) {
    constexpr unsigned kBatch = 64;
    auto* font = static_cast<ScaledFont*>(data);
    const auto* glyphBytes = reinterpret_cast<const char*>(glyphs);
    auto* advanceBytes = reinterpret_cast<char*>(advances);
    while (count > 0) {
        const unsigned batch = std::min(count, kBatch);
        std::array<uint16_t, kBatch> ids;
        std::array<float, kBatch> widths{};
        for (unsigned i = 0; i < batch; i++, glyphBytes += glyphStride) {
            ids[i] = static_cast<uint16_t>(*reinterpret_cast<const hb_codepoint_t*>(glyphBytes));
        }
        try {
            font->measure(ids.data(), batch, widths.data());
        } catch (const std::bad_alloc&) {
            font->outOfMemory = true;
        }
        for (unsigned i = 0; i < batch; i++, advanceBytes += advanceStride) {
            *reinterpret_cast<hb_position_t*>(advanceBytes) = toFixed(finiteOr0(widths[i]));
        }
        count -= batch;
    }
}

hb_position_t glyphAdvance(hb_font_t* hbFont, void* data, hb_codepoint_t glyph, void* user) {
    hb_position_t advance = 0;
    glyphAdvances(hbFont, data, 1, &glyph, 0, &advance, 0, user);
    return advance;
}

hb_bool_t zeroOrigin(hb_font_t* /*hbFont*/, void* /*data*/, hb_codepoint_t /*glyph*/,
                     hb_position_t* x, hb_position_t* y, void* /*user*/) {
    *x = 0;
    *y = 0;
    return true;
}

hb_font_funcs_t* makeFontFuncs(bool measured) {
    hb_font_funcs_t* funcs = hb_font_funcs_create();
    if (funcs == hb_font_funcs_get_empty()) throw std::bad_alloc();
    if (measured) {
        hb_font_funcs_set_glyph_h_advance_func(funcs, glyphAdvance, nullptr, nullptr);
        hb_font_funcs_set_glyph_h_advances_func(funcs, glyphAdvances, nullptr, nullptr);
    }
    hb_font_funcs_set_glyph_h_origin_func(funcs, zeroOrigin, nullptr, nullptr);
    hb_font_funcs_make_immutable(funcs);
    return funcs;
}

// Advances as the glyphs are drawn, hinting included; everything else from the font file.
hb_font_funcs_t* measuredAdvances() {
    static hb_font_funcs_t* const funcs = makeFontFuncs(true);
    return funcs;
}

// Bitmap strikes come in fixed sizes; the font file's own advances scale to any.
hb_font_funcs_t* fileAdvances() {
    static hb_font_funcs_t* const funcs = makeFontFuncs(false);
    return funcs;
}

bool hasTable(hb_face_t* face, hb_tag_t tag) {
    const HbBlobUniquePtr table(hb_face_reference_table(face, tag));
    return hb_blob_get_length(table.get()) != 0;
}

std::vector<hb_feature_t> shapingFeatures(const MinikinPaint& paint) {
    std::vector<hb_feature_t> features;
    if (std::fabs(paint.letterSpacing) > kMaxLigatureSpacing) {
        for (const hb_tag_t tag : {HB_TAG('l', 'i', 'g', 'a'), HB_TAG('c', 'l', 'i', 'g')}) {
            features.push_back({tag, 0, HB_FEATURE_GLOBAL_START, HB_FEATURE_GLOBAL_END});
        }
    }
    std::string_view settings = paint.fontFeatureSettings;
    while (!settings.empty()) {
        const size_t length = std::min(settings.find(','), settings.size());
        hb_feature_t feature;
        if (hb_feature_from_string(settings.data(), static_cast<int>(length), &feature) &&
            feature.start == HB_FEATURE_GLOBAL_START && feature.end == HB_FEATURE_GLOBAL_END) {
            features.push_back(feature);
        }
        settings.remove_prefix(std::min(length + 1, settings.size()));
    }
    return features;
}

template <typename T>
void appendBytes(std::string* out, const T& value) {
    static_assert(std::has_unique_object_representations_v<T> || std::is_floating_point_v<T>);
    out->append(reinterpret_cast<const char*>(&value), sizeof(value));
}

// What of a paint decides how pieces are shaped. Word spacing comes on top of them.
std::string paintKey(const MinikinPaint& paint) {
    std::string key;
    appendBytes(&key, paint.font->getId());
    for (const float number : {paint.size, paint.scaleX, paint.skewX, paint.letterSpacing}) {
        appendBytes(&key, number);
    }
    appendBytes(&key, paint.fontFlags);
    appendBytes(&key, paint.localeListId);
    appendBytes(&key, paint.fontStyle.weight());
    appendBytes(&key, paint.fontStyle.slant());
    appendBytes(&key, paint.familyVariant);
    appendBytes(&key, paint.fontFeatureSettings.size());
    return key + paint.fontFeatureSettings;
}

// Scripts whose letters are joined by a stroke or a head line, which spacing would tear.
bool allowsLetterSpacing(hb_script_t script) {
    switch (script) {
        case HB_SCRIPT_ARABIC:
        case HB_SCRIPT_NKO:
        case HB_SCRIPT_PSALTER_PAHLAVI:
        case HB_SCRIPT_MANDAIC:
        case HB_SCRIPT_MONGOLIAN:
        case HB_SCRIPT_PHAGS_PA:
        case HB_SCRIPT_DEVANAGARI:
        case HB_SCRIPT_BENGALI:
        case HB_SCRIPT_GURMUKHI:
        case HB_SCRIPT_MODI:
        case HB_SCRIPT_SHARADA:
        case HB_SCRIPT_SYLOTI_NAGRI:
        case HB_SCRIPT_TIRHUTA:
        case HB_SCRIPT_OGHAM:
            return false;
        default:
            return true;
    }
}

bool isCommonOrInherited(hb_script_t script) {
    return script == HB_SCRIPT_COMMON || script == HB_SCRIPT_INHERITED;
}

// Script of the characters from *position on, which moves behind the last one of that script.
// Common and inherited characters belong to what is before them, at the beginning to what follows.
hb_script_t nextScriptRun(const U16StringPiece& text, uint32_t* position) {
    hb_unicode_funcs_t* unicode = hb_unicode_funcs_get_default();
    hb_script_t script = HB_SCRIPT_COMMON;
    for (uint32_t next = *position; next < text.size(); *position = next) {
        const hb_script_t found = hb_unicode_script(unicode, nextCodePoint(text, &next));
        if (found == script || isCommonOrInherited(found)) continue;
        if (!isCommonOrInherited(script)) break;
        script = found;
    }
    return script;
}

}  // namespace

ScaledFont::ScaledFont(const FakedFont& fakedFont, const MinikinPaint& minikinPaint)
    : faked(fakedFont), paint(&minikinPaint), hasColorBitmaps(false) {
    const portable::AllocationWatch watch;
    const HbFontUniquePtr base = fakedFont.font->file()->baseFont();
    hasColorBitmaps = hasTable(hb_font_get_face(base.get()), HB_TAG('C', 'B', 'D', 'T'));
    hbFont.reset(hb_font_create_sub_font(base.get()));
    if (watch.failed() || hbFont.get() == hb_font_get_empty()) throw std::bad_alloc();
    const float width = paint->size * paint->scaleX;
    hb_font_set_ppem(hbFont.get(), toPpem(width), toPpem(paint->size));
    hb_font_set_scale(hbFont.get(), toFixed(width), toFixed(paint->size));
    hb_font_set_funcs(hbFont.get(), hasColorBitmaps ? fileAdvances() : measuredAdvances(), this,
                      nullptr);
}

void ScaledFont::measure(const uint16_t* glyphs, unsigned count, float* advances) {
    for (unsigned i = 0; i < count; i++) {
        MeasuredGlyph& known = mMeasured[glyphs[i] % kMeasuredGlyphs];
        if (known.glyph != glyphs[i]) {
            MeasuredGlyph fresh = {glyphs[i], 0.0f, MinikinRect()};
            faked.font->typeface()->GetAdvanceAndBounds(glyphs[i], *paint, faked.fakery,
                                                        &fresh.advance, &fresh.bounds);
            known = fresh;
        }
        advances[i] = known.advance;
    }
}

bool ScaledFont::pictureExtents(uint32_t glyph, hb_glyph_extents_t* extents) const {
    if (!hasColorBitmaps) return false;
    const portable::AllocationWatch watch;
    const bool found = hb_font_get_glyph_extents(hbFont.get(), glyph, extents);
    // HarfBuzz goes on without the table that it had no memory for.
    if (watch.failed()) throw std::bad_alloc();
    return found;
}

MinikinRect ScaledFont::glyphBounds(uint32_t glyph) const {
    MinikinRect bounds;
    hb_glyph_extents_t extents;
    if (pictureExtents(glyph, &extents)) {
        const int64_t left = extents.x_bearing;
        const int64_t top = -static_cast<int64_t>(extents.y_bearing);
        bounds.mLeft = std::round(toPixels(left));
        bounds.mTop = std::round(toPixels(top));
        bounds.mRight = std::round(toPixels(left + extents.width));
        bounds.mBottom = std::round(toPixels(top - extents.height));
    } else if (const MeasuredGlyph& known = mMeasured[glyph % kMeasuredGlyphs];
               known.glyph == glyph) {
        bounds = known.bounds;
    } else {
        faked.font->typeface()->GetBounds(&bounds, glyph, *paint, faked.fakery);
    }
    const bool finite = std::isfinite(bounds.mLeft) && std::isfinite(bounds.mTop) &&
                        std::isfinite(bounds.mRight) && std::isfinite(bounds.mBottom);
    return finite ? bounds : MinikinRect();
}

PieceShaper::PieceShaper(const MinikinPaint& paint)
    : mPaint(paint),
      mLocales(localeListById(paint.localeListId)),
      mFeatures(shapingFeatures(paint)),
      mBuffer(hb_buffer_create()),
      mKey(paintKey(paint)),
      mPaintKeySize(mKey.size()),
      mExceptions(std::uncaught_exceptions()) {
    if (mBuffer.get() == hb_buffer_get_empty()) throw std::bad_alloc();
}

PieceShaper::~PieceShaper() {
    if (std::uncaught_exceptions() == mExceptions) return;
    for (const auto& [font, scaled] : mFonts) font->file()->discardFace();
    LayoutCache::shared().forget(mPaint.font->getId());
}

ScaledFont& PieceShaper::scaledFont(const FakedFont& fakedFont) {
    return mFonts.try_emplace(fakedFont.font, fakedFont, mPaint).first->second;
}

std::string_view PieceShaper::keyOf(const U16StringPiece& word, const Range& range, bool isRtl) {
    mKey.resize(mPaintKeySize);
    appendBytes(&mKey, range.getStart());
    appendBytes(&mKey, range.getEnd());
    appendBytes(&mKey, isRtl);
    mKey.append(reinterpret_cast<const char*>(word.data()), word.size() * sizeof(uint16_t));
    return mKey;
}

std::shared_ptr<const LayoutPiece> PieceShaper::shape(const U16StringPiece& word,
                                                      const Range& range, bool isRtl) {
    if (word.size() > LayoutCache::kMaxWordLength) {
        return std::make_shared<const LayoutPiece>(shapeAnew(word, range, isRtl));
    }
    LayoutCache& cache = LayoutCache::shared();
    const std::string_view key = keyOf(word, range, isRtl);
    if (auto known = cache.find(key)) return known;
    auto piece = std::make_shared<const LayoutPiece>(shapeAnew(word, range, isRtl));
    cache.insert(mPaint.font->getId(), key, piece);
    return piece;
}

LayoutPiece PieceShaper::shapeAnew(const U16StringPiece& word, const Range& range, bool isRtl) {
    LayoutPiece piece;
    piece.advances.resize(range.getLength());
    const U16StringPiece text = word.substr(range);
    std::vector<FontCollection::Run> items =
        mPaint.font->itemize(text, mPaint.fontStyle, mPaint.localeListId, mPaint.familyVariant);
    if (isRtl) std::reverse(items.begin(), items.end());

    for (const FontCollection::Run& item : items) {
        if (!item.fakedFont.font->typeface()) continue;
        const U16StringPiece itemText(text.data(), static_cast<size_t>(item.end));
        auto position = static_cast<uint32_t>(item.start);
        while (position < itemText.size()) {
            const uint32_t start = position;
            const hb_script_t script = nextScriptRun(itemText, &position);
            const Range run(range.getStart() + start, range.getStart() + position);
            shapeScriptRun(word, range.getStart(), run, script, isRtl, item.fakedFont, &piece);
        }
    }
    return piece;
}

PieceShaper::Shaped PieceShaper::shapeInto(const U16StringPiece& word, const Range& run,
                                           hb_script_t script, bool isRtl, ScaledFont& font) {
    hb_buffer_t* buffer = mBuffer.get();
    hb_buffer_clear_contents(buffer);
    hb_buffer_set_script(buffer, script);
    hb_buffer_set_direction(buffer, isRtl ? HB_DIRECTION_RTL : HB_DIRECTION_LTR);
    if (!mLocales.empty()) hb_buffer_set_language(buffer, mLocales.languageFor(script));
    const portable::AllocationWatch watch;
    hb_buffer_add_utf16(buffer, word.data(), static_cast<int>(word.size()), run.getStart(),
                        static_cast<int>(run.getLength()));
    const bool shaped = hb_shape_full(font.hbFont.get(), buffer, mFeatures.data(),
                                      static_cast<unsigned>(mFeatures.size()), kShapers);
    if (font.outOfMemory || watch.failed()) return Shaped::kOutOfMemory;
    return shaped && hb_buffer_allocation_successful(buffer) ? Shaped::kWhole : Shaped::kGivenUp;
}

void PieceShaper::shapeScriptRun(const U16StringPiece& word, uint32_t pieceStart, const Range& run,
                                 hb_script_t script, bool isRtl, const FakedFont& fakedFont,
                                 LayoutPiece* out) {
    Shaped shaped = shapeInto(word, run, script, isRtl, scaledFont(fakedFont));
    if (shaped != Shaped::kWhole) {
        // Once more with nothing of what HarfBuzz has kept: memory may have run out without a
        // trace.
        mFonts.erase(fakedFont.font);
        fakedFont.font->file()->discardFace();
        shaped = shapeInto(word, run, script, isRtl, scaledFont(fakedFont));
    }
    if (shaped == Shaped::kOutOfMemory) throw std::bad_alloc();
    // A font whose rules grow the text beyond all bounds: the run stays blank.
    if (shaped == Shaped::kGivenUp) return;

    const double letterSpace = allowsLetterSpacing(script)
                                   ? double{mPaint.letterSpacing} * mPaint.size * mPaint.scaleX
                                   : 0.0;
    const auto bounded =
        static_cast<float>(std::clamp(letterSpace, -double{kMaxPixels}, double{kMaxPixels}));
    placeGlyphs(pieceStart, bounded, scaledFont(fakedFont), out);
}

void PieceShaper::placeGlyphs(uint32_t pieceStart, float letterSpace, const ScaledFont& font,
                              LayoutPiece* out) {
    unsigned count = 0;
    const hb_glyph_info_t* infos = hb_buffer_get_glyph_infos(mBuffer.get(), &count);
    const hb_glyph_position_t* positions = hb_buffer_get_glyph_positions(mBuffer.get(), nullptr);
    if (count == 0) return;

    const float halfSpace = letterSpace * 0.5f;
    float x = out->advance;
    const auto advanceOf = [&](unsigned glyph) -> float& {
        return out->advances[infos[glyph].cluster - pieceStart];
    };

    advanceOf(0) += halfSpace;
    x += halfSpace;
    for (unsigned i = 0; i < count; i++) {
        if (i > 0 && infos[i - 1].cluster != infos[i].cluster) {
            advanceOf(i - 1) += halfSpace;
            advanceOf(i) += halfSpace;
            x += letterSpace;
        }
        const float yOffset = -toPixels(positions[i].y_offset);
        const float xOffset = toPixels(positions[i].x_offset) + yOffset * mPaint.skewX;
        out->glyphs.emplace_back(font.faked, infos[i].codepoint, x + xOffset, yOffset);

        MinikinRect bounds = font.glyphBounds(infos[i].codepoint);
        bounds.offset(x + xOffset, yOffset);
        out->bounds.join(bounds);

        const float xAdvance = toPixels(positions[i].x_advance);
        advanceOf(i) += xAdvance;
        x += xAdvance;
    }
    advanceOf(count - 1) += halfSpace;
    out->advance = x + halfSpace;
}

}  // namespace minikin
