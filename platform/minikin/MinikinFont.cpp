#include "minikin/MinikinFont.h"

#include <mutex>

#include "minikin/FontFile.h"

namespace minikin {

struct MinikinFont::LazyFile {
    std::mutex lock;  // not a once_flag: a first use that throws has to leave room for a second
    std::unique_ptr<FontFile> file;
};

MinikinFont::MinikinFont(int32_t uniqueId)
    : mUniqueId(uniqueId), mLazyFile(std::make_unique<LazyFile>()) {}

MinikinFont::~MinikinFont() = default;

void MinikinFont::GetHorizontalAdvances(uint16_t* glyph_ids, uint32_t count,
                                        const MinikinPaint& paint, const FontFakery& fakery,
                                        float* outAdvances) const {
    for (uint32_t i = 0; i < count; i++) {
        outAdvances[i] = GetHorizontalAdvance(glyph_ids[i], paint, fakery);
    }
}

void MinikinFont::GetAdvanceAndBounds(uint32_t glyph_id, const MinikinPaint& paint,
                                      const FontFakery& fakery, float* advance,
                                      MinikinRect* bounds) const {
    *advance = GetHorizontalAdvance(glyph_id, paint, fakery);
    GetBounds(bounds, glyph_id, paint, fakery);
}

const FontFile& MinikinFont::file() const {
    const std::lock_guard<std::mutex> guard(mLazyFile->lock);
    if (!mLazyFile->file) mLazyFile->file = std::make_unique<FontFile>(*this);
    return *mLazyFile->file;
}

}  // namespace minikin
