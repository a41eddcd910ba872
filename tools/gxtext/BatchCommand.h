// gxtext batch: its options, what it says while it runs, and its exit status.
#pragma once

#include <string>
#include <vector>

#include "EncodingOptions.h"
#include "batch/Batch.h"

namespace CLI {
class App;
}

namespace gxtool {

// What the command line says beside the style.
struct BatchArguments {
    std::string input = "-";
    std::string inputFormat;
    std::string output;
    std::string manifest;
    std::string shard;
    EncodingOptions encoding;
    int jobs = 0;  // one a processor
    double timeout = 60;
    double memory = 0;
    bool fresh = false;
    bool failFast = false;
    bool strict = false;
};

// `arguments` lives as long as the parser.
void addBatchOptions(CLI::App& app, BatchArguments& arguments);

// Returns the exit status. `inputs` are files that no picture may replace.
int batchCommand(const BatchArguments& arguments, gxtext::TitleOptions title,
                 const std::vector<std::string>& inputs);

}  // namespace gxtool
