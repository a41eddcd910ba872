#include "Bench.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <utility>

#include "Planes.h"
#include "raster/kernels/SimdTargets.h"

#ifdef GXBENCH_CALLGRIND
#include <valgrind/callgrind.h>
#endif

namespace gxbench {

namespace {

std::vector<Row>& rows() {
    static std::vector<Row> instance;
    return instance;
}

std::vector<std::string>& missingPeers() {
    static std::vector<std::string> instance;
    return instance;
}

double median(std::vector<double> values) {
    if (values.empty()) return 0;
    const auto middle = values.begin() + static_cast<ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

double secondsOf(const Contenders& contenders, const std::function<void()>& run) {
    if (!run) return 0;
    if (contenders.prepare) contenders.prepare();
    const auto start = std::chrono::steady_clock::now();
    run();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Times of one contender over the repetitions.
struct Times {
    std::vector<double> seconds;

    double mid() const { return median(seconds); }
    // The times of `this` over those of `ours`, repetition by repetition: what slows the machine
    // for a while slows both.
    double ratioTo(const Times& ours) const {
        std::vector<double> ratios;
        for (size_t i = 0; i < seconds.size(); ++i) ratios.push_back(seconds[i] / ours.seconds[i]);
        return median(ratios);
    }
};

struct Result {
    Times ours, plain, peer;
};

Result measure(const Contenders& contenders) {
    double once = 0;
    for (const auto* run : {&contenders.ours, &contenders.plain, &contenders.peer}) {
        secondsOf(contenders, *run);  // warm-up
        once += secondsOf(contenders, *run);
    }
    const int repetitions = std::clamp(static_cast<int>(1.0 / std::max(once, 1e-6)), 7, 61);
    Result result;
    for (int i = 0; i < repetitions; ++i) {
        for (const auto& [times, run] : {std::pair{&result.ours, &contenders.ours},
                                         {&result.plain, &contenders.plain},
                                         {&result.peer, &contenders.peer}}) {
            if (*run) times->seconds.push_back(secondsOf(contenders, *run));
        }
    }
    return result;
}

// --- table of times
// -----------------------------------------------------------------------------------------

// Right-aligned in `width`; a dash where there is nothing.
std::string cell(double value, int width, const char* format) {
    char text[32] = "-";
    if (value > 0) std::snprintf(text, sizeof(text), format, value);
    char padded[64];
    std::snprintf(padded, sizeof(padded), "%*s", width, text);
    return padded;
}

std::string targetText(const Row& row, bool hasPeer) {
    std::string text;
    char part[48];
    if (row.targets.plain > 0) {
        std::snprintf(part, sizeof(part), "plain %.4gx ", row.targets.plain);
        text += part;
    }
    if (row.targets.peer > 0 && hasPeer) {
        std::snprintf(part, sizeof(part), "peer %.4gx", row.targets.peer);
        text += part;
    }
    return text;
}

// Returns whether the row holds its targets.
bool printRow(const Row& row, const Result& result) {
    const bool perPixel = row.pixels > 0;
    const double unit = perPixel ? 1e9 / static_cast<double>(row.pixels) : 1e3;
    const double overPlain = result.plain.ratioTo(result.ours);
    const double overPeer = result.peer.ratioTo(result.ours);
    const bool hasPeer = !result.peer.seconds.empty();
    const bool holds = overPlain >= row.targets.plain && (!hasPeer || overPeer >= row.targets.peer);
    std::printf("%-36s%s%s%s%s%s  %-22s%-9s %s\n", row.operation.c_str(),
                cell(result.ours.mid() * unit, 9, "%.3f").c_str(),
                cell(result.plain.mid() * unit, 9, "%.3f").c_str(),
                cell(result.peer.mid() * unit, 9, "%.3f").c_str(),
                cell(overPlain, 9, "%.2fx").c_str(), cell(overPeer, 9, "%.2fx").c_str(),
                targetText(row, hasPeer).c_str(), hasPeer ? row.peerName.c_str() : "",
                !holds     ? "SHORT"
                : perPixel ? ""
                           : "ms");
    std::fflush(stdout);
    return holds;
}

void printTable(const std::string& filter) {
    std::printf("%d x %d, %s; kernels on %s; one thread\n", kWidth, kHeight,
                textMaskSource().c_str(), GxFontEffect::kernels::simdTargetName().c_str());
    for (const std::string& peer : missingPeers()) {
        std::printf("not built in: %s\n", peer.c_str());
    }
    std::printf("\n%-36s%9s%9s%9s%9s%9s  %-22s%s\n", "ns per pixel, median", "ours", "plain",
                "peer", "/plain", "/peer", "target", "peer");
    int shortfalls = 0;
    for (const Row& row : rows()) {
        if (row.operation.find(filter) == std::string::npos) continue;
        shortfalls += !printRow(row, measure(row.make()));
    }
    std::printf("\n%d short of the target\n", shortfalls);
}

// --- instruction counts
// -------------------------------------------------------------------------------------

// Under callgrind, started without collecting, each run leaves a dump named after it; the script
// reads them.
void countInstructions(const std::string& filter) {
#ifdef GXBENCH_CALLGRIND
    for (const Row& row : rows()) {
        if (row.operation.find(filter) == std::string::npos) continue;
        const Contenders contenders = row.make();
        const std::pair<const char*, const std::function<void()>*> runs[] = {
            {"ours", &contenders.ours}, {"plain", &contenders.plain}, {"peer", &contenders.peer}};
        for (const auto& [who, run] : runs) {
            if (!*run) continue;
            (*run)();
            if (contenders.prepare) contenders.prepare();
            CALLGRIND_ZERO_STATS;
            CALLGRIND_TOGGLE_COLLECT;
            (*run)();
            CALLGRIND_TOGGLE_COLLECT;
            const std::string name = row.operation + "|" + who + "|" + std::to_string(row.pixels);
            CALLGRIND_DUMP_STATS_AT(name.c_str());
        }
    }
#else
    (void)filter;
    std::fputs("built without callgrind's header\n", stderr);
#endif
}

}  // namespace

void addRow(Row row) {
    rows().push_back(std::move(row));
}

void addMissingPeer(const std::string& name) {
    missingPeers().push_back(name);
}

}  // namespace gxbench

// gxtext_bench [--instructions] [--target NAME] [FILTER]
int main(int argc, char** argv) {
    bool instructions = false;
    std::string filter;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--instructions") == 0) {
            instructions = true;
        } else if (std::strcmp(argv[i], "--target") == 0 && i + 1 < argc) {
            GxFontEffect::kernels::forceSimdTarget(argv[++i]);
        } else {
            filter = argv[i];
        }
    }
    gxbench::addBlendRows();
    gxbench::addBlurRows();
    gxbench::addDilationRows();
#ifdef GXBENCH_TEXT
    gxbench::addTextRows();
#endif
    instructions ? gxbench::countInstructions(filter) : gxbench::printTable(filter);
    return 0;
}
