#include "SkTextBlob.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace {

SkRect everything() {
    constexpr float kMax = std::numeric_limits<float>::max();
    return SkRect::MakeLTRB(-kMax, -kMax, kMax, kMax);
}

SkRect unite(const SkRect& a, const SkRect& b) {
    return SkRect::MakeLTRB(std::min(a.fLeft, b.fLeft), std::min(a.fTop, b.fTop),
                            std::max(a.fRight, b.fRight), std::max(a.fBottom, b.fBottom));
}

}  // namespace

SkTextBlob::SkTextBlob(std::vector<Run> runs, const SkRect& bounds)
    : fRuns(std::move(runs)), fBounds(bounds) {}

const SkTextBlobBuilder::RunBuffer& SkTextBlobBuilder::allocRunPos(const SkFont& font, int count,
                                                                   const SkRect* bounds) {
    fCurrent = {nullptr, nullptr};
    if (count < 1) return fCurrent;

    SkTextBlob::Run run;
    run.font = font;
    run.count = count;
    run.glyphs = std::make_unique<SkGlyphID[]>(count);
    run.positions = std::make_unique<SkScalar[]>(2 * static_cast<size_t>(count));
    const SkRect runBounds = bounds ? *bounds : everything();
    fBounds = fRuns.empty() ? runBounds : unite(fBounds, runBounds);
    fRuns.push_back(std::move(run));
    fCurrent = {fRuns.back().glyphs.get(), fRuns.back().positions.get()};
    return fCurrent;
}

sk_sp<SkTextBlob> SkTextBlobBuilder::make() {
    fCurrent = {nullptr, nullptr};
    if (fRuns.empty()) return nullptr;
    // An exception leaves the builder as it was: the runs move in the blob's constructor.
    sk_sp<SkTextBlob> blob(new SkTextBlob(std::move(fRuns), fBounds));
    fRuns.clear();
    return blob;
}
