// Ratios: a figure and the floor that it is held against, measured side by side.
#pragma once

#include <functional>
#include <string>

#include <benchmark/benchmark.h>

// One row of the table: what is measured, and what it is held against. Both report times that Google Benchmark
// measures, or times of their own (SetIterationTime) where that is said.
struct Ratio {
    std::string what;
    std::function<void(benchmark::State &)> figure;
    std::string floor_name;
    std::function<void(benchmark::State &)> floor;
    bool figure_has_own_time = false;
    bool floor_has_own_time = false;
};

// Adds a row; rows are measured and printed in the order of their adding.
void add_ratio(Ratio ratio);

// The groups of rows, one a source.
void add_file_ratios();
void add_hex_ratios();
void add_list_ratios();
void add_patcher_ratios();
void add_program_ratios();
