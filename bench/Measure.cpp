#include "Measure.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <string>

namespace gxbench {

namespace {

double medianOf(std::vector<double> values) {
    if (values.empty()) return 0;
    const auto middle = values.begin() + static_cast<ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

// Sorts the library's reports by contender and repetition.
class Collector : public benchmark::BenchmarkReporter {
public:
    explicit Collector(size_t contenders) : times_(contenders) {}

    bool ReportContext(const Context& /*context*/) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration) continue;
            std::vector<double>& seconds = times_[std::stoul(run.run_name.function_name)].seconds;
            const auto repetition = static_cast<size_t>(run.repetition_index);
            seconds.resize(std::max(seconds.size(), repetition + 1));
            seconds[repetition] = run.real_accumulated_time / static_cast<double>(run.iterations);
        }
    }

    std::vector<Times> times_;
};

void takeTurns() {
    static const bool done = [] {
        std::string arguments[] = {"", "--benchmark_enable_random_interleaving=true"};
        char* argv[] = {arguments[0].data(), arguments[1].data(), nullptr};
        int argc = 2;
        benchmark::Initialize(&argc, argv);
        return true;
    }();
    (void)done;
}

}  // namespace

double Run::seconds(const std::function<void()>& prepare) const {
    if (prepare) prepare();
    if (seconds_) return seconds_();
    const auto start = std::chrono::steady_clock::now();
    run_();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double Times::median() const {
    return medianOf(seconds);
}

double Times::ratioTo(const Times& ours) const {
    std::vector<double> ratios;
    for (size_t i = 0; i < std::min(seconds.size(), ours.seconds.size()); ++i) {
        ratios.push_back(seconds[i] / ours.seconds[i]);
    }
    return medianOf(ratios);
}

std::vector<Times> measureInTurns(const std::function<void()>& prepare,
                                  const std::vector<Run>& runs) {
    takeTurns();
    double once = 0;
    for (const Run& run : runs) {
        if (!run) continue;
        run.seconds(prepare);  // warm-up
        once += run.seconds(prepare);
    }
    const int repetitions = std::clamp(static_cast<int>(1.0 / std::max(once, 1e-6)), 7, 41);
    constexpr double kSecondsPerRepetition = 0.002;
    for (size_t i = 0; i < runs.size(); ++i) {
        if (!runs[i]) continue;
        benchmark::internal::Benchmark* entry = benchmark::RegisterBenchmark(
            std::to_string(i).c_str(), [&prepare, &run = runs[i]](benchmark::State& state) {
                for (auto _ : state) state.SetIterationTime(run.seconds(prepare));
            });
        entry->UseManualTime()->Repetitions(repetitions);
        // What times itself settles in its own way.
        if (runs[i].isCall()) {
            entry->MinTime(kSecondsPerRepetition);
        } else {
            entry->Iterations(1);
        }
    }
    Collector collector(runs.size());
    benchmark::RunSpecifiedBenchmarks(&collector);
    benchmark::ClearRegisteredBenchmarks();
    return collector.times_;
}

}  // namespace gxbench
