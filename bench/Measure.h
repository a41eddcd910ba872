// Times of runs that do the same work, taken in turns.
#pragma once

#include <functional>
#include <type_traits>
#include <utility>
#include <vector>

namespace gxbench {

// What is timed: a function by the clock here, one that returns a double by its own, in seconds.
// Empty ones are contenders that are not there.
class Run {
public:
    Run() = default;
    template <class Function>
    requires std::is_invocable_v<Function&> Run(Function run) {
        if constexpr (std::is_constructible_v<bool, Function>) {
            if (!static_cast<bool>(run)) return;
        }
        if constexpr (std::is_same_v<std::invoke_result_t<Function&>, double>) {
            seconds_ = std::move(run);
        } else {
            run_ = std::move(run);
        }
    }

    explicit operator bool() const { return run_ || seconds_; }
    // Whether the work is done here, by calling it.
    bool isCall() const { return static_cast<bool>(run_); }
    void call() const { run_(); }
    // Calls `prepare`, which may be empty, then runs.
    double seconds(const std::function<void()>& prepare) const;

private:
    std::function<void()> run_;
    std::function<double()> seconds_;
};

// Times of one contender, a value for each repetition.
struct Times {
    std::vector<double> seconds;

    double median() const;
    // The times of `this` over those of `ours`, repetition by repetition: what slows the machine
    // for a while slows both. 0 where one of them has none.
    double ratioTo(const Times& ours) const;
};

// Repeats every run until its median settles, in random turns; `prepare` comes before each and is
// not timed. Empty runs give no times.
std::vector<Times> measureInTurns(const std::function<void()>& prepare,
                                  const std::vector<Run>& runs);

}  // namespace gxbench
