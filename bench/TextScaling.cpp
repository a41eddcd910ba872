#include "TextScaling.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <thread>

#include "Measure.h"
#include "ThreadBench.h"
#include "TitleBench.h"
#include "scene/FontSource.h"
#include "scene/Renderer.h"

namespace gxbench {

namespace {

void printPoint(const char* curve, const std::string& series, int64_t x, const Run& run) {
    const double milliseconds = measureInTurns({}, {run})[0].median() * 1e3;
    std::printf("%s,%s,%lld,%.4f\n", curve, series.c_str(), static_cast<long long>(x),
                milliseconds);
    std::fflush(stdout);
}

// Words of two to nine letters.
std::string latinText(int characters) {
    std::string text;
    for (int i = 0, word = 2; i < characters; ++i) {
        if (--word < 0) word = 2 + i % 8;
        text.push_back(word == 0 ? ' ' : static_cast<char>('a' + i * 7 % 26));
    }
    return text;
}

// As many different ideographs, of three bytes, as a few pages have, from U+4E00 on.
std::string chineseText(int characters) {
    std::string text;
    for (int i = 0; i < characters; ++i) {
        constexpr int kDifferent = 500;
        const unsigned c = 0x4E00u + static_cast<unsigned>(41 * (i * 7 % kDifferent));
        for (const unsigned byte : {0xE0u | c >> 12, 0x80u | (c >> 6 & 0x3F), 0x80u | (c & 0x3F)}) {
            text.push_back(static_cast<char>(byte));
        }
    }
    return text;
}

struct Script {
    const char* name;
    const char* font;
    int fontIndex;
    std::string (*text)(int characters);
    int width;  // pixels that it is wrapped at
    bool drawn;
};

constexpr Script kScripts[] = {
    {"Latin", GXBENCH_FONT, 0, latinText, 1000, true},
#ifdef GXBENCH_CJK_FONT
    {"Chinese", GXBENCH_CJK_FONT, 2, chineseText, 1000, true},
    {"Chinese 65535 px wide", GXBENCH_CJK_FONT, 2, chineseText, 65535, false},
#endif
};

void printLength(const Script& script) {
    gxtext::Style style;
    style.font = script.font;
    style.fontIndex = script.fontIndex;
    style.size = 24;
    style.width = script.width;
    gxtext::Effect stroke(gxtext::EffectType::kStroke);
    stroke.size = 2;
    style.effects.push_back(stroke);
    const auto renderer =
        std::make_shared<gxtext::Renderer>(gxtext::FontSource::files({script.font}));
    for (const int characters : {10, 30, 100, 300, 1000, 3000, 10000}) {
        const std::string text = script.text(characters), name = script.name;
        printPoint("length", name + " laid out", characters,
                   [=] { renderer->arrange(style, text); });
        if (!script.drawn) continue;
        printPoint("length", name + " drawn", characters, [=] { renderer->render(style, text); });
    }
}

void printLengths() {
    for (const Script& script : kScripts) printLength(script);
}

void printPictures() {
    struct Title {
        const char* series;
        const char* style;
    };
    for (const Title& title : {Title{"fill only", "fill"}, Title{"three effects", "title"},
                               Title{"eight effects", "eight"}}) {
        for (const float scale : {0.5f, 1.0f, 2.0f, 4.0f, 6.0f, 9.0f}) {
            const TitlePicture picture = titlePicture(title.style, GXBENCH_FONT, 0, scale);
            printPoint("picture", title.series, int64_t{picture.width} * picture.height,
                       ownTitleRun(picture));
        }
    }
}

void printThreads() {
    const int most = static_cast<int>(std::clamp(std::thread::hardware_concurrency(), 1u, 8u));
    for (int threads = 1; threads <= most; ++threads) {
        printPoint("threads", "1920 titles", threads, titlesOnThreads(threads));
    }
}

}  // namespace

void printTextScaling(const std::string& filter) {
    constexpr std::pair<const char*, void (*)()> kCurves[] = {
        {"length", printLengths}, {"picture", printPictures}, {"threads", printThreads}};
    for (const auto& [name, print] : kCurves) {
        if (std::string(name).find(filter) != std::string::npos) print();
    }
}

}  // namespace gxbench
