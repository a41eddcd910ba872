#include "style/Error.h"

#include <algorithm>
#include <utility>

namespace gxtext {

namespace {

std::string message(const std::string& source, const std::vector<StyleProblem>& problems,
                    size_t total) {
    const std::string prefix = source.empty() ? "" : source + ": ";
    const size_t shown = std::min(problems.size(), StyleError::kMaxProblems);
    std::string text;
    for (size_t i = 0; i < shown; i++) {
        if (i > 0) text += '\n';
        text.append(prefix).append(problems[i].path).append(": ").append(problems[i].reason);
    }
    if (total > shown) {
        const size_t rest = total - shown;
        text.append("\n").append(prefix).append("and ").append(std::to_string(rest));
        text.append(rest == 1 ? " more mistake" : " more mistakes");
    }
    return text;
}

}  // namespace

StyleError::StyleError(const std::string& source, std::vector<StyleProblem> problems, size_t total)
    : Error(message(source, problems, total)), problems_(std::move(problems)), total_(total) {
    if (problems_.size() > kMaxProblems) problems_.resize(kMaxProblems);
}

StyleError::StyleError(const std::string& source, StyleProblem problem)
    : StyleError(source, std::vector<StyleProblem>{std::move(problem)}, 1) {}

}  // namespace gxtext
