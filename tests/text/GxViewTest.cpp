#include "text/GxView.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/LogCapture.h"

namespace GxFontEffect {
namespace {

TEST(GxView, StartsEmptyWithoutGravity) {
    const GxView view;
    EXPECT_EQ(view.GetWidth(), 0);
    EXPECT_EQ(view.GetBitmapHeight(), 0);
    EXPECT_EQ(view.gravity, 0xFFFFFFFFu) << "none of the values, which places lines as fill does";
}

TEST(GxView, NegativeSizesAreRefusedWithALogLine) {
    GxView view;
    EXPECT_TRUE(view.SetSize(3, 0));
    EXPECT_TRUE(view.SetBitmapWidth(0));
    EXPECT_TRUE(view.SetBitmapHeight(5));
    gxtest::LogCapture log;
    EXPECT_FALSE(view.SetSize(-1, 4));
    EXPECT_FALSE(view.SetSize(4, -1));
    EXPECT_FALSE(view.SetBitmapWidth(-1));
    EXPECT_FALSE(view.SetBitmapHeight(INT32_MIN));
    EXPECT_EQ(view.GetWidth(), 3);
    EXPECT_EQ(view.GetDrawingBitmapSize()->bitmapWidth, 0);
    EXPECT_EQ(view.GetDrawingBitmapSize()->bitmapHeight, 5);
    EXPECT_THAT(log.texts(),
                testing::ElementsAre("SetSize() - size invalid", "SetSize() - size invalid",
                                     "SetBitmapWidht() - width[-1] is invalid",
                                     "SetBitmapHeight() - height[-2147483648] is invalid"));
    EXPECT_EQ(log.lines()[0].priority, 6);
    EXPECT_EQ(log.lines()[0].tag, "GxView");
}

}  // namespace
}  // namespace GxFontEffect
