// Runs the benchmarks and prints one table of ratios.
#include "ratio.h"

#include <cstdio>
#include <map>
#include <vector>

#include "embed/host.h"

namespace {

std::vector<Ratio> ratios;

// Keeps the median of every benchmark and prints nothing itself.
class Medians : public benchmark::BenchmarkReporter {
  public:
    bool ReportContext(const Context &) override { return true; }

    void ReportRuns(const std::vector<Run> &runs) override {
        for (const Run &run : runs)
            if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "median")
                nanoseconds[run.run_name.function_name] = run.GetAdjustedRealTime();
    }

    std::map<std::string, double> nanoseconds;
};

void add_benchmark(const std::string &name, const std::function<void(benchmark::State &)> &body, bool manual_time) {
    auto *added = benchmark::RegisterBenchmark(name.c_str(), body)->Unit(benchmark::kNanosecond);
    added->Repetitions(5)->ReportAggregatesOnly(true);
    if (manual_time)
        added->UseManualTime();
    else
        added->UseRealTime();
}

std::string readable(double nanoseconds) {
    char text[32];
    if (nanoseconds < 1e3)
        std::snprintf(text, sizeof text, "%.0f ns", nanoseconds);
    else if (nanoseconds < 1e6)
        std::snprintf(text, sizeof text, "%.1f us", nanoseconds / 1e3);
    else
        std::snprintf(text, sizeof text, "%.1f ms", nanoseconds / 1e6);
    return text;
}

} // namespace

void add_ratio(Ratio ratio) { ratios.push_back(std::move(ratio)); }

int main(int argc, char **argv) {
    benchmark::Initialize(&argc, argv);
    maxhost::start_host({});
    add_file_ratios();
    add_hex_ratios();
    add_list_ratios();
    for (const Ratio &each : ratios) {
        add_benchmark(each.what, each.figure, each.manual_time);
        add_benchmark(each.what + " / floor", each.floor, false);
    }
    Medians medians;
    benchmark::RunSpecifiedBenchmarks(&medians);
    std::printf("| what | time | beside | time | ratio |\n|---|---:|---|---:|---:|\n");
    for (const Ratio &each : ratios) {
        const double figure = medians.nanoseconds[each.what];
        const double floor = medians.nanoseconds[each.what + " / floor"];
        std::printf("| %s | %s | %s | %s | %.2f |\n", each.what.c_str(), readable(figure).c_str(),
                    each.floor_name.c_str(), readable(floor).c_str(), figure / floor);
    }
    maxhost::stop_host();
}
