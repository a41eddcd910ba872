// One title of a batch, as its row says.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "style/StyleSetting.h"

namespace gxtext {

// Why there is no picture of a row.
struct RowError {
    std::string place;   // "$.size", a file, "the worker"
    std::string reason;  // a sentence, with what is allowed
};

struct Row {
    uint64_t number = 0;                 // counted from 1
    std::string id;                      // its number in digits unless it has one
    std::string style;                   // file; empty for the batch's own
    std::vector<StyleSetting> settings;  // its other fields, in their order
    std::optional<RowError> error;       // set for a row that cannot be read
};

}  // namespace gxtext
