// Times of runs that do the same work, taken in turns.
#pragma once

#include <functional>
#include <vector>

namespace gxbench {

// Times of one contender, a value for each repetition.
struct Times {
    std::vector<double> seconds;

    double median() const;
    // The times of `this` over those of `ours`, repetition by repetition: what slows the machine
    // for a while slows both. 0 where one of them has none.
    double ratioTo(const Times& ours) const;
};

// Repeats every run until its median settles, in random turns; `prepare` comes before each and is
// not timed. Empty functions give no times.
std::vector<Times> measureInTurns(const std::function<void()>& prepare,
                                  const std::vector<std::function<void()>>& runs);

}  // namespace gxbench
