// Lines of one text behind long contexts, against layouts in the whole context.
#include "minikin/MeasuredText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <string>

#include "TextLayout.h"
#include "support/Fonts.h"
#include "support/Random.h"
#include "support/TextMaker.h"

namespace minikin {
namespace {

using gxtest::Random;
using gxtest::TextMaker;

U16StringPiece piece(const std::u16string& text) {
    return {gxtest::unitsOf(text), text.size()};
}

struct Line {
    uint32_t contextStart;
    Range range;
    Bidi bidi;
};

// Some line without a line break in it, with the context that a text object gives it.
std::optional<Line> someLine(const std::u16string& text, Random& random) {
    const auto size = static_cast<int>(text.size());
    const auto start = static_cast<size_t>(random.between(1, size - 1));
    const size_t before = text.find_last_of(u"\n\r", start);
    const size_t after = std::min(text.find_first_of(u"\n\r", start), text.size());
    const size_t end = std::min(start + static_cast<size_t>(random.between(1, 80)), after);
    if (end <= start) return std::nullopt;
    return Line{before == std::u16string::npos ? 0 : static_cast<uint32_t>(before),
                Range(static_cast<uint32_t>(start), static_cast<uint32_t>(end)),
                random.oneIn(2) ? Bidi::DEFAULT_RTL : Bidi::DEFAULT_LTR};
}

// Else the time for all lines is quadratic in the text.
TEST(MeasuredText, ContextsStayShort) {
    for (const char16_t* repeated :
         {u"abc ", u"\u0628\u0629 \u0661 ", u"\u05D0 abc (12) ", u"\u202Babc \u05D0\u202C",
          u"\u202Bab \u05D0", u"\u2067ab \u05D0", u"\u2068(ab \u05D0", u"\u05D0(a["}) {
        std::u16string text;
        while (text.size() < 100000) text += repeated;
        MeasuredText measured(piece(text));
        for (uint32_t start = 2000; start + 40 < text.size(); start += 999) {
            const auto context =
                measured.shortContext(0, Range(start, start + 40), Bidi::DEFAULT_LTR);
            ASSERT_TRUE(context) << start;
            ASSERT_LT(context->text.size(), 1500u) << start;
        }
    }
}

// With the text at hand, and with texts that change in one place of memory from call to call.
TEST(MeasuredText, LinesAreLaidOutAsInTheirWholeContext) {
    Random random(12);
    GX_TRACE_SEED(random);
    const auto typeface =
        gxtest::typefaceOf({gxtest::makeFamily(gxtest::loadFont(gxtest::kDejaVuSans)),
                            gxtest::makeFamily(gxtest::loadFont(gxtest::kNotoArabic))});
    android::Paint paint;
    paint.getSkFont().setSize(20);
    const auto minikinPaint = android::MinikinUtils::prepareMinikinPaint(&paint, typeface.get());
    std::u16string buffer(3000, u' ');
    for (int round = 0; round < 60; round++) {
        const std::u16string text = round % 3 == 1 ? buffer : TextMaker(random).text(2000);
        text.copy(buffer.data(), buffer.size());
        if (round % 3 == 1) buffer[0] = random.oneIn(2) ? u'\u202E' : u'\u05D0';
        MeasuredText measured(piece(buffer));
        for (int i = 0; i < 20; i++) {
            const auto line = someLine(buffer, random);
            if (!line) continue;
            const auto start = line->range.getStart();
            const auto end = line->range.getEnd();
            const auto origin = line->contextStart;
            const Layout whole(piece(buffer).substr(Range(origin, end)),
                               Range(start - origin, end - origin), line->bidi, minikinPaint);
            for (MeasuredText* text : {&measured, static_cast<MeasuredText*>(nullptr)}) {
                const Layout layout = android::MinikinUtils::doLayout(
                    &paint, line->bidi, typeface.get(), piece(buffer).data(), buffer.size(), start,
                    end - start, origin, end - origin, text);
                ASSERT_EQ(gxtest::glyphsOf(layout), gxtest::glyphsOf(whole)) << start << " " << end;
                ASSERT_EQ(gxtest::lengthsOf(layout), gxtest::lengthsOf(whole))
                    << start << " " << end;
            }
        }
    }
}

}  // namespace
}  // namespace minikin
