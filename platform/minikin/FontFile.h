// What layout keeps of a font file: the HarfBuzz font, the style it declares and the code points it
// covers.
#pragma once

#include <memory>
#include <mutex>

#include "minikin/FontStyle.h"
#include "minikin/HbUtils.h"
#include "minikin/SparseBitSet.h"

namespace minikin {

class MinikinFont;

// Safe from any thread. A file that cannot be read acts as a font without glyphs. Throws
// std::bad_alloc.
class FontFile {
public:
    // The font is borrowed.
    explicit FontFile(const MinikinFont& font);

    // In font units, with the font's axis settings; immutable, never null.
    HbFontUniquePtr baseFont() const;
    // HarfBuzz keeps in a face what it made while memory ran out, shape plans without features and
    // tables that seem empty: the next baseFont() is of a new face.
    void discardFace() const;

    // From the OS/2 table; regular upright without one.
    FontStyle style() const;
    // Collected from the cmap on first use.
    const SparseBitSet& coverage() const;

private:
    hb_font_t* currentFont() const;

    const MinikinFont& mFont;
    mutable std::mutex mLock;
    mutable HbFontUniquePtr mBaseFont;  // null after discardFace
    mutable std::unique_ptr<const SparseBitSet> mCoverage;
};

}  // namespace minikin
