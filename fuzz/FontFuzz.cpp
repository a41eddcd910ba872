// Font files of any kind through loading, layout and drawing. The input is a font file with its
// settings behind it.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "Drawing.h"
#include "FuzzFonts.h"
#include "SkFontMetrics.h"
#include "minikin/FontFamily.h"

using namespace gxfuzz;

extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t maxSize);

namespace {

constexpr size_t kHeader = 12;
constexpr size_t kRecord = 16;  // of a table: tag, checksum, offset, length

uint32_t readBig(const uint8_t* p, int count) {
    uint32_t value = 0;
    for (int i = 0; i < count; ++i) value = value << 8 | p[i];
    return value;
}

void writeBig(uint8_t* p, uint32_t value) {
    for (int i = 3; i >= 0; --i, value >>= 8) p[i] = static_cast<uint8_t>(value);
}

struct Table {
    uint8_t* record;
    uint32_t offset;
    uint32_t length;
};

std::vector<Table> tablesOf(uint8_t* data, size_t size) {
    std::vector<Table> tables;
    if (size < kHeader) return tables;
    const size_t count = std::min<size_t>(readBig(data + 4, 2), (size - kHeader) / kRecord);
    for (size_t i = 0; i < count; ++i) {
        uint8_t* record = data + kHeader + kRecord * i;
        const Table table = {record, readBig(record + 8, 4), readBig(record + 12, 4)};
        if (table.offset <= size && table.length <= size - table.offset) tables.push_back(table);
    }
    return tables;
}

}  // namespace

// Changes one table at a time and keeps the directory true, so that the changes reach what reads
// the tables. Sometimes any byte is changed.
extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t maxSize,
                                          unsigned seed) {
    std::minstd_rand random(seed);
    const std::vector<Table> tables = tablesOf(data, size);
    if (tables.empty() || random() % 5 == 0) return LLVMFuzzerMutate(data, size, maxSize);
    const Table& chosen = tables[random() % tables.size()];
    const size_t room = std::min<size_t>(maxSize - size, 64);
    std::vector<uint8_t> bytes(chosen.length + room);
    if (bytes.empty()) return LLVMFuzzerMutate(data, size, maxSize);
    std::copy_n(data + chosen.offset, chosen.length, bytes.begin());
    const size_t length = LLVMFuzzerMutate(bytes.data(), chosen.length, bytes.size());
    const size_t end = chosen.offset + chosen.length;
    std::memmove(data + chosen.offset + length, data + end, size - end);
    std::copy_n(bytes.begin(), length, data + chosen.offset);
    const auto growth = static_cast<uint32_t>(length) - chosen.length;
    for (const Table& table : tables) {
        if (table.offset >= end) writeBig(table.record + 8, table.offset + growth);
    }
    if (chosen.offset >= kHeader + kRecord * tables.size()) {
        writeBig(chosen.record + 12, static_cast<uint32_t>(length));
    }
    return size + growth;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDataProvider input(data, size);
    android::Paint paint = choosePaint(input);
    const std::u16string text = input.PickValueInArray(kSampleTexts);
    const int index = input.ConsumeIntegralInRange(0, 3) == 3 ? 1 : 0;
    const auto bidi = static_cast<minikin::Bidi>(input.ConsumeIntegralInRange(0, 5));
    const bool onMask = input.ConsumeBool();
    // Exactly as long as they are, where the sanitizer sees each byte beyond.
    const auto bytes = input.ConsumeRemainingBytes<uint8_t>();

    const auto family = loadFamily(bytes, index);
    if (!family) return 0;
    std::vector<std::shared_ptr<minikin::FontFamily>> families = {family, fontFamily(kLatin)};
    // Under half of the settings; a choice of its own would shift the bytes of every kept input.
    if (static_cast<int>(bidi) % 2 != 0) {
        constexpr minikin::AxisTag kWeight = 0x77676874, kWidth = 0x77647468;
        const auto varied = family->getFont(0)->typeface()->createFontWithVariation(
            {{kWeight, paint.getSkFont().getSize() * 10}, {kWidth, -1e9f}});
        if (!varied) return 0;
        std::vector<minikin::Font> fonts;
        fonts.push_back(minikin::Font::Builder(varied).build());
        families.front() = std::make_shared<minikin::FontFamily>(std::move(fonts));
    }
    const std::unique_ptr<android::Typeface> typeface(android::Typeface::createFromFamilies(
        std::move(families), android::RESOLVE_BY_FONT_TABLE, android::RESOLVE_BY_FONT_TABLE));
    SkFontMetrics metrics;
    paint.getSkFont().getMetrics(&metrics);
    layOutAndDraw(paint, *typeface, text, bidi, {0, text.size(), 0, text.size()}, onMask);
    return 0;
}
