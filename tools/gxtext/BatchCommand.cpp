#include "BatchCommand.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <thread>

#include "Streams.h"
#include "ToolError.h"

namespace gxtool {

namespace {

using gxtext::BatchCounts;
using Clock = std::chrono::steady_clock;

constexpr int kMostJobs = 1024;
constexpr uint64_t kMostFailuresTold = 20;

double secondsSince(Clock::time_point start) {
    return std::max(std::chrono::duration<double>(Clock::now() - start).count(), 1e-3);
}

// "I/N"
gxtext::Shard parseShard(const std::string& text) {
    gxtext::Shard shard;
    const char* const end = text.data() + text.size();
    const auto index = std::from_chars(text.data(), end, shard.index);
    const bool hasSlash = index.ec == std::errc() && index.ptr != end && *index.ptr == '/';
    const auto count = hasSlash ? std::from_chars(index.ptr + 1, end, shard.count) : index;
    if (!hasSlash || count.ec != std::errc() || count.ptr != end || shard.index < 1 ||
        shard.index > shard.count) {
        throw ToolError("--shard " + text + " is not I/N with I from 1 to N", kUsage);
    }
    return shard;
}

gxtext::RowFormat rowFormat(const BatchArguments& arguments) {
    const std::string extension =
        CLI::detail::to_lower(std::filesystem::path(arguments.input).extension().string());
    const bool isCsv =
        arguments.inputFormat.empty() ? extension == ".csv" : arguments.inputFormat == "csv";
    return isCsv ? gxtext::RowFormat::kCsv : gxtext::RowFormat::kJsonLines;
}

gxtext::OutputPattern outputPattern(const BatchArguments& arguments) {
    const std::filesystem::path path = arguments.output;
    const bool isNamed = gxtext::pictureFormatOf(path) || arguments.encoding.format;
    if (!isNamed) {
        throw ToolError("--output " + arguments.output +
                            ": end the name in .png or .webp, or give "
                            "--format",
                        kUsage);
    }
    try {
        return gxtext::OutputPattern(arguments.output);
    } catch (const gxtext::Error& error) {
        throw ToolError(std::string("--output: ") + error.what(), kUsage);
    }
}

// What goes to standard error while a batch runs, and at its end.
class Report {
public:
    explicit Report(std::string input)
        : input_(input == "-" ? "standard input" : std::move(input)),
          onTerminal_(isatty(STDERR_FILENO) != 0) {}

    void tellFailure(uint64_t row, const gxtext::RowError& error) {
        if (++failures_ > kMostFailuresTold) return;
        clearLine();
        fprintf(stderr, "gxtext: %s: row %llu: %s: %s\n", input_.c_str(),
                static_cast<unsigned long long>(row), error.place.c_str(), error.reason.c_str());
    }

    void tellProgress(const BatchCounts& counts) {
        if (!onTerminal_) return;
        const double rate = static_cast<double>(counts.rows) / secondsSince(start_);
        std::string text = std::to_string(counts.rows);
        if (counts.expected) text += " of " + std::to_string(*counts.expected);
        char more[96];
        snprintf(more, sizeof(more), " rows, %.0f a second", rate);
        text += more;
        if (counts.expected && rate > 0) {
            const auto left = static_cast<double>(*counts.expected - counts.rows) / rate;
            snprintf(more, sizeof(more), ", %.0f s left", left);
            text += more;
        }
        if (counts.failed > 0) text += ", " + std::to_string(counts.failed) + " failed";
        fprintf(stderr, "\r\033[K%s", text.c_str());
        isLineOpen_ = true;
    }

    void tellEnd(const BatchCounts& counts) {
        clearLine();
        if (failures_ > kMostFailuresTold) {
            fprintf(stderr, "gxtext: %s: and %llu more rows\n", input_.c_str(),
                    static_cast<unsigned long long>(failures_ - kMostFailuresTold));
        }
        if (counts.missing > 0) {
            fprintf(
                stderr,
                "gxtext: warning: no font has some characters of %llu rows, first of row %llu\n",
                static_cast<unsigned long long>(counts.missing),
                static_cast<unsigned long long>(counts.firstMissing));
        }
        const double seconds = secondsSince(start_);
        fprintf(stderr,
                "gxtext: %llu rows: %llu written, %llu unchanged, %llu failed; %.1f s, "
                "%.0f a second\n",
                static_cast<unsigned long long>(counts.rows),
                static_cast<unsigned long long>(counts.written),
                static_cast<unsigned long long>(counts.unchanged),
                static_cast<unsigned long long>(counts.failed), seconds,
                static_cast<double>(counts.rows) / seconds);
    }

private:
    void clearLine() {
        if (isLineOpen_) fputs("\r\033[K", stderr);
        isLineOpen_ = false;
    }

    const std::string input_;
    const bool onTerminal_;
    const Clock::time_point start_ = Clock::now();
    uint64_t failures_ = 0;
    bool isLineOpen_ = false;
};

void addRunOptions(CLI::App& app, BatchArguments& arguments) {
    const char* const group = "Run";
    app.add_option("--jobs", arguments.jobs,
                   "Processes that draw, 1-1024 (default: one a processor)")
        ->type_name("N")
        ->check(CLI::Range(1, kMostJobs).description(""))
        ->group(group);
    app.add_option("--timeout", arguments.timeout,
                   "Seconds that a row may take, 0-86400; 0 for any time (default 60)")
        ->type_name("S")
        ->check(CLI::Range(0.0, 86400.0).description(""))
        ->group(group);
    app.add_option("--memory", arguments.memory,
                   "Megabytes that a process may take, 0-1048576; 0 for any (default 0)")
        ->type_name("MB")
        ->check(CLI::Range(0.0, 1048576.0).description(""))
        ->group(group);
    app.add_option("--shard", arguments.shard,
                   "Part I of N of the rows alone: every N-th, from row I")
        ->type_name("I/N")
        ->group(group);
    app.add_flag("--fresh", arguments.fresh, "Draw what the manifest says is done, too")
        ->group(group);
    app.add_flag("--fail-fast", arguments.failFast, "Stop at the first row that fails")
        ->group(group);
}

}  // namespace

void addBatchOptions(CLI::App& app, BatchArguments& arguments) {
    const char* const group = "Rows";
    app.add_option("--input", arguments.input,
                   "Rows: JSON lines, or CSV with a header; - reads standard input (default -)")
        ->type_name("FILE|-")
        ->group(group);
    app.add_option("--input-format", arguments.inputFormat,
                   "jsonl or csv (default: by the input's name, else jsonl)")
        ->type_name("FORMAT")
        ->check(CLI::IsMember({"jsonl", "csv"}).description(""))
        ->group(group);
    app.add_option("-o,--output", arguments.output,
                   "Picture of each row: {id}, {row} and {FIELD} stand for the row's values")
        ->type_name("PATTERN")
        ->required()
        ->group("Output");
    app.add_option("--manifest", arguments.manifest,
                   "What came of each row, as JSON lines; a batch that was stopped goes on from it")
        ->type_name("FILE|-")
        ->group("Output");
    app.add_flag("--strict", arguments.strict, "A row with a character without a glyph fails")
        ->group("Output");
    addEncoding(app, arguments.encoding);
    addRunOptions(app, arguments);
}

int batchCommand(const BatchArguments& arguments, gxtext::TitleOptions title,
                 const std::vector<std::string>& inputs) {
    if (arguments.input == "-" && std::find(inputs.begin(), inputs.end(), "-") != inputs.end()) {
        throw ToolError("standard input can be the style or the rows, not both", kUsage);
    }
    title.format = arguments.encoding.format;
    title.compression = arguments.encoding.compression;
    title.strict = arguments.strict;
    gxtext::BatchOptions options{std::move(title)};
    options.input = arguments.input;
    options.format = rowFormat(arguments);
    options.output = outputPattern(arguments);
    options.manifest = arguments.manifest;
    options.keeps = !arguments.fresh;
    options.jobs =
        arguments.jobs > 0
            ? arguments.jobs
            : std::clamp<int>(static_cast<int>(std::thread::hardware_concurrency()), 1, kMostJobs);
    options.limits.timeout =
        std::chrono::milliseconds(static_cast<int64_t>(arguments.timeout * 1000));
    options.limits.memoryBytes = static_cast<size_t>(arguments.memory * (1 << 20));
    if (!arguments.shard.empty()) options.shard = parseShard(arguments.shard);
    options.failFast = arguments.failFast;

    Report report(arguments.input);
    const BatchCounts counts = runBatch(
        options,
        {[&](uint64_t row, const gxtext::RowError& error) { report.tellFailure(row, error); },
         [&](const BatchCounts& now) { report.tellProgress(now); }});
    report.tellEnd(counts);
    return counts.failed > 0 ? kSomeRows : kOk;
}

}  // namespace gxtool
