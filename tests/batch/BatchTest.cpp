// Whole batches.
#include "batch/Batch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

#include "scene/Png.h"
#include "scene/SceneError.h"
#include "support/Fonts.h"
#include "support/TempFolder.h"

namespace gxtext {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

class BatchTest : public testing::Test {
protected:
    BatchTest() {
        options_.title.style.size = 20;
        options_.title.version = "1";
        options_.input = folder_.path("rows.jsonl");
        options_.manifest = folder_.path("made/on/the/way/manifest.jsonl");
        setOutput("out/{id}.png");
    }

    void setOutput(const std::string& pattern) {
        options_.output = OutputPattern(folder_.path(pattern));
    }
    void writeRows(const std::string& rows) { folder_.write("rows.jsonl", rows); }

    BatchCounts run() {
        failures_.clear();
        return runBatch(options_, {[this](uint64_t row, const RowError& error) {
                                       failures_.push_back(std::to_string(row) + " " + error.place +
                                                           ": " + error.reason);
                                   },
                                   {}});
    }

    std::string bytesOf(const std::string& file) const {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    std::string manifest() const { return bytesOf(options_.manifest); }
    std::vector<json> lines() const {
        std::vector<json> all;
        std::ifstream stream(options_.manifest);
        for (std::string line; std::getline(stream, line);) all.push_back(json::parse(line));
        return all;
    }

    gxtest::TempFolder folder_;
    BatchOptions options_{TitleOptions{Style(), [](Style style) { return style; }, std::nullopt,
                                       FontSource::files({gxtest::fontPath(gxtest::kNotoSans)})}};
    std::vector<std::string> failures_;
};

const char* const kRows = R"({"id":"a","text":"Hello"})"
                          "\n"
                          R"({"id":"b","text":"x\ny","size":30,"padding":[1,2,3,4]})"
                          "\n"
                          R"({"id":"c","text":"wrong","size":9000})"
                          "\n"
                          R"({"id":"d","text":"\uDBC0\uDC00"})"
                          "\n"
                          R"({"id":"e"})"
                          "\n";

TEST_F(BatchTest, DrawsEachRowAndTellsWhatCameOfIt) {
    writeRows(kRows);
    const BatchCounts counts = run();
    EXPECT_EQ(counts.rows, 5u);
    EXPECT_EQ(counts.written, 3u);
    EXPECT_EQ(counts.expected, 5u);
    EXPECT_EQ(counts.firstMissing, 4u);
    EXPECT_THAT(failures_, ElementsAre("3 $.size: 9000 is out of range 1-4096",
                                       "5 the text: none given, and none in the style"));
    const std::vector<json> all = lines();
    ASSERT_EQ(all.size(), 5u);
    for (size_t i = 0; i < all.size(); i++) EXPECT_EQ(all[i]["row"], i + 1);
    Renderer renderer(options_.title.fonts);
    Style style = options_.title.style;
    style.size = 30;
    style.padding = {1, 2, 3, 4};
    const Picture expected = renderer.render(style, "x\ny");
    EXPECT_EQ(bytesOf(all[1]["output"]), expected.toPng());
    EXPECT_EQ(all[1]["width"], expected.width());
    EXPECT_EQ(all[1]["lines"].size(), 2u);
    EXPECT_EQ(all[1]["lines"][1]["text"], "y");
    EXPECT_EQ(all[3]["missing"], json({"U+100000"}));
    EXPECT_EQ(all[2]["error"]["place"], "$.size");
    EXPECT_FALSE(std::filesystem::exists(folder_.path("out/c.png")));
    // FIPS 180-4's own examples are the library's business; this one is of the file.
    EXPECT_EQ(all[0]["bytes"], bytesOf(all[0]["output"]).size());

    const std::string before = manifest();
    for (const int jobs : {1, 8}) {
        options_.jobs = jobs;
        options_.keeps = false;
        run();
        EXPECT_EQ(manifest(), before) << jobs;
    }
}

TEST_F(BatchTest, GoesOnWithWhatIsMissingOrHasChanged) {
    writeRows(kRows);
    run();
    const std::string before = manifest();
    EXPECT_EQ(run().unchanged, 3u);
    EXPECT_EQ(manifest(), before);

    // Cut in the middle of a line, a picture gone, a row more, one other.
    std::filesystem::resize_file(options_.manifest, before.size() / 2);
    std::filesystem::remove(folder_.path("out/a.png"));
    BatchCounts counts = run();
    EXPECT_EQ(manifest(), before);
    EXPECT_GE(counts.written, 1u);
    writeRows(std::string("{\"id\":\"new\",\"text\":\"n\"}\n") + kRows + "{\"text\":\"z\"}\n");
    counts = run();
    EXPECT_EQ(counts.written, 2u);
    EXPECT_EQ(counts.unchanged, 3u) << "rows that moved";
    EXPECT_EQ(lines()[1]["row"], 2);
    EXPECT_FALSE(std::filesystem::exists(options_.manifest + ".known"));

    // What pictures depend on beside the row.
    options_.title.style.color = Color{0xFFFF0000};
    EXPECT_EQ(run().unchanged, 0u);
    options_.title.version = "2";
    EXPECT_EQ(run().unchanged, 0u);
    options_.title.compression = PngCompression::kFast;
    EXPECT_EQ(run().unchanged, 0u);
    EXPECT_EQ(run().written, 0u);
}

TEST_F(BatchTest, RefusesTwoRowsOfOneNameBeforeAnythingIsWritten) {
    writeRows(
        "{\"text\":\"a\",\"id\":\"x/y\"}\n{\"text\":\"a\"}\n{\"text\":\"b\",\"id\":\"x:y\"}\n");
    try {
        run();
        ADD_FAILURE();
    } catch (const FileError& error) {
        EXPECT_THAT(error.what(),
                    HasSubstr("the output of row 1 and of row 3; nothing was written"));
    }
    EXPECT_FALSE(std::filesystem::exists(folder_.path("out")));
    EXPECT_FALSE(std::filesystem::exists(options_.manifest));
}

TEST_F(BatchTest, ReplacesNothingThatIsNoPictureOfIts) {
    std::filesystem::create_directory(folder_.path("out"));
    std::filesystem::copy_file(GXTEXT_SOURCE_DIR "/examples/styles/patterns/checks.png",
                               folder_.path("out/p.png"));
    const std::string picture = bytesOf(folder_.path("out/p.png"));
    writeRows(R"({"id":"p","text":"a","effects":[{"type":"pattern","pattern":")" +
              folder_.path("out/p.png") + "\"}]}\n");
    EXPECT_EQ(run().failed, 1u);
    EXPECT_THAT(failures_.at(0), HasSubstr("which is read"));
    EXPECT_EQ(bytesOf(folder_.path("out/p.png")), picture);
    options_.manifest = folder_.write("notes.txt", "my notes\n");
    EXPECT_THROW(run(), FileError);
    EXPECT_EQ(manifest(), "my notes\n");
}

TEST_F(BatchTest, ShardsAreTheWholeInParts) {
    writeRows(kRows);
    run();
    std::multiset<std::string> whole, parts;
    for (const json& line : lines()) whole.insert(line.dump());
    options_.keeps = false;
    for (options_.shard = {1, 3}; options_.shard.index <= 3; options_.shard.index++) {
        run();
        for (const json& line : lines()) parts.insert(line.dump());
    }
    EXPECT_EQ(parts, whole);
}

TEST_F(BatchTest, StopsAtTheFirstFailureWhenAsked) {
    writeRows(kRows);
    options_.failFast = true;
    options_.jobs = 4;
    EXPECT_EQ(run().failed, 1u);
    EXPECT_EQ(lines().size(), 3u);
    writeRows(R"({"id":"d","text":"\uDBC0\uDC00"})");
    options_.title.strict = true;
    EXPECT_EQ(run().failed, 1u);
    EXPECT_THAT(failures_.at(0), HasSubstr("U+100000"));
}

}  // namespace
}  // namespace gxtext
