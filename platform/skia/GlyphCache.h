// Remembers glyphs: repeated text costs a look-up per glyph instead of loading and filling
// outlines.
#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <vector>

#include "SkTypeface.h"
#include "SkTypes.h"
#include "skia/GlyphScaler.h"
#include "skia/GlyphSettings.h"

namespace portable {

// A glyph at one size and subpixel phase.
struct Glyph {
    float advance = 0;
    SkIRect bounds = SkIRect::MakeEmpty();
    MaskKind kind = MaskKind::kGrey;
    // Coverage of bounds, rows packed. Empty for blank glyphs, for glyphs only measured so far and
    // for those larger than GlyphCache::kMaxMaskPixels.
    std::vector<uint8_t> coverage;
    bool measuredOnly = true;
};

// Process-wide; used from any thread. What was used longest ago goes first when it is full.
class GlyphCache {
public:
    // All that is kept, masks and their bookkeeping together.
    static constexpr size_t kMaxBytes = size_t{8} << 20;
    // Larger masks are drawn piece by piece and not kept.
    static constexpr size_t kMaxMaskPixels = size_t{1} << 18;

    static GlyphCache& shared();

    // Never null. Blank with advance 0 when the glyph cannot be loaded or memory runs out.
    std::shared_ptr<const Glyph> measure(const SkTypeface& typeface, const GlyphSettings& settings,
                                         SkGlyphID glyph);
    // With coverage; phase is the horizontal position inside the pixel, in quarters.
    std::shared_ptr<const Glyph> draw(const SkTypeface& typeface, const GlyphSettings& settings,
                                      SkGlyphID glyph, unsigned phase);
    // Drops what belongs to a typeface that is gone.
    void forget(SkFontID typeface);

    size_t bytes() const;

private:
    struct Key {
        SkFontID typeface;
        uint32_t size;  // bits of the float, as below
        uint32_t scaleX;
        uint32_t skewX;
        uint32_t flags;
        SkGlyphID glyph;
        uint16_t phase;
        bool operator==(const Key&) const = default;
    };
    struct KeyHash {
        size_t operator()(const Key& key) const;
    };
    struct Entry {
        Key key;
        std::shared_ptr<const Glyph> glyph;
    };
    using Entries = std::list<Entry>;

    static size_t cost(const Glyph& glyph);
    std::shared_ptr<const Glyph> get(const SkTypeface& typeface, const GlyphSettings& settings,
                                     SkGlyphID glyph, unsigned phase, bool withCoverage);
    std::shared_ptr<const Glyph> find(const Key& key, bool withCoverage);
    void insert(const Key& key, const std::shared_ptr<const Glyph>& glyph);
    void erase(Entries::iterator entry);

    mutable std::mutex fMutex;
    Entries fEntries;  // most recently used first
    std::unordered_map<Key, Entries::iterator, KeyHash> fIndex;
    size_t fBytes = 0;
};

}  // namespace portable
