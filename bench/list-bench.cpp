// Edits and painting of the list, beside the bytes that have to be copied and the text that has to be drawn.
#include <chrono>
#include <cstring>
#include <string>
#include <vector>

#include "embed/host.h"
#include "lists.h"
#include "ratio.h"

namespace {

constexpr long most_rows = 32767;
constexpr long page_rows = 40;

// The list has `rows` rows before every append that is timed.
void append(benchmark::State &state, long rows) {
    BareList list;
    list.append(rows);
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        list.append();
        state.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
        list.remove_last();
    }
}

// A row pointer and a row id for each row.
constexpr size_t bytes_of(long rows) { return 2 * sizeof(void *) * static_cast<size_t>(rows); }

void copy(benchmark::State &state, long rows) {
    std::vector<char> from(bytes_of(rows), 1), to(bytes_of(rows));
    for (auto _ : state) {
        std::memcpy(to.data(), from.data(), from.size());
        benchmark::DoNotOptimize(to.data());
        benchmark::ClobberMemory();
    }
}

void restore(benchmark::State &state) {
    for (auto _ : state) {
        BareList list;
        list.append(most_rows);
    }
}

// What appending one by one has to copy, from one row to all of them.
void copy_growing(benchmark::State &state) {
    std::vector<char> from(bytes_of(most_rows), 1), to(bytes_of(most_rows));
    for (auto _ : state) {
        for (long rows = 1; rows <= most_rows; ++rows) {
            std::memcpy(to.data(), from.data(), bytes_of(rows));
            benchmark::ClobberMemory();
        }
    }
}

// ---- painting, through a box in the host

class Box {
  public:
    Box() : patcher_(maxhost::new_patcher()) {
        std::string reason;
        maxhost::load_plugin(VRK_PLUGIN, reason);
        const maxhost::OwnedDictionary dictionary = maxhost::empty_dictionary();
        box_ = maxhost::new_box(patcher_, gensym("vrk.tessaroll"), dictionary.get());
        for (long row = 1; row <= page_rows; ++row)
            maxhost::send_message(box_, maxhost::parse_atoms("append \"Item number " + std::to_string(row) + "\""));
        maxhost::drain_queue();
    }
    ~Box() { maxhost::free_patcher(patcher_); }
    Box(const Box &) = delete;
    Box &operator=(const Box &) = delete;

    t_object *get() { return box_; }

  private:
    t_object *patcher_;
    t_object *box_;
};

void paint_page(benchmark::State &state) {
    Box box;
    for (auto _ : state)
        for (long row = 1; row <= page_rows; ++row)
            benchmark::DoNotOptimize(maxhost::painted_row(box.get(), row));
}

void draw_page(benchmark::State &state) {
    t_jrgba black{0, 0, 0, 1};
    for (auto _ : state) {
        for (long row = 1; row <= page_rows; ++row) {
            t_jgraphics context;
            jgraphics_set_source_jrgba(&context, &black);
            jgraphics_select_font_face(&context, "Arial", JGRAPHICS_FONT_SLANT_NORMAL, JGRAPHICS_FONT_WEIGHT_NORMAL);
            jgraphics_set_font_size(&context, 12);
            jgraphics_move_to(&context, 2, 12);
            jgraphics_show_text(&context, "Item number 40");
            benchmark::DoNotOptimize(context.drawn);
        }
    }
}

} // namespace

void add_list_ratios() {
    for (long rows : {1000L, 10000L, 32000L})
        add_ratio({"append to " + std::to_string(rows) + " rows",
                   [rows](benchmark::State &state) { append(state, rows); },
                   "memcpy of " + std::to_string(bytes_of(rows) / 1000) + " kB",
                   [rows](benchmark::State &state) { copy(state, rows); }, true});
    add_ratio({"restore 32767 embedded items", restore, "memcpy of the rows and ids of each step", copy_growing});
    add_ratio({"paint a page of 40 rows", paint_page, "the same text drawn directly", draw_page});
}
