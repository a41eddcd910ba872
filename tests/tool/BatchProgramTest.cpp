// gxtext batch as a program: what it says, its exit status, and what is left when it is killed.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>
#include <set>

#include "Process.h"
#include "support/Fonts.h"
#include "support/Random.h"
#include "support/TempFolder.h"

namespace gxtool {
namespace {

namespace fs = std::filesystem;
using gxtest::Outcome;
using nlohmann::json;
using testing::HasSubstr;

std::string readFile(const fs::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::vector<std::string> linesOf(const fs::path& path) {
    std::ifstream stream(path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

class BatchProgram : public testing::Test {
protected:
    Outcome run(const std::string& arguments, const std::string& before = "") {
        return gxtest::runShell(before + " \"$program\" batch --font '" +
                                    gxtest::fontPath(gxtest::kNotoSans) + "' --font-size 20 " +
                                    arguments,
                                folder.path(""));
    }
    // By name.
    std::map<std::string, std::string> pictures(const std::string& name) const {
        std::map<std::string, std::string> all;
        for (const auto& entry : fs::directory_iterator(folder.path(name))) {
            all[entry.path().filename().string()] = readFile(entry.path());
        }
        return all;
    }

    gxtest::TempFolder folder;
};

TEST_F(BatchProgram, SomeRowsMayFailAndTheExitStatusSaysSo) {
    folder.write("rows.csv", "id,text,size\na,Hello,\nb,World,0\nc,Ciao,30\n");
    const Outcome outcome = run("--input rows.csv -o 'out/{id}.webp' --set size=25 --jobs 3");
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.err, testing::MatchesRegex(
                                 "gxtext: rows.csv: row 2: .\\.size: 0 is out of range 1-4096\n"
                                 "gxtext: 3 rows: 2 written, 0 unchanged, 1 failed; .*\n"));
    EXPECT_EQ(readFile(folder.path("out/a.webp")).substr(8, 7), "WEBPVP8");
    folder.write("good.csv", "text\nHello\n");
    EXPECT_EQ(run("--input good.csv -o out/a.png").status, 0);
    EXPECT_EQ(run("--input none.jsonl -o out/a.png").status, 1);
    EXPECT_EQ(run("--input good.csv -o 'out/{row}.png' --manifest good.csv").status, 1);
    EXPECT_EQ(run("--input - -o 'out/{no}.png'").status, 0) << "no rows at all";
}

// Rows that come one by one are drawn as they come; a stream has no end to look for doubles.
TEST_F(BatchProgram, DrawsEndlessStreamsAsTheyCome) {
    const Outcome stream = gxtest::runShell(
        "(printf '{\"text\":\"a\"}\\n'; until test -f out/1.png; do sleep 0.01; done;"
        " printf '{\"text\":\"b\"}\\n{\"text\":\"c\",\"id\":1}\\n') |"
        " \"$program\" batch -o 'out/{id}.png' --manifest - --font '" +
            gxtest::fontPath(gxtest::kNotoSans) + "'",
        folder.path(""));
    EXPECT_EQ(stream.status, 3);
    EXPECT_THAT(stream.err, HasSubstr("row 3: out/1.png: the output of row 1 already\n"));
    EXPECT_EQ(std::count(stream.out.begin(), stream.out.end(), '\n'), 3);
}

// A batch over rows that change from one time to the next, killed at any moment: every picture is
// one of those that were asked for, whole; no row is in the manifest twice; in the end all is as
// if nothing had happened. GXTEXT_KILLS is how often, 20 unless given.
TEST_F(BatchProgram, KilledAtAnyMomentItLosesAndDoublesNothing) {
    const char* const given = std::getenv("GXTEXT_KILLS");
    const int kills = given ? std::atoi(given) : 20;
    constexpr int kRows = 48;
    std::chrono::milliseconds wholeTime{0};
    for (const char* version : {"0", "1"}) {
        const auto start = std::chrono::steady_clock::now();
        std::string rows;
        for (int i = 0; i < kRows; i++) {
            // Every third row is the same in both.
            const std::string text = std::to_string(i) + (i % 3 ? version : "");
            rows += "{\"text\":\"" + text + "\"}\n";
        }
        folder.write(std::string("rows") + version, rows);
        const std::string whole = std::string("whole") + version;
        ASSERT_EQ(run(std::string("--input rows") + version + " -o 'out/{id}.png' --manifest " +
                      whole + ".jsonl && mv out " + whole)
                      .status,
                  0);
        wholeTime = std::chrono::duration_cast<std::chrono::milliseconds>(
            std::chrono::steady_clock::now() - start);
    }
    const std::map<std::string, std::string> wanted[] = {pictures("whole0"), pictures("whole1")};
    std::set<std::string> wantedLines;
    for (const char* file : {"whole0.jsonl", "whole1.jsonl"}) {
        for (const std::string& line : linesOf(folder.path(file))) wantedLines.insert(line);
    }
    fs::create_directory(folder.path("out"));
    gxtest::Random random;
    GX_TRACE_SEED(random);
    int killed = 0;
    for (int i = 0; i < kills; i++) {
        char seconds[16];
        const auto longest = static_cast<int>(std::max<int64_t>(20, wholeTime.count() * 9 / 10));
        snprintf(seconds, sizeof(seconds), "%.3f", random.between(5, longest) * 0.001);
        const std::string rows = "rows" + std::to_string(i % 2);
        const Outcome outcome = run("--jobs 3 -o 'out/{id}.png' --manifest m.jsonl --input " + rows,
                                    std::string("timeout --foreground -s KILL ") + seconds);
        killed += outcome.status == 137;
        for (const auto& [name, bytes] : pictures("out")) {
            if (name.starts_with(".gxtext-")) continue;  // whole, and on its way when it ended
            EXPECT_TRUE(bytes == wanted[0].at(name) || bytes == wanted[1].at(name)) << name;
        }
        std::vector<std::string> lines = linesOf(folder.path("m.jsonl"));
        if (!lines.empty() && !lines.back().ends_with('}')) lines.pop_back();
        for (size_t row = 0; row < lines.size(); row++) {
            EXPECT_EQ(wantedLines.count(lines[row]), 1u) << lines[row];
            EXPECT_EQ(json::parse(lines[row])["row"], row + 1);
        }
    }
    EXPECT_GT(killed, kills / 4) << "too few to say anything";
    ASSERT_EQ(run("-o 'out/{id}.png' --manifest m.jsonl --input rows0").status, 0);
    EXPECT_EQ(readFile(folder.path("m.jsonl")), readFile(folder.path("whole0.jsonl")));
    for (const auto& [name, bytes] : wanted[0]) {
        EXPECT_TRUE(readFile(fs::path(folder.path("out")) / name) == bytes) << name;
    }
    EXPECT_FALSE(fs::exists(folder.path("m.jsonl.known")));
}

}  // namespace
}  // namespace gxtool
