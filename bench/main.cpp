// Runs the benchmarks and prints one table of ratios.
#include "memory-bench.h"
#include "ratio.h"

#include <cmath>
#include <cstdio>
#include <map>
#include <vector>

#include <malloc.h>

#include "embed/host.h"

namespace {

std::vector<Ratio> ratios;
constexpr const char *floor_suffix = " / floor";

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

// Memory that goes back to the system and is asked for again costs more than much of what is measured. Whether it does
// would hang on what ran before.
void keep_memory() {
    constexpr int most_memory = 1 << 30; // bytes, more than any benchmark needs
    mallopt(M_TRIM_THRESHOLD, most_memory);
    mallopt(M_MMAP_THRESHOLD, most_memory);
}

// Each benchmark starts on an orderly heap, whatever the ones before it have left.
void add_benchmark(const std::string &name, const std::function<void(benchmark::State &)> &body, bool has_own_time) {
    const auto on_orderly_heap = [body](benchmark::State &state) {
        malloc_trim(0);
        body(state);
    };
    auto *added = benchmark::RegisterBenchmark(name.c_str(), on_orderly_heap)->Unit(benchmark::kNanosecond);
    added->Repetitions(5)->ReportAggregatesOnly(true);
    if (has_own_time)
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

namespace {

void print_table(const Medians &medians) {
    std::printf("| what | time | beside | time | ratio |\n|---|---:|---|---:|---:|\n");
    for (const Ratio &each : ratios) {
        const auto figure = medians.nanoseconds.find(each.what);
        const auto floor = medians.nanoseconds.find(each.what + floor_suffix);
        if (figure == medians.nanoseconds.end() || floor == medians.nanoseconds.end())
            continue; // not asked for
        std::printf("| %s | %s | %s | %s | %.2f |\n", each.what.c_str(), readable(figure->second).c_str(),
                    each.floor_name.c_str(), readable(floor->second).c_str(), figure->second / floor->second);
    }
}

// How the time of "WHAT N UNIT" grows with N: 1 is in proportion to it, 2 with its square.
void print_growth(const Medians &medians, const std::string &what, long few, long many, const std::string &unit) {
    const auto less = medians.nanoseconds.find(what + " " + std::to_string(few) + " " + unit);
    const auto more = medians.nanoseconds.find(what + " " + std::to_string(many) + " " + unit);
    if (less != medians.nanoseconds.end() && more != medians.nanoseconds.end())
        std::printf("\nGrowth exponent of \"%s\" from %ld to %ld %s: %.2f.\n", what.c_str(), few, many, unit.c_str(),
                    std::log(more->second / less->second) /
                        std::log(static_cast<double>(many) / static_cast<double>(few)));
}

} // namespace

int main(int argc, char **argv) {
    if (run_memory_part(argc, argv))
        return 0;
    keep_memory();
    benchmark::Initialize(&argc, argv);
    maxhost::start_host({});
    add_hex_ratios();
    add_file_ratios();
    add_list_ratios();
    add_patcher_ratios();
    add_program_ratios();
    for (const Ratio &each : ratios) {
        add_benchmark(each.what, each.figure, each.figure_has_own_time);
        add_benchmark(each.what + floor_suffix, each.floor, each.floor_has_own_time);
    }
    Medians medians;
    benchmark::RunSpecifiedBenchmarks(&medians);
    print_table(medians);
    print_growth(medians, "read", 1000, 32767, "items");
    print_growth(medians, "write", 1000, 32767, "items");
    print_growth(medians, "open a patcher of", 500, 5000, "boxes");
    print_growth(medians, "save a patcher of", 500, 5000, "boxes");
    print_memory_ratio(argv[0]);
    maxhost::stop_host();
}
