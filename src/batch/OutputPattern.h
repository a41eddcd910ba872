// Names of the pictures of a batch.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "batch/Row.h"

namespace gxtext {

// A text that is safe inside a file's name, on every system: no separators, wildcards, control
// characters or dot at its start; not empty; a long one is cut and told apart by eight digits of
// its hash. Takes and gives UTF-8.
std::string safeFileName(std::string_view text);

// "out/{id}.png": {id}, {row}, {style} and any field of the row by its path stand for their values,
// made safe; {{ and }} for braces.
class OutputPattern {
public:
    // Throws Error for a brace without its other one.
    explicit OutputPattern(const std::string& pattern);

    // Throws StyleError for a field that the row does not have.
    std::string nameOf(const Row& row) const;

private:
    struct Part {
        bool isField = false;
        std::string text;
    };
    std::vector<Part> parts_;
};

// Tells two rows of one name. Takes about 70 bytes a name.
class OutputNames {
public:
    // The row that has the name already, or nothing when it is new.
    std::optional<uint64_t> add(const std::string& name, uint64_t row);

private:
    std::map<std::array<uint64_t, 2>, uint64_t> rows_;
};

// By which a name is known, in less room.
std::array<uint64_t, 2> nameKey(const std::string& name);

}  // namespace gxtext
