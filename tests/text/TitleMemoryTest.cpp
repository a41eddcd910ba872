// What stays behind when text objects come and go.
#include <malloc.h>

#include <string>

#include "text/TextFixture.h"

namespace GxFontEffect {
namespace {

class Title : public TextScene {
public:
    explicit Title(int number) {
        prepare();
        text.GetEffect()->addStrokeText(2, 0xFFFFFFFF, 1, 0, GxStrokeProperty::kOutside);
        const std::wstring digits = std::to_wstring(number);
        setLines({L"First" + digits + L" Second" + digits + L" Third" + digits});
        render(60, 20);
    }
    void renderSmall() { render(200, 100); }
    void renderLarge() { render(2000, 1500); }
};

size_t heapBytes() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

TEST(TitleMemory, StaysFlatOverEverNewTitles) {
    int number = 0;
    for (; number < 2000; ++number) Title title(number);  // the caches fill
    const size_t before = heapBytes();
    if (before == 0) GTEST_SKIP() << "another allocator, that of a sanitizer, keeps no count";
    for (; number < 4000; ++number) Title title(number);
    EXPECT_LT(heapBytes(), before + (size_t{64} << 10));
}

// By themselves when other renders do without them, or when asked.
TEST(TitleMemory, PlanesThatAreKeptAreGivenBack) {
    constexpr size_t kLarge = size_t{2000} * 1500 * 4;
    Title(0).renderLarge();
    GxTextObject::ReleaseKeptPlanes();
    const size_t before = heapBytes();
    if (before == 0) GTEST_SKIP() << "another allocator, that of a sanitizer, keeps no count";
    Title(0).renderLarge();
    EXPECT_GT(heapBytes(), before + kLarge / 2);
    GxTextObject::ReleaseKeptPlanes();
    EXPECT_LT(heapBytes(), before + kLarge / 2);
    Title(0).renderLarge();
    for (int i = 0; i < 400; ++i) Title(1).renderSmall();
    EXPECT_LT(heapBytes(), before + kLarge / 2);
}

}  // namespace
}  // namespace GxFontEffect
