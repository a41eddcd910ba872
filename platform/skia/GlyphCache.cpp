#include "skia/GlyphCache.h"

#include <algorithm>
#include <bit>
#include <iterator>
#include <utility>

#include "NeverDestroyed.h"
#include "skia/TextGamma.h"

namespace portable {

namespace {

// Source is a GlyphScaler with the glyph loaded or a GlyphOutline.
template <typename Source>
std::shared_ptr<const GlyphMask> makeMask(Source& source, unsigned phase, unsigned gammaLevel) {
    const GlyphPlacement placement = {1, phase * 0.25, 0};
    auto mask = std::make_shared<GlyphMask>();
    mask->kind = source.kind();
    mask->bounds = source.bounds(placement);
    const size_t pixels = pixelCount(mask->bounds);
    if (pixels == 0 || pixels > GlyphCache::kMaxMaskPixels) return mask;
    mask->coverage.resize(pixels + kMaskBlock);
    source.render(placement, mask->bounds, mask->coverage.data());
    if (mask->kind == MaskKind::kGrey) {
        applyGamma(gammaLevel, mask->coverage.data(), pixels);
    }
    return mask;
}

std::shared_ptr<const GlyphMask> loadMask(const SkTypeface& typeface, const GlyphSettings& settings,
                                          SkGlyphID glyph, unsigned phase, unsigned gammaLevel) {
    GlyphScaler scaler(typeface.face(), settings);
    if (!scaler.load(glyph)) return std::make_shared<GlyphMask>();
    return makeMask(scaler, phase, gammaLevel);
}

// Their alpha: what the mask of a colour glyph is.
std::shared_ptr<const GlyphMask> maskOf(const GlyphColors& colors) {
    auto mask = std::make_shared<GlyphMask>();
    mask->kind = MaskKind::kColor;
    mask->bounds = colors.bounds;
    const size_t pixels = pixelCount(colors.bounds);
    mask->coverage.resize(pixels + kMaskBlock);
    for (size_t i = 0; i < pixels; ++i) mask->coverage[i] = colors.pixels[i * kColorBytes + 3];
    return mask;
}

// Room for the pixels of a colour glyph. False when there is nothing to draw, or too much.
bool prepareColors(const SkIRect& bounds, GlyphColors* colors) {
    colors->isColored = true;
    colors->bounds = bounds;
    const size_t pixels = pixelCount(bounds);
    if (pixels == 0 || pixels > GlyphCache::kMaxMaskPixels) return false;
    colors->pixels.resize(pixels * kColorBytes);
    return true;
}

std::shared_ptr<const GlyphColors> makeColors(const GlyphPicture& picture, unsigned phase) {
    const GlyphPlacement placement = {1, phase * 0.25, 0};
    auto colors = std::make_shared<GlyphColors>();
    if (prepareColors(picture.bounds(placement), colors.get())) {
        picture.renderColors(placement, colors->bounds, colors->pixels.data());
    }
    return colors;
}

std::shared_ptr<const GlyphColors> loadColors(const SkTypeface& typeface,
                                              const GlyphSettings& settings, SkGlyphID glyph,
                                              unsigned phase, SkColor foreground) {
    const GlyphPlacement placement = {1, phase * 0.25, 0};
    auto colors = std::make_shared<GlyphColors>();
    colors->foreground = foreground;
    GlyphScaler scaler(typeface.face(), settings);
    if (!scaler.load(glyph) || scaler.kind() != MaskKind::kColor) return colors;
    if (prepareColors(scaler.bounds(placement), colors.get())) {
        colors->usesForeground =
            scaler.renderColors(placement, colors->bounds, foreground, colors->pixels.data());
    }
    return colors;
}

}  // namespace

GlyphCache& GlyphCache::shared() {
    return neverDestroyed<GlyphCache>();
}

GlyphCache::Key::Key(const SkTypeface& face, const GlyphSettings& settings, SkGlyphID id)
    : typeface(face.uniqueID()),
      size(std::bit_cast<uint32_t>(settings.size)),
      scaleX(std::bit_cast<uint32_t>(settings.scaleX)),
      skewX(std::bit_cast<uint32_t>(settings.skewX)),
      flags(settings.flags()),
      glyph(id),
      form(kMetrics) {}

size_t GlyphCache::KeyHash::operator()(const Key& key) const {
    uint64_t hash = 0;
    for (const uint64_t part :
         {uint64_t{key.typeface} << 32 | key.size, uint64_t{key.scaleX} << 32 | key.skewX,
          uint64_t{key.flags ^ key.foreground} << 32 | uint64_t{key.glyph} << 16 | key.form}) {
        // The odd multiplier is 2^64 divided by the golden ratio.
        hash = (hash ^ part) * 0x9E3779B97F4A7C15u;
        hash ^= hash >> 32;
    }
    return hash;
}

size_t GlyphCache::cost(const Entry& entry) {
    // List and table nodes and the shared pointers' blocks, about.
    constexpr size_t kBookkeeping = 128;
    size_t bytes = sizeof(Entry) + kBookkeeping;
    if (entry.outline) bytes += entry.outline->bytes();
    if (entry.picture) bytes += entry.picture->bytes();
    if (entry.colors) bytes += sizeof(GlyphColors) + entry.colors->pixels.capacity();
    if (entry.mask) bytes += sizeof(GlyphMask) + entry.mask->coverage.capacity();
    return bytes;
}

// Glyphs are made without the lock: other threads go on meanwhile, at worst one is made twice.
void GlyphCache::measure(const SkTypeface& typeface, const GlyphSettings& settings,
                         const SkGlyphID glyphs[], int count, bool drawnNext, GlyphMetrics out[]) {
    if (!settings.drawable()) {
        std::fill_n(out, count, GlyphMetrics());
        return;
    }
    Key key(typeface, settings, 0);
    std::unique_lock<std::mutex> lock(fMutex);
    for (int i = 0; i < count; ++i) {
        key.glyph = glyphs[i];
        if (const Entry* known = this->find(key)) {
            out[i] = known->metrics;
            continue;
        }
        lock.unlock();
        Entry made(key);
        {
            GlyphScaler scaler(typeface.face(), settings);
            if (scaler.load(glyphs[i])) {
                made.metrics = {scaler.advance(), scaler.bounds(GlyphPlacement())};
                const size_t pixels = pixelCount(made.metrics.bounds);
                if (drawnNext && pixels > 0 && pixels <= kMaxMaskPixels) {
                    made.outline = scaler.copyOutline();
                    if (settings.colorGraphs) made.picture = scaler.copyPicture();
                }
            }
        }
        out[i] = made.metrics;
        lock.lock();
        this->insert(std::move(made));
    }
}

std::shared_ptr<const GlyphMask> GlyphCache::draw(const SkTypeface& typeface,
                                                  const GlyphSettings& settings, SkGlyphID glyph,
                                                  unsigned phase, unsigned gammaLevel) {
    if (!settings.drawable()) return std::make_shared<GlyphMask>();
    Key key(typeface, settings, glyph);
    const Key metricsKey = key;
    key.form = static_cast<uint16_t>(phase << 8 | gammaLevel);
    Key colorKey = key;
    colorKey.form = static_cast<uint16_t>(kColors | phase << 8);
    std::shared_ptr<const GlyphOutline> outline;
    std::shared_ptr<const GlyphColors> colors;
    {
        const std::lock_guard<std::mutex> lock(fMutex);
        if (const Entry* known = this->find(key)) return known->mask;
        if (const Entry* colored = this->find(colorKey)) colors = colored->colors;
        if (Entry* measured = this->find(metricsKey)) {
            fBytes -= cost(*measured);
            // The other phases will want it, too.
            outline = settings.subpixel ? measured->outline : std::move(measured->outline);
            fBytes += cost(*measured);
        }
    }
    Entry made(key);
    if (colors && !colors->pixels.empty()) {
        made.mask = maskOf(*colors);
    } else if (outline) {
        made.mask = makeMask(*outline, phase, gammaLevel);
    } else {
        made.mask = loadMask(typeface, settings, glyph, phase, gammaLevel);
    }
    const std::lock_guard<std::mutex> lock(fMutex);
    this->insert(made);
    return made.mask;
}

std::shared_ptr<const GlyphColors> GlyphCache::drawColors(const SkTypeface& typeface,
                                                          const GlyphSettings& settings,
                                                          SkGlyphID glyph, unsigned phase,
                                                          SkColor foreground) {
    if (!settings.drawable()) return std::make_shared<GlyphColors>();
    Key key(typeface, settings, glyph);
    const Key metricsKey = key;
    key.form = static_cast<uint16_t>(kColors | phase << 8);
    foreground |= SK_ColorBLACK;
    std::shared_ptr<const GlyphPicture> picture;
    {
        const std::lock_guard<std::mutex> lock(fMutex);
        const auto fits = [foreground](const Entry* known) {
            return known &&
                   (!known->colors->usesForeground || known->colors->foreground == foreground);
        };
        const Entry* known = this->find(key);
        if (fits(known)) return known->colors;
        if (known) {
            key.foreground = foreground;
            known = this->find(key);
            if (fits(known)) return known->colors;
        }
        if (Entry* measured = this->find(metricsKey)) {
            fBytes -= cost(*measured);
            picture = settings.subpixel ? measured->picture : std::move(measured->picture);
            fBytes += cost(*measured);
        }
    }
    Entry made(key);
    made.colors = picture ? makeColors(*picture, phase)
                          : loadColors(typeface, settings, glyph, phase, foreground);
    const std::lock_guard<std::mutex> lock(fMutex);
    this->insert(made);
    return made.colors;
}

GlyphCache::Entry* GlyphCache::find(const Key& key) {
    const auto found = fIndex.find(key);
    if (found == fIndex.end()) return nullptr;
    fEntries.splice(fEntries.begin(), fEntries, found->second);
    return &*found->second;
}

void GlyphCache::insert(Entry entry) {
    if (const auto found = fIndex.find(entry.key); found != fIndex.end()) {
        this->erase(found->second);
    }
    fEntries.push_front(std::move(entry));
    try {
        fIndex.emplace(fEntries.front().key, fEntries.begin());
    } catch (...) {
        fEntries.pop_front();
        throw;
    }
    fBytes += cost(fEntries.front());
    while (fBytes > kMaxBytes) this->erase(std::prev(fEntries.end()));
}

void GlyphCache::erase(Entries::iterator entry) {
    fBytes -= cost(*entry);
    fIndex.erase(entry->key);
    fEntries.erase(entry);
}

void GlyphCache::forget(SkFontID typeface) {
    const std::lock_guard<std::mutex> lock(fMutex);
    for (auto entry = fEntries.begin(); entry != fEntries.end();) {
        const auto current = entry++;
        if (current->key.typeface == typeface) this->erase(current);
    }
}

void GlyphCache::clear() {
    const std::lock_guard<std::mutex> lock(fMutex);
    fIndex.clear();
    fEntries.clear();
    fBytes = 0;
}

size_t GlyphCache::bytes() const {
    const std::lock_guard<std::mutex> lock(fMutex);
    return fBytes;
}

}  // namespace portable
