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
#include "text/GxView.h"

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

// Text of a size, in a view, with the effects of a title or none.
class Picture {
public:
    Picture(int fontSize, int width, int height, bool styled) : fontSize_(fontSize) {
        text_.Construct();
        text_.SetFont(GXBENCH_FONT);
        android::Paint paint;
        paint.setAntiAlias(true);
        paint.getSkFont().setSize(static_cast<float>(fontSize));
        text_.SetPaint(paint);
        text_.SetText(kTitle);
        if (styled) {
            GxEffect& stack = *text_.GetEffect();
            stack.addStrokeText(6, 0xFF402000, 1.0f, 0, GxStrokeProperty::kOutside);
            stack.addOuterShadowText(120, 8, 10, 0xFF000000, 0.6f);
            stack.addOuterGlowText(16, 0xFFFFE080, 0.8f, 0, nullptr);
        }
        text_.GetView()->SetSize(width, height);
        text_.FitBitmapToView();
    }

    int width() const { return text_.GetView()->GetBitmapWidth(); }
    int height() const { return text_.GetView()->GetBitmapHeight(); }

    void render() {
        auto line = std::make_unique<GxLineInfo>();
        line->x = fontSize_ / 5;
        line->y = fontSize_ * 3 / 2;
        line->end = static_cast<int32_t>(std::char_traits<wchar_t>::length(kTitle));
        List lines;
        lines.Construct();
        lines.Add(line.release());
        text_.SetLineInfo(&lines);
        text_.RenderTextEffect(width(), height());
    }

private:
    static constexpr const wchar_t* kTitle = L"Golden Hour";

    int fontSize_;
    GxTextObject text_;
};

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

// The most that was resident since the mark was reset, in megabytes.
double highWaterMB() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmHWM:")) return std::stod(line.substr(6)) * 1024 / 1e6;
    }
    return 0;
}

void resetHighWater() {
    std::ofstream("/proc/self/clear_refs") << "5";
}

// What a render holds at most, the frame before it included. Only pages that were touched count.
void printRenders() {
    struct Case {
        const char* name;
        int fontSize, width, height;
        bool styled;
    };
    constexpr Case kCases[] = {
        {"plain title", 96, 900, 220, false},     {"styled title", 96, 900, 220, true},
        {"plain, 3.2 MP", 384, 3600, 880, false}, {"styled, 3.2 MP", 384, 3600, 880, true},
        {"sparse, 3.2 MP", 96, 3600, 880, true},  {"plain, 16 MP", 864, 8100, 1980, false},
        {"styled, 16 MP", 864, 8100, 1980, true}, {"sparse, 16 MP", 96, 8100, 1980, true},
    };
    std::printf("%-16s%14s%18s%16s\n", "picture", "megapixels", "most in a render", "MB/megapixel");
    for (const Case& c : kCases) {
        Picture(c.fontSize, 16, 16, c.styled).render();  // glyphs and their caches
        GxTextObject::ReleaseKeptPlanes();
        malloc_trim(0);
        const double before = residentMiB() * (1 << 20) / 1e6;
        Picture picture(c.fontSize, c.width, c.height, c.styled);
        picture.render();
        resetHighWater();
        picture.render();
        const double most = highWaterMB() - before;
        const double megapixels = static_cast<double>(picture.width()) * picture.height() / 1e6;
        std::printf("%-16s%14.2f%15.2f MB%16.2f\n", c.name, megapixels, most, most / megapixels);
    }
}

}  // namespace

void printMemory(const std::string& /*filter*/) {
    printRenders();
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
