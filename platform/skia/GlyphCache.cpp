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
          uint64_t{key.flags} << 32 | uint64_t{key.glyph} << 16 | key.form}) {
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
        Entry made = {key, {}, nullptr, nullptr};
        {
            GlyphScaler scaler(typeface.face(), settings);
            if (scaler.load(glyphs[i])) {
                made.metrics = {scaler.advance(), scaler.bounds(GlyphPlacement())};
                const size_t pixels = pixelCount(made.metrics.bounds);
                if (drawnNext && pixels > 0 && pixels <= kMaxMaskPixels) {
                    made.outline = scaler.copyOutline();
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
    std::shared_ptr<const GlyphOutline> outline;
    {
        const std::lock_guard<std::mutex> lock(fMutex);
        if (const Entry* known = this->find(key)) return known->mask;
        if (Entry* measured = this->find(metricsKey)) {
            fBytes -= cost(*measured);
            // The other phases will want it, too.
            outline = settings.subpixel ? measured->outline : std::move(measured->outline);
            fBytes += cost(*measured);
        }
    }
    std::shared_ptr<const GlyphMask> made =
        outline ? makeMask(*outline, phase, gammaLevel)
                : loadMask(typeface, settings, glyph, phase, gammaLevel);
    const std::lock_guard<std::mutex> lock(fMutex);
    this->insert({key, {}, nullptr, made});
    return made;
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
