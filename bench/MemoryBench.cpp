#include "MemoryBench.h"

#include <hwui/Paint.h>
#include <malloc.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <memory>
#include <random>
#include <string>

#include "base/List.h"
#include "effect/GxEffect.h"
#include "text/GxLineInfo.h"
#include "text/GxTextObject.h"

namespace gxbench {

namespace {

using namespace GxFontEffect;

constexpr int kWidth = 400;
constexpr int kHeight = 60;

// A text object made, drawn and deleted, as an app does for each title it shows.
void drawTitle(const std::wstring& title) {
    GxTextObject text;
    text.Construct();
    text.SetFont(GXBENCH_FONT);
    android::Paint paint;
    paint.setAntiAlias(true);
    paint.getSkFont().setSize(32);
    text.SetPaint(paint);
    text.SetText(title.c_str());
    text.GetEffect()->addStrokeText(2, 0xFF402000, 1.0f, 0, GxStrokeProperty::kOutside);
    auto line = std::make_unique<GxLineInfo>();
    line->y = kHeight - 15;
    line->end = static_cast<int32_t>(title.size());
    List lines;
    lines.Construct();
    lines.Add(line.release());
    text.SetLineInfo(&lines);
    text.RenderTextEffect(kWidth, kHeight);
}

std::wstring randomTitle(std::mt19937& engine) {
    std::wstring title;
    for (int i = 0; i < 20; ++i) {
        const bool space = i % 7 == 6;
        const auto letter = static_cast<wchar_t>(engine() % 26);
        title.push_back(space ? L' ' : static_cast<wchar_t>((i % 7 == 0 ? L'A' : L'a') + letter));
    }
    return title;
}

double heapMiB() {
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd) / (1 << 20);
}

double residentMiB() {
    std::ifstream statm("/proc/self/statm");
    long total = 0;
    long resident = 0;
    statm >> total >> resident;
    return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / (1 << 20);
}

}  // namespace

void printMemory(const std::string& /*filter*/) {
    std::mt19937 engine;
    std::printf("%8s%12s%16s\n", "titles", "heap, MiB", "resident, MiB");
    int drawn = 0;
    for (const int count : {1, 1000, 5000, 10000, 20000, 50000, 100000}) {
        for (; drawn < count; ++drawn) drawTitle(randomTitle(engine));
        std::printf("%8d%12.2f%16.2f\n", drawn, heapMiB(), residentMiB());
        std::fflush(stdout);
    }
}

}  // namespace gxbench
