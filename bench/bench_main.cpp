// Runs the benchmarks and prints each one's time as a multiple of the plain
// buffer copy, the yardstick the speed targets are stated against.
#include <benchmark/benchmark.h>
#include <cstdio>
#include <map>
#include <string>

namespace {

class RatioReporter : public benchmark::ConsoleReporter {
  public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration && run.iterations > 0) {
                times_[run.benchmark_name()] = run.GetAdjustedRealTime();
            }
        }
        ConsoleReporter::ReportRuns(runs);
    }

    void printRatios() const {
        const auto copy = times_.find("BM_PlainCopy");
        if (copy == times_.end() || copy->second <= 0) return;
        std::printf("\nTime as a multiple of the plain copy (%.2f ms):\n", copy->second);
        for (const auto& [name, time] : times_) {
            // Previews work on the dialog's small copy: their own time is the figure.
            if (name == copy->first || name.starts_with("BM_Preview")) continue;
            std::printf("  %-40s %6.2fx\n", name.c_str(), time / copy->second);
        }
    }

  private:
    std::map<std::string, double> times_;
};

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatios();
    benchmark::Shutdown();
    return 0;
}
