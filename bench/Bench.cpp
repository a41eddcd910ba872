#include "Bench.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <utility>

#include "Measure.h"
#include "MemoryBench.h"
#include "Planes.h"
#include "Scaling.h"
#ifdef GXBENCH_TITLES
#include "PngCurve.h"
#include "TextScaling.h"
#include "TitleBench.h"
#endif
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

// --- table of times ---

// Right-aligned in `width`; a dash where there is nothing.
std::string cell(double value, int width, const char* format) {
    char text[32] = "-";
    if (value > 0) std::snprintf(text, sizeof(text), format, value);
    char padded[64];
    std::snprintf(padded, sizeof(padded), "%*s", width, text);
    return padded;
}

// Whether targets are reached, and where not.
class Verdict {
public:
    // Returns whether `ratio` holds; a target of 0 always does.
    bool holds(const std::string& operation, const std::string& against, double ratio,
               double target) {
        if (target <= 0) return true;
        ++asked_;
        if (ratio >= target) return true;
        char figures[64];
        std::snprintf(figures, sizeof(figures), "%.2fx of %.4gx", ratio, target);
        missed_.push_back(operation + " / " + against + ": " + figures);
        return false;
    }

    void print() const {
        std::printf("\n%zu of %zu targets met\n", asked_ - missed_.size(), asked_);
        for (const std::string& line : missed_) std::printf("missed: %s\n", line.c_str());
    }

private:
    size_t asked_ = 0;
    std::vector<std::string> missed_;
};

std::string targetText(const Targets& targets, bool hasPeer) {
    std::string text;
    char part[48];
    if (targets.plain > 0) {
        std::snprintf(part, sizeof(part), "plain %.4gx ", targets.plain);
        text += part;
    }
    if (targets.peer > 0 && hasPeer) {
        std::snprintf(part, sizeof(part), "peer %.4gx", targets.peer);
        text += part;
    }
    return text;
}

// Prints rows as they are measured, and keeps them for other programs in a file: a line for each
// contender, tabs between operation, contender, median, unit, its ratio to ours, target, whether
// it does the whole work or a part, and note.
class Table {
public:
    explicit Table(const std::string& file) {
        if (!file.empty()) file_ = std::fopen(file.c_str(), "w");
    }
    ~Table() {
        if (file_) std::fclose(file_);
    }
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;

    void add(const Row& row);
    void finish() const { verdict_.print(); }

private:
    void addPeer(const Row& row, const Peer& peer, const Times& times, const Times& ours);
    void record(const Row& row, const Peer& who, const Times& times, const Times& ours);

    Verdict verdict_;
    FILE* file_ = nullptr;
};

double unitOf(const Row& row) {
    return row.pixels > 0 ? 1e9 / static_cast<double>(row.pixels) : 1e3;
}

void Table::record(const Row& row, const Peer& who, const Times& times, const Times& ours) {
    if (!file_) return;
    std::fprintf(file_, "%s\t%s\t%.6g\t%s\t%.4g\t%.4g\t%s\t%s\n", row.operation.c_str(),
                 who.name.c_str(), times.median() * unitOf(row), row.pixels > 0 ? "ns/px" : "ms",
                 times.ratioTo(ours), who.target, who.isPartial ? "partial" : "whole",
                 who.note.c_str());
}

void Table::add(const Row& row) {
    const Contenders contenders = row.make();
    std::vector<Run> runs = {contenders.ours, contenders.plain, contenders.peer};
    for (const Peer& peer : contenders.peers) runs.push_back(peer.run);
    const std::vector<Times> times = measureInTurns(contenders.prepare, runs);
    const Times &ours = times[0], &plain = times[1], &peer = times[2];
    const double unit = unitOf(row);
    const double overPlain = plain.ratioTo(ours), overPeer = peer.ratioTo(ours);
    const bool hasPeer = !peer.seconds.empty();
    bool holds = verdict_.holds(row.operation, "plain", overPlain, row.targets.plain);
    if (hasPeer) {
        holds &= verdict_.holds(row.operation, row.peerName, overPeer, row.targets.peer);
    }
    std::printf("%-36s%s%s%s%s%s  %-22s%-9s %s\n", row.operation.c_str(),
                cell(ours.median() * unit, 9, "%.3f").c_str(),
                cell(plain.median() * unit, 9, "%.3f").c_str(),
                cell(peer.median() * unit, 9, "%.3f").c_str(), cell(overPlain, 9, "%.2fx").c_str(),
                cell(overPeer, 9, "%.2fx").c_str(), targetText(row.targets, hasPeer).c_str(),
                hasPeer ? row.peerName.c_str() : "",
                !holds           ? "SHORT"
                : row.pixels > 0 ? ""
                                 : "ms");
    record(row, {"ours", {}, "", 0}, ours, ours);
    if (contenders.plain) record(row, {"plain", {}, "", row.targets.plain}, plain, ours);
    if (hasPeer) record(row, {row.peerName, {}, "", row.targets.peer}, peer, ours);
    for (size_t i = 0; i < contenders.peers.size(); ++i) {
        addPeer(row, contenders.peers[i], times[3 + i], ours);
    }
    std::fflush(stdout);
}

void Table::addPeer(const Row& row, const Peer& peer, const Times& times, const Times& ours) {
    const double ratio = times.ratioTo(ours);
    const bool holds = !peer.run || verdict_.holds(row.operation, peer.name, ratio, peer.target);
    std::printf("  %-52s%s%18s  %-22s%s%s\n", peer.name.c_str(),
                cell(times.median() * unitOf(row), 9, "%.3f").c_str(),
                cell(ratio, 18, "%.2fx").c_str(),
                peer.run ? targetText({0, peer.target}, true).c_str() : "not on this machine",
                holds ? "" : "SHORT ", peer.note.c_str());
    record(row, peer, times, ours);
}

void printTable(const std::string& filter, const std::string& results) {
    std::printf("%d x %d, %s; kernels on %s; one thread\n", kWidth, kHeight,
                textMaskSource().c_str(), GxFontEffect::kernels::simdTargetName().c_str());
    for (const std::string& peer : missingPeers()) {
        std::printf("not built in: %s\n", peer.c_str());
    }
    std::printf("\n%-36s%9s%9s%9s%9s%9s  %-22s%s\n", "ns per pixel, median", "ours", "plain",
                "peer", "/plain", "/peer", "target", "peer");
    Table table(results);
    for (const Row& row : rows()) {
        if (row.operation.find(filter) != std::string::npos) table.add(row);
    }
    table.finish();
}

// --- instruction counts ---

// Under callgrind, started without collecting, each run leaves a dump named after it; the script
// reads them.
void countInstructions(const std::string& filter) {
#ifdef GXBENCH_CALLGRIND
    for (const Row& row : rows()) {
        if (row.operation.find(filter) == std::string::npos) continue;
        const Contenders contenders = row.make();
        const std::pair<const char*, const Run*> runs[] = {
            {"ours", &contenders.ours}, {"plain", &contenders.plain}, {"peer", &contenders.peer}};
        for (const auto& [who, run] : runs) {
            if (!run->isCall()) continue;
            run->call();
            if (contenders.prepare) contenders.prepare();
            CALLGRIND_ZERO_STATS;
            CALLGRIND_TOGGLE_COLLECT;
            run->call();
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

namespace {

void printAllScaling(const std::string& filter) {
    printScaling(filter);
#ifdef GXBENCH_TITLES
    printTextScaling(filter);
#endif
}

void addAllRows() {
    addBlendRows();
    addBlurRows();
    addDilationRows();
    addFillRows();
    addGlowRows();
    addReliefRows();
    addShadowRows();
    addLimitRows();
    addLookRows();
#ifdef GXBENCH_LINES
#ifdef GXBENCH_EMOJI_FONT
    addColorGlyphRows();
#endif
    addFontRows();
    addLineRows();
#endif
#ifdef GXBENCH_TITLES
    addTitleRows();
    addThreadRows();
#ifdef GXBENCH_TOOL
    addCommandRows();
    addBatchRows();
#endif
#endif
}

}  // namespace

}  // namespace gxbench

// gxtext_bench [--instructions | --scaling | --memory | --pictures | --png] [--target NAME]
//              [--results FILE] [FILTER]
int main(int argc, char** argv) {
    struct Mode {
        std::string option;
        std::function<void(const std::string& filter)> run;
    };
    const Mode modes[] = {
        {"--instructions", gxbench::countInstructions},
        {"--scaling", gxbench::printAllScaling},
#ifdef GXBENCH_TEXT
        {"--memory", gxbench::printMemory},
#endif
#ifdef GXBENCH_TITLES
        {"--pictures", gxbench::savePictures},
        {"--png", gxbench::printPngCurve},
#endif
    };
    std::string filter;
    std::string results;
    std::function<void(const std::string&)> measure = [&](const std::string& wanted) {
        gxbench::printTable(wanted, results);
    };
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        const auto* mode = std::find_if(std::begin(modes), std::end(modes),
                                        [&](const Mode& m) { return m.option == word; });
        if (mode != std::end(modes)) {
            measure = mode->run;
        } else if (word == "--target" && i + 1 < argc) {
            GxFontEffect::kernels::forceSimdTarget(argv[++i]);
        } else if (word == "--results" && i + 1 < argc) {
            results = argv[++i];
        } else {
            filter = word;
        }
    }
    gxbench::addAllRows();
    measure(filter);
    return 0;
}
