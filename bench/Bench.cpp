#include "Bench.h"

#include <cstdio>
#include <cstring>
#include <utility>

#include "Measure.h"
#include "MemoryBench.h"
#include "Planes.h"
#include "Scaling.h"
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

struct Result {
    Times ours, plain, peer;
};

Result measure(const Contenders& contenders) {
    std::vector<Times> times =
        measureInTurns(contenders.prepare, {contenders.ours, contenders.plain, contenders.peer});
    return {std::move(times[0]), std::move(times[1]), std::move(times[2])};
}

// --- table of times ---

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
                cell(result.ours.median() * unit, 9, "%.3f").c_str(),
                cell(result.plain.median() * unit, 9, "%.3f").c_str(),
                cell(result.peer.median() * unit, 9, "%.3f").c_str(),
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

// --- instruction counts ---

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

// gxtext_bench [--instructions | --scaling | --memory] [--target NAME] [FILTER]
int main(int argc, char** argv) {
    void (*measureAll)(const std::string&) = gxbench::printTable;
    std::string filter;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--instructions") == 0) {
            measureAll = gxbench::countInstructions;
        } else if (std::strcmp(argv[i], "--scaling") == 0) {
            measureAll = gxbench::printScaling;
#ifdef GXBENCH_TEXT
        } else if (std::strcmp(argv[i], "--memory") == 0) {
            measureAll = gxbench::printMemory;
#endif
        } else if (std::strcmp(argv[i], "--target") == 0 && i + 1 < argc) {
            GxFontEffect::kernels::forceSimdTarget(argv[++i]);
        } else {
            filter = argv[i];
        }
    }
    gxbench::addBlendRows();
    gxbench::addBlurRows();
    gxbench::addDilationRows();
    gxbench::addFillRows();
    gxbench::addGlowRows();
    gxbench::addReliefRows();
    gxbench::addShadowRows();
#ifdef GXBENCH_TEXT
    gxbench::addTextRows();
#endif
#ifdef GXBENCH_LINES
    gxbench::addFontRows();
    gxbench::addLineRows();
#endif
    measureAll(filter);
    return 0;
}
