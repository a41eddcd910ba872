// Rectangles with float and with integer edges; left and top are inside, right and bottom are not.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "SkScalar.h"

struct SkIRect {
    int32_t fLeft;
    int32_t fTop;
    int32_t fRight;
    int32_t fBottom;

    static constexpr SkIRect MakeEmpty() { return {0, 0, 0, 0}; }
    static constexpr SkIRect MakeWH(int32_t w, int32_t h) { return {0, 0, w, h}; }
    static constexpr SkIRect MakeLTRB(int32_t l, int32_t t, int32_t r, int32_t b) {
        return {l, t, r, b};
    }

    bool isEmpty() const { return fLeft >= fRight || fTop >= fBottom; }

    // Becomes the common part. False, and unchanged, when there is none.
    bool intersect(const SkIRect& r) {
        const SkIRect common = {std::max(fLeft, r.fLeft), std::max(fTop, r.fTop),
                                std::min(fRight, r.fRight), std::min(fBottom, r.fBottom)};
        if (common.isEmpty()) return false;
        *this = common;
        return true;
    }

    friend bool operator==(const SkIRect& a, const SkIRect& b) {
        return a.fLeft == b.fLeft && a.fTop == b.fTop && a.fRight == b.fRight &&
               a.fBottom == b.fBottom;
    }
    friend bool operator!=(const SkIRect& a, const SkIRect& b) { return !(a == b); }
};

struct SkRect {
    SkScalar fLeft;
    SkScalar fTop;
    SkScalar fRight;
    SkScalar fBottom;

    static constexpr SkRect MakeEmpty() { return {0, 0, 0, 0}; }
    static constexpr SkRect MakeWH(SkScalar w, SkScalar h) { return {0, 0, w, h}; }
    static constexpr SkRect MakeLTRB(SkScalar l, SkScalar t, SkScalar r, SkScalar b) {
        return {l, t, r, b};
    }
    static constexpr SkRect MakeXYWH(SkScalar x, SkScalar y, SkScalar w, SkScalar h) {
        return {x, y, x + w, y + h};
    }

    SkScalar left() const { return fLeft; }
    SkScalar top() const { return fTop; }
    SkScalar right() const { return fRight; }
    SkScalar bottom() const { return fBottom; }
    SkScalar width() const { return fRight - fLeft; }
    SkScalar height() const { return fBottom - fTop; }

    // True also when an edge is NaN.
    bool isEmpty() const { return !(fLeft < fRight && fTop < fBottom); }
    bool isFinite() const {
        return std::isfinite(fLeft) && std::isfinite(fTop) && std::isfinite(fRight) &&
               std::isfinite(fBottom);
    }

    SkRect makeOffset(SkScalar dx, SkScalar dy) const {
        return {fLeft + dx, fTop + dy, fRight + dx, fBottom + dy};
    }
    // Left at or before right, top at or before bottom.
    SkRect makeSorted() const {
        return {std::min(fLeft, fRight), std::min(fTop, fBottom), std::max(fLeft, fRight),
                std::max(fTop, fBottom)};
    }

    friend bool operator==(const SkRect& a, const SkRect& b) {
        return a.fLeft == b.fLeft && a.fTop == b.fTop && a.fRight == b.fRight &&
               a.fBottom == b.fBottom;
    }
    friend bool operator!=(const SkRect& a, const SkRect& b) { return !(a == b); }
};
