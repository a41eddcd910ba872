// Rows of single lines of text, a title of 20 characters, a paragraph of 200, a line of 100
// ideographs: laid out and drawn into an 8-bit mask, by this library, by HarfBuzz and FreeType
// called directly (the plain form), and by Pango and cairo.
//
// Each run draws a line that no run drew before, with our layout cache empty, so that no layout is
// found in a cache. Glyphs stay in the caches of those that have one (ours, 8 MiB; cairo's), except
// in the rows of new glyphs, where ours are dropped before each run; FreeType keeps none.
#include <SkBitmap.h>
#include <SkCanvas.h>
#include <SkStream.h>
#include <SkTextBlob.h>
#include <SkTypeface.h>
#include <hwui/MinikinUtils.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "Bench.h"
#include "LinePeers.h"
#include "minikin/LayoutCache.h"
#include "skia/GlyphCache.h"

namespace gxbench {

namespace {

// Lines of random words. Two with one seed write the same lines.
class LineWriter {
public:
    virtual ~LineWriter() = default;
    virtual std::u16string next() = 0;

protected:
    int between(int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(engine_);
    }

private:
    std::mt19937 engine_{1};
};

// "Qhvmwo Rtn Ibdrwqvxaa"
class LatinTitles : public LineWriter {
public:
    static constexpr int kLength = 20;
    std::u16string next() override {
        std::u16string text;
        while (text.size() < kLength) {
            text.push_back(static_cast<char16_t>(u'A' + between(0, 25)));
            for (int i = between(3, 8); i > 0; --i) {
                text.push_back(static_cast<char16_t>(u'a' + between(0, 25)));
            }
            text.push_back(u' ');
        }
        text.resize(kLength);
        return text;
    }
};

// Words of the basic letters, one letter in eight with a vowel sign.
class ArabicParagraphs : public LineWriter {
public:
    static constexpr int kLength = 200;
    std::u16string next() override {
        std::u16string text;
        while (text.size() < kLength) {
            for (int i = between(3, 8); i > 0; --i) {
                const int letter = between(0, 0x23);
                // U+063B to U+0640 are not letters of Arabic.
                text.push_back(static_cast<char16_t>(letter < 0x13 ? 0x628 + letter
                                                                   : 0x641 + (letter - 0x13) % 10));
                if (between(0, 7) == 0)
                    text.push_back(static_cast<char16_t>(0x64E + between(0, 4)));
            }
            text.push_back(u' ');
        }
        text.resize(kLength);
        return text;
    }
};

// As many different ideographs as a few pages have.
class IdeographLines : public LineWriter {
public:
    static constexpr int kLength = 100;
    std::u16string next() override {
        constexpr int kCharacters = 500;
        constexpr int kStep = 41;  // through the block from U+4E00 to U+9FA5
        std::u16string text;
        for (int i = 0; i < kLength; ++i) {
            text.push_back(static_cast<char16_t>(0x4E00 + kStep * between(0, kCharacters - 1)));
        }
        return text;
    }
};

struct Subject {
    const char* name;
    const char* fontFile;
    int faceIndex;
    bool rightToLeft;
    int ems;  // what the longest lines come to
    std::unique_ptr<LineWriter> (*writer)();
};

template <typename Writer>
std::unique_ptr<LineWriter> makeWriter() {
    return std::make_unique<Writer>();
}

const Subject kSubjects[] = {
    {"Latin title", GXBENCH_FONT, 0, false, 16, makeWriter<LatinTitles>},
#ifdef GXBENCH_ARABIC_FONT
    {"Arabic text", GXBENCH_ARABIC_FONT, 0, true, 100, makeWriter<ArabicParagraphs>},
#endif
#ifdef GXBENCH_CJK_FONT
    {"CJK line", GXBENCH_CJK_FONT, 2, false, 100, makeWriter<IdeographLines>},
#endif
};

// What a text object does for a line, without the effects.
class OwnLine {
public:
    OwnLine(const LineSetting& setting, const LineCanvas& canvas)
        : canvas_(canvas),
          bidi_(setting.rightToLeft ? minikin::Bidi::RTL : minikin::Bidi::LTR),
          mask_(static_cast<size_t>(canvas.width) * static_cast<size_t>(canvas.height)) {
        std::ifstream file(setting.fontFile, std::ios::binary);
        bytes_.assign(std::istreambuf_iterator<char>(file), {});
        sk_sp<SkTypeface> face = SkTypeface::MakeFromStream(
            std::make_unique<SkMemoryStream>(bytes_.data(), bytes_.size()), setting.faceIndex);
        if (!face) return;
        const auto font = std::make_shared<android::MinikinFontSkia>(
            std::move(face), bytes_.data(), bytes_.size(), setting.fontFile, setting.faceIndex,
            std::vector<minikin::FontVariation>());
        std::vector<minikin::Font> fonts;
        fonts.push_back(minikin::Font::Builder(font).build());
        typeface_.reset(android::Typeface::createFromFamilies(
            {std::make_shared<minikin::FontFamily>(std::move(fonts))},
            android::RESOLVE_BY_FONT_TABLE, android::RESOLVE_BY_FONT_TABLE));
        paint_.setAntiAlias(true);
        paint_.getSkFont().setSize(static_cast<float>(setting.size));
    }

    bool ready() const { return typeface_ != nullptr; }

    void draw(std::u16string_view text) {
        std::fill(mask_.begin(), mask_.end(), uint8_t{0});
        const minikin::Layout layout = android::MinikinUtils::doLayout(
            &paint_, bidi_, typeface_.get(), reinterpret_cast<const uint16_t*>(text.data()),
            text.size(), 0, text.size(), 0, text.size(), nullptr);
        const minikin::MinikinRect& box = layout.getBounds();
        const SkRect bounds = SkRect::MakeLTRB(box.mLeft, box.mTop, box.mRight, box.mBottom);
        SkBitmap bitmap;
        bitmap.installPixels(SkImageInfo::MakeA8(canvas_.width, canvas_.height), mask_.data(),
                             static_cast<size_t>(canvas_.width));
        SkCanvas canvas(bitmap);
        const auto drawRun = [&](size_t start, size_t end) {
            SkTextBlobBuilder builder;
            const auto& run =
                builder.allocRunPos(paint_.getSkFont(), static_cast<int>(end - start), &bounds);
            for (size_t i = start; i < end; ++i) {
                const int glyph = static_cast<int>(i);
                run.glyphs[i - start] = static_cast<SkGlyphID>(layout.getGlyphId(glyph));
                run.pos[2 * (i - start)] = layout.getX(glyph);
                run.pos[2 * (i - start) + 1] = layout.getY(glyph);
            }
            canvas.drawTextBlob(builder.make(), 0, static_cast<float>(canvas_.baseline), paint_);
        };
        android::MinikinUtils::forFontRun(layout, &paint_, drawRun);
    }

    bool hasInk() const {
        return std::any_of(mask_.begin(), mask_.end(), [](uint8_t c) { return c != 0; });
    }

private:
    const LineCanvas canvas_;
    const minikin::Bidi bidi_;
    std::vector<char> bytes_;
    std::vector<uint8_t> mask_;
    std::unique_ptr<android::Typeface> typeface_;
    android::Paint paint_;
};

// Draws lines of its own writer, one with each call.
std::function<void()> drawNewLines(const Subject& subject, DrawLine draw) {
    if (!draw) return {};
    const std::shared_ptr<LineWriter> writer = subject.writer();
    return [=] { draw(writer->next()); };
}

DrawLine drawOurselves(const LineSetting& setting, const LineCanvas& canvas) {
    const auto line = std::make_shared<OwnLine>(setting, canvas);
    if (line->ready()) line->draw(u"\u0628\u4E00m");
    if (!line->ready() || !line->hasInk()) {
        std::fprintf(stderr, "%s: drew nothing\n", setting.fontFile.c_str());
        return {};
    }
    return [line](std::u16string_view text) { line->draw(text); };
}

void addNewLineRows(const Subject& subject, int size) {
    const LineSetting setting{subject.fontFile, subject.faceIndex, size, subject.rightToLeft};
    const LineCanvas canvas{size * subject.ems, size * 3 / 2, size * 9 / 8};
    const std::string name = std::string(subject.name) + " " + std::to_string(size) + " px";
    addRow({name, "Pango + cairo", {0.77, 1.0}, 0, [=, &subject] {
                Contenders contenders;
                contenders.prepare = [] { minikin::LayoutCache::shared().clear(); };
                contenders.ours = drawNewLines(subject, drawOurselves(setting, canvas));
                contenders.plain = drawNewLines(subject, drawDirectly(setting, canvas));
#ifdef GXBENCH_PANGO
                contenders.peer = drawNewLines(subject, drawWithPango(setting, canvas));
#endif
                return contenders;
            }});
    addRow({name + ", new glyphs", "", {0.77, 0}, 0, [=, &subject] {
                Contenders contenders;
                contenders.prepare = [] {
                    minikin::LayoutCache::shared().clear();
                    portable::GlyphCache::shared().clear();
                };
                contenders.ours = drawNewLines(subject, drawOurselves(setting, canvas));
                contenders.plain = drawNewLines(subject, drawDirectly(setting, canvas));
                return contenders;
            }});
    // The plain form forgets the layout, not the glyphs.
    addRow({name + ", repeated", "", {}, 0, [=, &subject] {
                const DrawLine draw = drawOurselves(setting, canvas);
                if (!draw) return Contenders();
                const std::u16string text = subject.writer()->next();
                return Contenders{{},
                                  [=] { draw(text); },
                                  [=] {
                                      minikin::LayoutCache::shared().clear();
                                      draw(text);
                                  },
                                  {}};
            }});
}

}  // namespace

void addLineRows() {
#ifndef GXBENCH_PANGO
    addMissingPeer("Pango + cairo");
#endif
#ifndef GXBENCH_ARABIC_FONT
    addMissingPeer("the Arabic font (fonts-noto-core)");
#endif
#ifndef GXBENCH_CJK_FONT
    addMissingPeer("the CJK font (fonts-noto-cjk)");
#endif
    for (const Subject& subject : kSubjects) {
        for (const int size : {32, 96}) addNewLineRows(subject, size);
    }
}

}  // namespace gxbench
