// UTF-16 of any kind, under any settings, in a stack of made-up fonts.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstring>
#include <map>

#include "Drawing.h"
#include "FuzzFonts.h"
#include "minikin/FontCollection.h"

using namespace gxfuzz;

namespace {

constexpr size_t kMaxUnits = 200;

// Typefaces of up to three fonts in any order and style; made once each.
const android::Typeface& chooseTypeface(FuzzedDataProvider& input) {
    static std::map<uint32_t, std::unique_ptr<android::Typeface>> known;
    const uint32_t choice = input.ConsumeIntegral<uint16_t>() & 0x7FF;
    std::unique_ptr<android::Typeface>& typeface = known[choice];
    if (!typeface) {
        std::vector<std::shared_ptr<minikin::FontFamily>> families;
        for (const uint32_t kind : {choice & 7, choice >> 3 & 7, choice >> 6 & 7}) {
            families.push_back(fontFamily(static_cast<FontKind>(kind)));
        }
        typeface.reset(android::Typeface::createFromFamilies(
            std::move(families), choice & 0x200 ? 700 : 400, (choice & 0x400) != 0));
    }
    return *typeface;
}

std::u16string takeText(FuzzedDataProvider& input) {
    const std::string bytes = input.ConsumeBytesAsString(2 * kMaxUnits);
    std::u16string text(bytes.size() / 2, u'\0');
    std::memcpy(text.data(), bytes.data(), text.size() * 2);
    return text;
}

// Four numbers that become a part once the length of the text is known.
struct PartChoice {
    int kind;
    size_t numbers[4];
};

PartChoice choosePart(FuzzedDataProvider& input) {
    PartChoice choice{input.ConsumeIntegralInRange(0, 3), {}};
    if (choice.kind == 0) return choice;
    for (size_t& number : choice.numbers) {
        number = input.ConsumeIntegral<uint8_t>();
        // Huge numbers only where any number goes.
        if (choice.kind == 3 && number > 250) number = input.ConsumeIntegral<size_t>();
    }
    return choice;
}

Part partOf(const PartChoice& choice, size_t length) {
    const auto [a, b, c, d] = choice.numbers;
    if (choice.kind == 0) return {0, length, 0, length};
    if (choice.kind == 3) return {a, b, c, d};
    Part part{0, 0, 0, length};
    if (choice.kind == 2) {
        part.contextStart = a % (length + 1);
        part.contextCount = b % (length - part.contextStart + 1);
    }
    const size_t offset = c % (part.contextCount + 1);
    part.start = part.contextStart + offset;
    part.count = d % (part.contextCount - offset + 1);
    return part;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDataProvider input(data, size);
    android::Paint paint = choosePaint(input);
    const android::Typeface& typeface = chooseTypeface(input);
    const auto bidi = static_cast<minikin::Bidi>(input.ConsumeIntegralInRange(0, 5));
    const bool onMask = input.ConsumeBool();
    const PartChoice part = choosePart(input);
    const std::u16string text = takeText(input);
    layOutAndDraw(paint, typeface, text, bidi, partOf(part, text.size()), onMask);
    return 0;
}
