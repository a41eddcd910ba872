// Rows of many titles in one run, as files: the time of one by the clock, with all that belongs to
// it, from the start of the program to its end.
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <vector>

#include "Bench.h"
#include "ChildProcess.h"
#include "PeerProcess.h"
#include "TitlePicture.h"
#include "Workplace.h"

namespace gxbench {

namespace {

constexpr int kTitles = 400;
constexpr int kPeerTitles = 60;

struct Subject {
    std::string name;
    std::vector<std::string> options;
    int jobs;
    double rate;       // titles a second that it is to reach; 0 for none
    bool againstPeer;  // Pillow with a process a processor
};

int processors() {
    return std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
}

// Seconds a title.
Run batchRun(const Subject& subject, const TitlePicture& picture) {
    const auto workplace = std::make_shared<Workplace>();
    const std::string rows = workplace->file("rows.jsonl");
    std::ofstream stream(rows);
    for (int i = 0; i < kTitles; ++i) stream << R"({"text":"Golden Hour )" << i % 10 << "\"}\n";
    stream.close();
    std::vector<std::string> command = {
        GXBENCH_TOOL, "batch",          std::string(GXBENCH_PICTURES) + "/title.json",
        "--font",     picture.fontFile, "--input",
        rows,         "--manifest",     workplace->file("manifest.jsonl"),
        "--fresh",    "--jobs",         std::to_string(subject.jobs)};
    command.insert(command.end(), subject.options.begin(), subject.options.end());
    const bool isWebp = std::find(command.begin(), command.end(), "webp") != command.end();
    command.insert(command.end(), {"--output", workplace->file(isWebp ? "{id}.webp" : "{id}.png")});
    if (cpuSeconds(command) < 0) return {};
    return [command, workplace] {
        const auto start = std::chrono::steady_clock::now();
        if (cpuSeconds(command) < 0) return std::numeric_limits<double>::infinity();
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        return taken.count() / kTitles;
    };
}

// Files by a pool of processes that are there already.
Peer pillowPeer(const TitlePicture& picture) {
    auto job = nlohmann::json::parse(picture.job());
    job["titles"] = kPeerTitles;
    Peer peer =
        processPeer("Pillow", {peerFolder() + "/python/bin/python", peerProgram("pillow_batch.py")},
                    job.dump());
    peer.target = 10;
    if (!peer.run) return peer;
    const Run all = peer.run;
    peer.run = [all] { return all.seconds({}) / kPeerTitles; };
    return peer;
}

Contenders contendersOf(const Subject& subject) {
    const TitlePicture picture = titlePicture("title", GXBENCH_FONT, 0);
    Contenders contenders;
    contenders.ours = batchRun(subject, picture);
    if (subject.rate > 0) {
        const double seconds = 1 / subject.rate;
        const std::string name = std::to_string(static_cast<int>(subject.rate)) + " a second";
        contenders.peers.push_back({name, [seconds] { return seconds; }, "what is asked for", 1});
    }
    if (subject.againstPeer) contenders.peers.push_back(pillowPeer(picture));
    return contenders;
}

}  // namespace

void addBatchRows() {
    const int all = processors();
    const std::string jobs = std::to_string(all) + (all == 1 ? " job" : " jobs");
    static const Subject kSubjects[] = {
        {"batch: 1 job, PNG", {}, 1, 0, false},
        {"batch: " + jobs + ", PNG", {}, all, 600, true},
        {"batch: 1 job, PNG fast", {"--compression", "fast"}, 1, 0, false},
        {"batch: " + jobs + ", PNG fast", {"--compression", "fast"}, all, 1500, true},
        {"batch: " + jobs + ", WebP fast",
         {"--format", "webp", "--compression", "fast"},
         all,
         0,
         false},
    };
    for (const Subject& subject : kSubjects) {
        addRow({subject.name, "", {}, 0, [&subject] { return contendersOf(subject); }});
    }
}

}  // namespace gxbench
