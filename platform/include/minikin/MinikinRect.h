// A rectangle in pixels, y growing downwards.
#pragma once

#include <algorithm>

namespace minikin {

struct MinikinRect {
    MinikinRect() = default;
    MinikinRect(float left, float top, float right, float bottom)
        : mLeft(left), mTop(top), mRight(right), mBottom(bottom) {}

    bool operator==(const MinikinRect& other) const {
        return mLeft == other.mLeft && mTop == other.mTop && mRight == other.mRight &&
               mBottom == other.mBottom;
    }

    bool isEmpty() const { return mLeft == mRight || mTop == mBottom; }
    void set(const MinikinRect& other) { *this = other; }
    void setEmpty() { *this = MinikinRect(); }

    void offset(float dx, float dy) {
        mLeft += dx;
        mTop += dy;
        mRight += dx;
        mBottom += dy;
    }

    // Union. An empty rectangle is replaced by `other`, even by an empty one: joining blanks one
    // after another therefore ends at the last of them.
    void join(const MinikinRect& other) {
        if (isEmpty()) {
            set(other);
        } else if (!other.isEmpty()) {
            mLeft = std::min(mLeft, other.mLeft);
            mTop = std::min(mTop, other.mTop);
            mRight = std::max(mRight, other.mRight);
            mBottom = std::max(mBottom, other.mBottom);
        }
    }

    float mLeft = 0.0f;
    float mTop = 0.0f;
    float mRight = 0.0f;
    float mBottom = 0.0f;
};

}  // namespace minikin
