#include "support/SyntheticFont.h"

#include <algorithm>
#include <iterator>

namespace gxtest {

namespace {

void append(Bytes& out, const Bytes& more) {
    out.insert(out.end(), more.begin(), more.end());
}

// 16-bit words, high byte first; negative numbers as two's complement.
void words(Bytes& out, std::initializer_list<int> values) {
    for (const int value : values) appendBig(out, 2, static_cast<uint32_t>(value));
}

Bytes words(std::initializer_list<int> values) {
    Bytes out;
    words(out, values);
    return out;
}

int size(const Bytes& bytes) {
    return static_cast<int>(bytes.size());
}

void appendTag(Bytes& out, const std::string& tag) {
    out.insert(out.end(), tag.begin(), tag.end());
}

Bytes coverage(const std::vector<uint16_t>& glyphs) {
    Bytes out = words({1, static_cast<int>(glyphs.size())});
    for (const uint16_t glyph : glyphs) words(out, {glyph});
    return out;
}

constexpr int kUnicodeFull = 10;  // encodings of the Windows platform
constexpr int kUnicodeBmp = 1;

}  // namespace

Bytes boxGlyph(const std::vector<Box>& boxes, const Bytes& instructions) {
    Bytes out = words({static_cast<int>(boxes.size())});
    Box all = boxes.empty() ? Box{} : boxes.front();
    for (const Box& box : boxes) {
        all = {std::min(all.left, box.left), std::min(all.bottom, box.bottom),
               std::max(all.right, box.right), std::max(all.top, box.top)};
    }
    words(out, {all.left, all.bottom, all.right, all.top});
    for (size_t i = 0; i < boxes.size(); ++i) words(out, {static_cast<int>(4 * i + 3)});
    words(out, {size(instructions)});
    append(out, instructions);
    out.insert(out.end(), 4 * boxes.size(), 1);  // on the curve, both coordinates in two bytes
    Bytes y;
    int lastX = 0;
    int lastY = 0;
    const auto point = [&](int px, int py) {
        words(out, {px - lastX});
        words(y, {py - lastY});
        lastX = px;
        lastY = py;
    };
    for (const Box& box : boxes) {
        point(box.left, box.bottom);
        point(box.left, box.top);
        point(box.right, box.top);
        point(box.right, box.bottom);
    }
    append(out, y);
    return out;
}

Bytes densePointGlyph(int points) {
    Bytes out = words({1, 0, 0, 0, 0, points - 1, 0});
    // On the curve, both coordinates the same as before, and so the next 255.
    for (int left = points; left > 0; left -= 256) {
        out.push_back(0x39);
        out.push_back(static_cast<uint8_t>(std::min(left, 256) - 1));
    }
    return out;
}

Bytes compositeGlyph(const std::vector<Component>& components, const Bytes& instructions) {
    constexpr int kWordArguments = 0x0001;
    constexpr int kArgumentsAreOffsets = 0x0002;
    constexpr int kMoreComponents = 0x0020;
    constexpr int kInstructions = 0x0100;
    Bytes out = words({-1, 0, 0, 500, 500});
    for (size_t i = 0; i < components.size(); ++i) {
        const bool isLast = i + 1 == components.size();
        int flags = kWordArguments | kArgumentsAreOffsets;
        if (!isLast) flags |= kMoreComponents;
        if (isLast && !instructions.empty()) flags |= kInstructions;
        words(out, {flags, components[i].glyph, components[i].dx, components[i].dy});
    }
    if (!instructions.empty()) words(out, {size(instructions)});
    append(out, instructions);
    return out;
}

SyntheticFont::SyntheticFont() {
    addGlyph(boxGlyph({{50, 0, 450, 700}, {100, 50, 400, 650}}), 500);
}

uint16_t SyntheticFont::addGlyph(Bytes description, int advance) {
    if (description.size() % 2 != 0) description.push_back(0);
    glyphs_.push_back(std::move(description));
    advances_.push_back(advance);
    return static_cast<uint16_t>(glyphs_.size() - 1);
}

uint16_t SyntheticFont::addLetters(uint32_t first, uint32_t last) {
    const auto firstGlyph = static_cast<uint16_t>(glyphs_.size());
    for (uint32_t c = first; c <= last; ++c) {
        const int width = 300 + static_cast<int>(c * 37 % 400);
        const int height = 400 + static_cast<int>(c * 53 % 400);
        map(c, addGlyph(boxGlyph({{40, 0, width, height}}), width + 60));
    }
    return firstGlyph;
}

void SyntheticFont::addWeightAxis(int min, int initial, int max, int widening) {
    constexpr int kAxisSize = 20, kHeader = 16;
    Bytes fvar = words({1, 0, kHeader, 2, 1, kAxisSize, 0, 8});
    appendTag(fvar, "wght");
    for (const int place : {min, initial, max}) words(fvar, {place, 0});  // 16.16
    words(fvar, {0, 256});
    tables["fvar"] = fvar;

    constexpr int kPeak = 1 << 14, kOwnPeak = 0x8000, kOwnPoints = 0x2000, kWords = 0x40;
    Bytes offsets;
    Bytes all;
    for (const Bytes& glyph : glyphs_) {
        appendBig(offsets, 4, static_cast<uint32_t>(all.size()));
        const int contours = glyph.empty() ? 0 : glyph[0] << 8 | glyph[1];
        const int points = 4 * contours;
        Bytes deltas = {0};  // all points
        for (const bool isX : {true, false}) {
            for (int i = 0; i < points + 4; ++i) {
                const bool moves = i < points ? i % 4 >= 2 : i == points + 1;
                deltas.push_back(kWords);
                words(deltas, {isX && moves ? widening : 0});
            }
        }
        words(all, {1, 10, size(deltas), kOwnPeak | kOwnPoints, kPeak});
        append(all, deltas);
        if (all.size() % 2 != 0) all.push_back(0);
    }
    appendBig(offsets, 4, static_cast<uint32_t>(all.size()));
    const int glyphCount = static_cast<int>(glyphs_.size());
    Bytes gvar = words({1, 0, 1, 0});
    appendBig(gvar, 4, 20);  // shared tuples: none
    words(gvar, {glyphCount, 1});
    appendBig(gvar, 4, static_cast<uint32_t>(20 + offsets.size()));
    append(gvar, offsets);
    append(gvar, all);
    tables["gvar"] = gvar;
}

uint16_t SyntheticFont::glyphOf(uint32_t codePoint) const {
    const auto found = codePoints_.find(codePoint);
    return found != codePoints_.end() ? found->second : uint16_t{0};
}

// Format 4 for what is in the basic plane, one segment per code point, and format 12 for all.
Bytes SyntheticFont::cmap() const {
    std::vector<std::pair<uint32_t, uint16_t>> basic;
    std::copy_if(codePoints_.begin(), codePoints_.end(), std::back_inserter(basic),
                 [](const auto& entry) { return entry.first < 0xFFFF; });
    const int segments = static_cast<int>(basic.size()) + 1;
    Bytes ends, starts, deltas;
    for (const auto& [codePoint, glyph] : basic) {
        words(ends, {static_cast<int>(codePoint)});
        words(starts, {static_cast<int>(codePoint)});
        words(deltas, {glyph - static_cast<int>(codePoint)});
    }
    for (Bytes* last : {&ends, &starts}) words(*last, {0xFFFF});
    words(deltas, {1});
    Bytes four = words({4, 16 + 8 * segments, 0, 2 * segments, 0, 0, 0});
    append(four, ends);
    words(four, {0});
    append(four, starts);
    append(four, deltas);
    four.resize(four.size() + 2 * static_cast<size_t>(segments));

    Bytes out = words({0, 2, 3, kUnicodeBmp, 0, 20, 3, kUnicodeFull, 0, 20 + size(four)});
    append(out, four);
    const auto groups = static_cast<uint32_t>(codePoints_.size());
    words(out, {12, 0});
    for (const uint32_t value : {16 + 12 * groups, 0u, groups}) appendBig(out, 4, value);
    for (const auto& [codePoint, glyph] : codePoints_) {
        for (const uint32_t value : {codePoint, codePoint, uint32_t{glyph}}) {
            appendBig(out, 4, value);
        }
    }
    return out;
}

Bytes SyntheticFont::build() const {
    const int count = static_cast<int>(glyphs_.size());
    SfntFile file;
    file.tables["head"] =
        words({1,   0,        1, 0, 0, 0, 0x5F0F, 0x3CF5, 0, static_cast<int>(unitsPerEm),
               0,   0,        0, 0, 0, 0, 0,      0,      0, descender,
               700, ascender, 0, 8, 2, 1, 0});
    file.tables["hhea"] =
        words({1, 0, ascender, descender, 90, 900, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, count});
    file.tables["maxp"] = words({1, 0, count, 64, 16, 64, 16, 2, static_cast<int>(twilightPoints),
                                 16, 64, 16, 256, 1024, 64, 4});
    Bytes& os2 = file.tables["OS/2"];
    os2 = words({4, 500, static_cast<int>(weight), 5});
    os2.resize(96);
    Bytes& loca = file.tables["loca"];
    Bytes& glyf = file.tables["glyf"];
    Bytes& hmtx = file.tables["hmtx"];
    for (int i = 0; i < count; ++i) {
        appendBig(loca, 4, static_cast<uint32_t>(glyf.size()));
        append(glyf, glyphs_[i]);
        words(hmtx, {advances_[i], 0});
    }
    appendBig(loca, 4, static_cast<uint32_t>(glyf.size()));
    file.tables["cmap"] = cmap();
    for (const auto& [tag, bytes] : tables) file.tables[tag] = bytes;
    return file.build();
}

Bytes layoutTable(const std::vector<LayoutFeature>& features) {
    const int count = static_cast<int>(features.size());
    Bytes featureList = words({count});
    Bytes featureTables;
    Bytes lookupList = words({count});
    Bytes lookups;
    Bytes scripts = words({1});
    appendTag(scripts, "DFLT");
    words(scripts, {8, 4, 0, 0, 0xFFFF, count});
    for (int i = 0; i < count; ++i) {
        const LayoutFeature& feature = features[static_cast<size_t>(i)];
        words(scripts, {i});
        appendTag(featureList, feature.tag);
        words(featureList, {2 + 6 * count + size(featureTables)});
        words(featureTables, {0, 1, i});
        words(lookupList, {2 + 2 * count + size(lookups)});
        words(lookups, {static_cast<int>(feature.lookupType), 0, 1, 8});
        append(lookups, feature.subtable);
    }
    append(featureList, featureTables);
    append(lookupList, lookups);
    Bytes out = words({1, 0, 10, 10 + size(scripts), 10 + size(scripts) + size(featureList)});
    for (const Bytes* part : {&scripts, &featureList, &lookupList}) append(out, *part);
    return out;
}

Bytes singleSubstitution(const std::map<uint16_t, uint16_t>& pairs) {
    const int count = static_cast<int>(pairs.size());
    Bytes out = words({2, 6 + 2 * count, count});
    std::vector<uint16_t> from;
    for (const auto& [glyph, substitute] : pairs) {
        from.push_back(glyph);
        words(out, {substitute});
    }
    append(out, coverage(from));
    return out;
}

Bytes ligature(uint16_t first, uint16_t second, uint16_t both) {
    Bytes out = words({1, 18, 1, 8, 1, 4, both, 2, second});
    append(out, coverage({first}));
    return out;
}

Bytes multiplication(uint16_t glyph, const std::vector<uint16_t>& into) {
    const int count = static_cast<int>(into.size());
    Bytes out = words({1, 10 + 2 * count, 1, 8, count});
    for (const uint16_t part : into) words(out, {part});
    append(out, coverage({glyph}));
    return out;
}

Bytes adjustment(uint16_t glyph, int x, int advance) {
    Bytes out = words({1, 10, 5, x, advance});
    append(out, coverage({glyph}));
    return out;
}

void addColorLayers(SyntheticFont& font, uint16_t base, const std::vector<uint16_t>& layers) {
    constexpr int kTextColor = 0xFFFF;
    const int count = static_cast<int>(layers.size());
    Bytes& colr = font.tables["COLR"];
    colr = words({0, 1, 0, 14, 0, 20, count, base, 0, count});
    for (int i = 0; i < count; ++i) {
        words(colr, {layers[static_cast<size_t>(i)], i % 2 == 0 ? 0 : kTextColor});
    }
    font.tables["CPAL"] = words({0, 1, 1, 1, 0, 14, 0, 0x2040, 0x6080});
}

void addPicture(SyntheticFont& font, uint16_t glyph, int ppem, int width, int height) {
    const int pixels = width * height;
    Bytes& cbdt = font.tables["CBDT"];
    cbdt = words({3, 0});
    // Small metrics: height, width, bearings, advance.
    for (const int byte : {height, width, 0, height, width + 1}) {
        cbdt.push_back(static_cast<uint8_t>(byte));
    }
    for (int i = 0; i < pixels; ++i) cbdt.push_back(static_cast<uint8_t>(i * 7));

    constexpr int kIndexFormat = 1;
    constexpr int kByteAligned = 1;  // image format: small metrics, then rows of whole bytes
    constexpr int kBitDepth = 8;
    Bytes line;  // metrics of the strike's lines, which nothing reads
    for (const int byte : {ppem, 0, ppem, 0, 0, 0, 0, 0, 0, 0, 0, 0}) {
        line.push_back(static_cast<uint8_t>(byte));
    }
    Bytes& cblc = font.tables["CBLC"];
    cblc = words({3, 0, 0, 1, 0, 56, 0, 24, 0, 1, 0, 0});
    append(cblc, line);
    append(cblc, line);
    words(cblc, {glyph, glyph});
    for (const int byte : {ppem, ppem, kBitDepth, 1}) cblc.push_back(static_cast<uint8_t>(byte));
    words(cblc, {glyph, glyph, 0, 8, kIndexFormat, kByteAligned, 0, 4, 0, 0});
    appendBig(cblc, 4, static_cast<uint32_t>(5 + pixels));
}

}  // namespace gxtest
