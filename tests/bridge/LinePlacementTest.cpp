#include "bridge/LinePlacement.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <tuple>
#include <vector>

namespace GxFontEffect {
namespace {

constexpr uint32_t kNone = 0x00, kCenter = 0x10, kTop = 0x30, kBottom = 0x50, kFill = 0x70;

// Lines of 20 pixels, the first baseline at 15 and each one 20 further down; line i covers the
// units 10 i to 10 i + 9, the last of them not visible. Fails the test when asked for a line that
// is not there.
class EvenLines : public LineMetrics {
public:
    explicit EvenLines(int32_t count) : count_(count) {}

    int32_t Baseline(int32_t line) override { return known(line) ? 15 + 20 * line : 0; }
    int32_t Bottom(int32_t line) override { return known(line) ? 20 * (line + 1) : 0; }
    int32_t Ascent(int32_t line) override { return known(line) ? -13 : 0; }
    int32_t Descent(int32_t line) override { return known(line) ? 4 : 0; }
    int32_t Start(int32_t line) override { return known(line) ? 10 * line : 0; }
    int32_t VisibleEnd(int32_t line) override { return known(line) ? 10 * line + 9 : 0; }
    float Left(int32_t line) override { return known(line) ? left : 0; }
    float Width(int32_t line) override { return known(line) ? width : 0; }

    float left = 2.75f;
    float width = 60.9f;

private:
    bool known(int32_t line) const {
        EXPECT_GE(line, 0);
        EXPECT_LT(line, count_);
        return line >= 0 && line < count_;
    }
    int32_t count_;
};

GxView makeView(uint32_t gravity, int lineLimit, int maxLines, int height = 200) {
    GxView view;
    view.SetSize(300, height);
    view.SetPadding(7, 10, 5, 30);
    view.gravity = gravity;
    view.lineLimit = lineLimit;
    view.maxLines = maxLines;
    return view;
}

TEST(LinePlacementTest, ChoosesTheShownLines) {
    struct Case {
        int lines, limit, maxLines;
        uint32_t gravity;
        int first, end;
    };
    const Case cases[] = {
        // lines, limit, maximum, gravity: first, end
        {5, 0, 3, kTop, 0, 3},        {5, 0, 3, kBottom, 2, 5},
        {5, 0, 3, kCenter, 0, 3},     {5, 2, 3, kTop, 0, 2},
        {5, 4, 3, kTop, 0, 4},        {5, 9, 3, kBottom, 0, 5},
        {5, 0, 9, kBottom, 0, 5},     {5, -1, 3, kNone, 0, 3},
        {5, 0, 0, kTop, 0, 0},        {5, 0, -1, kTop, 0, 0},
        {5, -7, -7, kTop, 0, 0},      {0, 3, 3, kTop, 0, 0},
        {-4, 3, 3, kTop, 0, 0},       {1, 1, 0, kBottom, 0, 1},
        {5, 0, 3, 0xFFFFFFFFu, 0, 3}, {5, 0, std::numeric_limits<int32_t>::max(), kTop, 0, 5},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.lines << " lines, limit " << c.limit << ", maximum "
                                        << c.maxLines << ", gravity " << c.gravity);
        EvenLines lines(c.lines);
        std::vector<int> starts, expected;
        for (const GxLineInfo& line :
             PlaceLines(lines, c.lines, makeView(c.gravity, c.limit, c.maxLines))) {
            starts.push_back(line.start / 10);
        }
        for (int i = c.first; i < c.end; i++) expected.push_back(i);
        EXPECT_EQ(starts, expected);
    }
}

TEST(LinePlacementTest, PlacesTheBlockByVerticalGravity) {
    // Padding: top 10, bottom 30. Two lines end at 40, five at 100.
    struct Case {
        uint32_t gravity;
        int visible, height;
        std::vector<int> y;
    };
    const Case cases[] = {
        {kTop, 2, 200, {25, 45}},
        {kNone, 2, 200, {25, 45}},
        {kCenter, 2, 200, {85, 105}},  // (160 - 40) / 2 = 60 more
        {kFill, 2, 200, {85, 105}},
        {kCenter, 2, 201, {85, 105}},  // (161 - 40) / 2 = 60
        {kCenter, 2, 80, {25, 45}},    // no free height left
        {kCenter, 2, 60, {25, 45}},
        {kBottom, 5, 200, {85, 105, 125, 145, 165}},  // 15 - 100 + 200 - 30
        {kBottom, 2, 200, {145, 165}},  // the last two, where they stand among all five
        {kBottom, 1, 60, {25}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "gravity " << c.gravity << ", " << c.visible
                                        << " of 5 lines, height " << c.height);
        EvenLines lines(5);
        std::vector<int> y;
        for (const GxLineInfo& line :
             PlaceLines(lines, 5, makeView(c.gravity, c.visible, 0, c.height))) {
            y.push_back(line.y);
        }
        EXPECT_EQ(y, c.y);
    }
}

TEST(LinePlacementTest, CutsFractionsTowardZeroAndSaturates) {
    constexpr int32_t kMost = std::numeric_limits<int32_t>::max();
    const std::tuple<float, float, int, int> cases[] = {
        // left, width: x and the box's right end, after a padding of 7
        {2.75f, 60.9f, 9, 69},
        {-2.75f, 10.5f, 5, 15},
        {1e20f, 10, kMost, kMost},
        {0, std::numeric_limits<float>::infinity(), 7, kMost},
        {std::numeric_limits<float>::quiet_NaN(), 4, 7, 11},
    };
    for (const auto& [left, width, x, right] : cases) {
        EvenLines lines(1);
        lines.left = left;
        lines.width = width;
        const std::vector<GxLineInfo> placed = PlaceLines(lines, 1, makeView(kTop, 1, 0));
        ASSERT_EQ(placed.size(), 1u);
        const GxLineInfo& line = placed[0];
        EXPECT_EQ(std::tuple(line.x, line.y, line.start, line.end, line.direction),
                  std::tuple(x, 25, 0, 9, 1))
            << left;
        EXPECT_EQ(std::tuple(line.rect.left, line.rect.top, line.rect.right, line.rect.bottom),
                  std::tuple(x, 25 - 13, right, 25 + 4))
            << width;
    }
}

// Answers that no layout gives, at the ends of the range.
class ExtremeLines : public EvenLines {
public:
    using EvenLines::EvenLines;
    int32_t Baseline(int32_t line) override { return line == 0 ? kLeast : kMost; }
    int32_t Bottom(int32_t) override { return kLeast; }
    int32_t Ascent(int32_t) override { return kMost; }
    int32_t Descent(int32_t) override { return kLeast; }

    static constexpr int32_t kMost = std::numeric_limits<int32_t>::max();
    static constexpr int32_t kLeast = std::numeric_limits<int32_t>::min();
};

TEST(LinePlacementTest, NeverOverflows) {
    for (const uint32_t gravity : {kTop, kCenter, kBottom}) {
        ExtremeLines lines(3);
        GxView view = makeView(gravity, 2, 0, std::numeric_limits<int32_t>::max());
        view.SetPadding(ExtremeLines::kMost, ExtremeLines::kLeast, 0, ExtremeLines::kLeast);
        EXPECT_EQ(PlaceLines(lines, 3, view).size(), 2u);
    }
}

class FailingLines : public EvenLines {
public:
    using EvenLines::EvenLines;
    int32_t Start(int32_t line) override {
        failed_ = line == 2;
        return EvenLines::Start(line);
    }
    bool Failed() const override { return failed_; }

private:
    bool failed_ = false;
};

TEST(LinePlacementTest, StopsAtTheLineThatFails) {
    FailingLines lines(1000);
    EXPECT_LE(PlaceLines(lines, 1000, makeView(kTop, 1000, 0)).size(), 3u);
}

}  // namespace
}  // namespace GxFontEffect
