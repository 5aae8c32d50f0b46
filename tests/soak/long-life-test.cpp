// A process that lives long: memory in use ends where it began, but for symbols, which stay for ever.
#include <cstdio>

#include <malloc.h>

#include "soak/soak-test.h"

using namespace maxhost;

namespace {

// Bytes in use of the heap; always 0 under the sanitizers, whose own heap is not told.
size_t heap_in_use() { return mallinfo2().uordblks; }

class LongLife : public SoakTest {
  protected:
    // Does something once to make what is made once, and then expects `turns` times more to leave nothing behind.
    template <typename Work> void expect_no_growth(long turns, const Work &work) {
        work(0);
        drain_queue();
        const MemoryInUse before = memory_in_use();
        const size_t heap = heap_in_use();
        for (long turn = 1; turn <= turns; ++turn) {
            work(turn);
            drain_queue();
        }
        const MemoryInUse after = memory_in_use();
        EXPECT_EQ(after.blocks, before.blocks);
        EXPECT_EQ(after.objects, before.objects);
        const size_t symbols = after.symbols - before.symbols;
        const size_t grown = heap_in_use() - std::min(heap_in_use(), heap);
        std::printf("%ld turns: %zu symbols more, %zu bytes more\n", turns, symbols, grown);
        EXPECT_LE(grown, slack + symbols * most_for_symbol);
    }

    static constexpr size_t slack = 65536;         // bytes of buffers that grew to what was needed once
    static constexpr size_t most_for_symbol = 128; // bytes of a short symbol with its slot in the table
};

std::vector<std::string> texts(long first, long count) {
    std::vector<std::string> all;
    for (long i = first; i < first + count; ++i)
        all.push_back("text " + std::to_string(i));
    return all;
}

} // namespace

TEST_F(LongLife, OfEdits) {
    t_object *box = new_list();
    for (long i = 0; i < 20; ++i)
        send(box, "append item" + std::to_string(i));
    const char *const edits[] = {"append a", "insert 3 b", "replace 5 c", "delete 2", "delete 7"};
    expect_no_growth(turns_or(20000) / 5, [&](long) {
        for (const char *edit : edits) {
            send(box, edit);
            drain_queue();
        }
    });
    expect_agreement(box);
}

TEST_F(LongLife, OfReadsOfChangingFiles) {
    t_object *box = new_list();
    expect_no_growth(turns_or(100000) / 1000, [&](long turn) {
        const std::string name = turn % 2 ? "odd.xml" : "even.xml"; // the file that is held would not be read again
        write_file(name, resource_file(texts(turn, 50)));
        send(box, "read " + name);
    });
    expect_agreement(box);
}

TEST_F(LongLife, OfBoxes) {
    expect_no_growth(turns_or(20000) / 100, [&](long) {
        t_object *box = new_list();
        send(box, "append a");
        drain_queue();
        saved_box(box);
        free_box(box);
    });
}
