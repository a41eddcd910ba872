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

#include "SkColor.h"
#include "SkTypeface.h"
#include "SkTypes.h"
#include "skia/GlyphScaler.h"
#include "skia/GlyphSettings.h"

namespace portable {

// Masks are drawn in blocks of so many pixels, the last of a row reading beyond it.
constexpr size_t kMaskBlock = 16;

// Of a glyph at one size, at a whole-pixel position.
struct GlyphMetrics {
    float advance = 0;
    SkIRect bounds = SkIRect::MakeEmpty();
};

// A glyph to be put onto a bitmap, at one size and subpixel phase.
struct GlyphMask {
    SkIRect bounds = SkIRect::MakeEmpty();
    MaskKind kind = MaskKind::kGrey;
    // Of bounds, rows packed, kMaskBlock zeros behind the last; grey coverage has been through the
    // gamma table. Empty for blank glyphs and for those larger than GlyphCache::kMaxMaskPixels.
    std::vector<uint8_t> coverage;
};

// A colour glyph likewise.
struct GlyphColors {
    bool isColored = false;  // else it is drawn by its mask
    SkIRect bounds = SkIRect::MakeEmpty();
    // Premultiplied R, G, B, A of bounds, rows packed. Empty as masks are.
    std::vector<uint8_t> pixels;
    // Whether another foreground may give other pixels.
    bool usesForeground = false;
    SkColor foreground = 0;
};

// Process-wide; used from any thread. What was used longest ago goes first when it is full.
class GlyphCache {
public:
    // All that is kept, masks and their bookkeeping together.
    static constexpr size_t kMaxBytes = size_t{8} << 20;
    // Larger masks are drawn piece by piece and not kept.
    static constexpr size_t kMaxMaskPixels = size_t{1} << 18;

    static GlyphCache& shared();

    // Fills out[0, count). Glyphs that cannot be loaded measure 0. With `drawnNext` their outlines
    // are kept for draw(), so that they are not loaded a second time. Throws std::bad_alloc.
    void measure(const SkTypeface& typeface, const GlyphSettings& settings,
                 const SkGlyphID glyphs[], int count, bool drawnNext, GlyphMetrics out[]);
    // Phase is the horizontal position inside the pixel, in quarters; gammaLevel as of
    // portable::gammaLevel. Never null; blank when the glyph cannot be loaded. Throws
    // std::bad_alloc.
    std::shared_ptr<const GlyphMask> draw(const SkTypeface& typeface, const GlyphSettings& settings,
                                          SkGlyphID glyph, unsigned phase, unsigned gammaLevel);
    // Foreground is the colour of the text, opaque. Never null; throws std::bad_alloc.
    std::shared_ptr<const GlyphColors> drawColors(const SkTypeface& typeface,
                                                  const GlyphSettings& settings, SkGlyphID glyph,
                                                  unsigned phase, SkColor foreground);
    // Drops what belongs to a typeface that is gone.
    void forget(SkFontID typeface);
    void clear();

    size_t bytes() const;

private:
    struct Key {
        Key(const SkTypeface& face, const GlyphSettings& settings, SkGlyphID id);
        bool operator==(const Key&) const = default;

        SkFontID typeface;
        uint32_t size;  // bits of the float, as below
        uint32_t scaleX;
        uint32_t skewX;
        uint32_t flags;
        SkGlyphID glyph;
        // kMetrics, or the mask at one phase for one gamma level, or kColors at one.
        uint16_t form;
        SkColor foreground = 0;  // of colours that are not the first of their glyph
    };
    static constexpr uint16_t kMetrics = 0xFFFF;
    static constexpr uint16_t kColors = 0x4000;

    struct KeyHash {
        size_t operator()(const Key& key) const;
    };
    struct Entry {
        explicit Entry(const Key& of) : key(of) {}

        Key key;
        // One of metrics, mask and colours; beside metrics what is to be drawn, until it was.
        GlyphMetrics metrics;
        std::shared_ptr<const GlyphOutline> outline;
        std::shared_ptr<const GlyphPicture> picture;
        std::shared_ptr<const GlyphMask> mask;
        std::shared_ptr<const GlyphColors> colors;
    };
    using Entries = std::list<Entry>;

    static size_t cost(const Entry& entry);
    // These three are called with the lock held. find() gives null when there is none, and makes
    // what it finds the most recently used.
    Entry* find(const Key& key);
    void insert(Entry entry);
    void erase(Entries::iterator entry);

    mutable std::mutex fMutex;
    Entries fEntries;  // most recently used first
    std::unordered_map<Key, Entries::iterator, KeyHash> fIndex;
    size_t fBytes = 0;
};

}  // namespace portable
