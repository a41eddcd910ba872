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

// Safe from any thread. A file that cannot be read acts as a font without glyphs.
class FontFile {
public:
    explicit FontFile(const MinikinFont& font);

    // In font units, with the font's axis settings; immutable, never null.
    hb_font_t* baseFont() const { return mBaseFont.get(); }
    // From the OS/2 table; regular upright without one.
    FontStyle style() const;
    // Collected from the cmap on first use.
    const SparseBitSet& coverage() const;

private:
    const HbFontUniquePtr mBaseFont;
    mutable std::mutex mCoverageLock;
    mutable std::unique_ptr<const SparseBitSet> mCoverage;
};

}  // namespace minikin
