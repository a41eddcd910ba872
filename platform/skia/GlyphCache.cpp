#include "skia/GlyphCache.h"

#include <bit>
#include <iterator>
#include <new>

namespace portable {

namespace {

std::shared_ptr<const Glyph> makeGlyph(const SkTypeface& typeface, const GlyphSettings& settings,
                                       SkGlyphID id, unsigned phase, bool withCoverage) {
    auto glyph = std::make_shared<Glyph>();
    const GlyphPlacement placement = {1, phase * 0.25, 0};
    GlyphScaler scaler(typeface.face(), settings);
    glyph->measuredOnly = !withCoverage;
    if (!scaler.load(id)) return glyph;
    glyph->advance = scaler.advance();
    glyph->kind = scaler.kind();
    glyph->bounds = scaler.bounds(placement);
    const SkIRect& box = glyph->bounds;
    const size_t pixels =
        static_cast<size_t>(box.fRight - box.fLeft) * static_cast<size_t>(box.fBottom - box.fTop);
    if (!withCoverage || pixels == 0 || pixels > GlyphCache::kMaxMaskPixels) return glyph;
    glyph->coverage.resize(pixels);
    scaler.render(placement, box, glyph->coverage.data());
    return glyph;
}

// Shared by all failures, so that failing needs no memory.
const std::shared_ptr<const Glyph>& blankGlyph() {
    static const Glyph blank;
    static const std::shared_ptr<const Glyph> pointer(std::shared_ptr<const Glyph>(), &blank);
    return pointer;
}

}  // namespace

GlyphCache& GlyphCache::shared() {
    // Never destroyed: typefaces may outlive every static object.
    static GlyphCache& instance = *new GlyphCache;
    return instance;
}

size_t GlyphCache::KeyHash::operator()(const Key& key) const {
    uint64_t hash = 0;
    for (const uint64_t part :
         {uint64_t{key.typeface} << 32 | key.size, uint64_t{key.scaleX} << 32 | key.skewX,
          uint64_t{key.flags} << 32 | uint64_t{key.glyph} << 16 | key.phase}) {
        // The odd multiplier is 2^64 divided by the golden ratio.
        hash = (hash ^ part) * 0x9E3779B97F4A7C15u;
        hash ^= hash >> 32;
    }
    return hash;
}

size_t GlyphCache::cost(const Glyph& glyph) {
    // List and table nodes and the shared pointer's block, about.
    constexpr size_t kBookkeeping = 128;
    return sizeof(Entry) + sizeof(Glyph) + kBookkeeping + glyph.coverage.capacity();
}

std::shared_ptr<const Glyph> GlyphCache::measure(const SkTypeface& typeface,
                                                 const GlyphSettings& settings, SkGlyphID glyph) {
    return this->get(typeface, settings, glyph, 0, false);
}

std::shared_ptr<const Glyph> GlyphCache::draw(const SkTypeface& typeface,
                                              const GlyphSettings& settings, SkGlyphID glyph,
                                              unsigned phase) {
    return this->get(typeface, settings, glyph, phase, true);
}

std::shared_ptr<const Glyph> GlyphCache::get(const SkTypeface& typeface,
                                             const GlyphSettings& settings, SkGlyphID glyph,
                                             unsigned phase, bool withCoverage) {
    if (!settings.drawable()) return blankGlyph();
    const Key key = {typeface.uniqueID(),
                     std::bit_cast<uint32_t>(settings.size),
                     std::bit_cast<uint32_t>(settings.scaleX),
                     std::bit_cast<uint32_t>(settings.skewX),
                     settings.flags(),
                     glyph,
                     static_cast<uint16_t>(phase)};
    if (auto found = this->find(key, withCoverage)) return found;
    // Not under the lock: other threads go on while this glyph is made, at worst it is made twice.
    std::shared_ptr<const Glyph> made;
    try {
        made = makeGlyph(typeface, settings, glyph, phase, withCoverage);
        this->insert(key, made);
    } catch (const std::bad_alloc&) {
        if (!made) return blankGlyph();
    }
    return made;
}

std::shared_ptr<const Glyph> GlyphCache::find(const Key& key, bool withCoverage) {
    const std::lock_guard<std::mutex> lock(fMutex);
    const auto found = fIndex.find(key);
    if (found == fIndex.end()) return nullptr;
    const Entries::iterator entry = found->second;
    if (withCoverage && entry->glyph->measuredOnly) return nullptr;
    fEntries.splice(fEntries.begin(), fEntries, entry);
    return entry->glyph;
}

void GlyphCache::insert(const Key& key, const std::shared_ptr<const Glyph>& glyph) {
    const std::lock_guard<std::mutex> lock(fMutex);
    if (const auto found = fIndex.find(key); found != fIndex.end()) this->erase(found->second);
    fEntries.push_front({key, glyph});
    try {
        fIndex.emplace(key, fEntries.begin());
    } catch (...) {
        fEntries.pop_front();
        throw;
    }
    fBytes += cost(*glyph);
    while (fBytes > kMaxBytes) this->erase(std::prev(fEntries.end()));
}

void GlyphCache::erase(Entries::iterator entry) {
    fBytes -= cost(*entry->glyph);
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

size_t GlyphCache::bytes() const {
    const std::lock_guard<std::mutex> lock(fMutex);
    return fBytes;
}

}  // namespace portable
