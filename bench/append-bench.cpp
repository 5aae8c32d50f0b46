// One append to a list of many rows, beside the copying of the bytes that it has to copy.
#include <chrono>
#include <cstring>
#include <vector>

#include "ratio.h"
#include "vrk.jlist.h"

namespace {

constexpr long row_counts[] = {1000, 10000, 32000};

// A list with a view and `rows` rows, in a box-less state: its view has no client.
class FilledList {
  public:
    explicit FilledList(long rows) : list_(jlist_new(nullptr, gensym("vrk.tessaroll"), JLIST_FILE_TYPE)) {
        list_->dataview = static_cast<t_object *>(jdataview_new());
        for (long i = 0; i < rows; ++i)
            append();
    }
    ~FilledList() { jlist_free(list_); }
    FilledList(const FilledList &) = delete;
    FilledList &operator=(const FilledList &) = delete;

    void append() { jlist_append(list_, mode_, item_, 1, &atom_); }

    void remove_last() {
        jlist_setdelete(list_, list_->row_count - 1);
        jlist_delete(list_);
    }

  private:
    t_jlist *list_;
    t_symbol *mode_ = gensym("append");
    t_symbol *item_ = gensym("an item");
    t_atom atom_{A_SYM, {.w_sym = item_}};
};

// The list has `rows` rows before every append that is timed.
void append(benchmark::State &state, long rows) {
    FilledList list(rows);
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        list.append();
        state.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
        list.remove_last();
    }
}

// A row pointer and a row id for each row.
void copy(benchmark::State &state, long rows) {
    const size_t bytes = 2 * sizeof(void *) * static_cast<size_t>(rows);
    std::vector<char> from(bytes, 1), to(bytes);
    for (auto _ : state) {
        std::memcpy(to.data(), from.data(), bytes);
        benchmark::DoNotOptimize(to.data());
        benchmark::ClobberMemory();
    }
}

} // namespace

void add_append_ratios() {
    for (long rows : row_counts)
        add_ratio({"append to " + std::to_string(rows) + " rows",
                   [rows](benchmark::State &state) { append(state, rows); },
                   "memcpy of " + std::to_string(16 * rows / 1000) + " kB",
                   [rows](benchmark::State &state) { copy(state, rows); }, true});
}
