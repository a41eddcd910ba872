// Many titles in one run: rows in, pictures and a manifest out.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "batch/OutputPattern.h"
#include "batch/Row.h"
#include "batch/RowReader.h"
#include "batch/TitleWork.h"
#include "batch/WorkerPool.h"

namespace gxtext {

// Every N-th row, beginning with row `index`: 1 to `count`.
struct Shard {
    uint64_t index = 1;
    uint64_t count = 1;
};

struct BatchOptions {
    TitleOptions title;
    std::string input = "-";  // file, or "-" for standard input
    RowFormat format = RowFormat::kJsonLines;
    OutputPattern output{""};
    std::string manifest{};  // file, "-" for standard output, or empty for none
    bool keeps = true;       // what the manifest says is done already
    int jobs = 1;
    WorkerLimits limits{};
    Shard shard{};
    bool failFast = false;
};

struct BatchCounts {
    uint64_t rows = 0;       // that are through, of this shard
    uint64_t written = 0;    // pictures
    uint64_t unchanged = 0;  // pictures that were there already
    uint64_t failed = 0;
    uint64_t missing = 0;              // pictures with characters that no font has
    uint64_t firstMissing = 0;         // the first row of them; 0 for none
    std::optional<uint64_t> expected;  // rows in all, where the input is a file
};

// What a batch tells while it runs. Any of them may be empty.
struct BatchEvents {
    std::function<void(uint64_t row, const RowError&)> failed;  // in the order of the rows
    std::function<void(const BatchCounts&)> progress;           // several times a second
};

// Draws every row in worker processes and returns when all are through, or, with failFast, after
// the first that failed. Pictures, manifest and counts are the same for any number of jobs.
//
// Two rows with one name for their pictures are an error before anything is written, where the
// input is a regular file, which is then read twice; of an endless stream the second one fails.
//
// Throws Error and what derives from it for what no row is to blame for: an input that cannot be
// read, a manifest that cannot be written, two rows of one name. The process must not have threads.
BatchCounts runBatch(const BatchOptions& options, const BatchEvents& events);

}  // namespace gxtext
