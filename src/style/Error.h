// What the layers in namespace gxtext throw.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

#include "GxExport.h"

namespace gxtext {

// Base of all of them. what() is a message for people: place, reason, and what is allowed.
class GXTEXT_API Error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// One mistake in a style.
struct StyleProblem {
    std::string path;     // JSON path: "$.effects[2].size"; "$" for the whole
    std::string reason;   // a sentence: "140 is out of range 0-100"
    std::string allowed;  // what would do instead: "0-100"; empty where the reason says it all
};

// A style that is none: every mistake, in the order of the file. what() has a line for each,
// "title.json: $.effects[2].size: 140 is out of range 0-100", and a last one with the number of
// those past kMaxProblems.
class GXTEXT_API StyleError : public Error {
public:
    static constexpr size_t kMaxProblems = 20;

    // `source` is what messages call the file; may be empty. `problems` beyond kMaxProblems are
    // cut off; `total` counts those that were never recorded too.
    StyleError(const std::string& source, std::vector<StyleProblem> problems, size_t total);
    StyleError(const std::string& source, StyleProblem problem);

    // At least one, at most kMaxProblems.
    const std::vector<StyleProblem>& problems() const { return problems_; }
    // All mistakes, those that are not in problems() included.
    size_t total() const { return total_; }

private:
    std::vector<StyleProblem> problems_;
    size_t total_;
};

}  // namespace gxtext
