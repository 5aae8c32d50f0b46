// A test that runs an operation again and again, with its first, its second, its third … allocation failing.
#include "faults/faults-test.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

using namespace maxhost;

namespace {

// FAULTS_TRACE in the environment names each run before it begins: the last name is that of a crash.
const bool traced = std::getenv("FAULTS_TRACE") != nullptr;

template <typename Function> auto without_counting(Function function) {
    return [function](auto &&...arguments) {
        const UncountedAllocations uncounted;
        function(arguments...);
    };
}

} // namespace

void FaultsTest::SetUp() {
    static const bool taken_over = (take_over_libxml2(), true);
    static_cast<void>(taken_over);
    HostTest::SetUp();
    start_host(uncounted_front_end());
}

void FaultsTest::TearDown() {
    for (const auto &[allocator, count] : runs)
        RecordProperty(name_of(allocator), static_cast<int>(count));
    HostTest::TearDown();
}

FrontEnd FaultsTest::uncounted_front_end() {
    FrontEnd front = front_end();
    front.console = without_counting(front.console);
    front.output = without_counting(front.output);
    front.refused = without_counting(front.refused);
    front.misuse = without_counting(front.misuse);
    front.alert = without_counting(front.alert);
    return front;
}

bool FaultsTest::has_error() const {
    return std::any_of(lines.begin(), lines.end(), [](const std::string &line) { return line.starts_with("error: "); });
}

void FaultsTest::expect_no_misuse() {
    for (const std::string &line : lines)
        EXPECT_FALSE(line.starts_with("misuse: ")) << line;
}

void FaultsTest::run_begins(const std::string &place) {
    if (traced)
        std::fprintf(stderr, "%s\n", place.c_str());
    before_ = memory_in_use();
    xml_before_ = libxml2_blocks();
}

void FaultsTest::run_ends(Allocator allocator, bool failed) {
    expect_no_misuse();
    EXPECT_EQ(memory_in_use().blocks, before_.blocks);
    EXPECT_EQ(memory_in_use().objects, before_.objects);
    xmlResetLastError(); // libxml2 keeps what it last said
    EXPECT_EQ(libxml2_blocks(), xml_before_);
    EXPECT_EQ(files_open(), 0u);
    runs[allocator] += failed;
}
