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

}  // namespace
}  // namespace GxFontEffect
