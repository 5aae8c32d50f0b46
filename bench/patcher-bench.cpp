// Opening and saving of patchers, beside what reading and writing their JSON alone takes.
#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include <nlohmann/json.hpp>

#include "embed/host.h"
#include "ratio.h"
#include "vrk.owners.h"

namespace {

using Json = nlohmann::ordered_json;
using Clock = std::chrono::steady_clock;

double seconds_since(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

// What a box around a list looks like: three kinds that follow each other, each with a cord from the one before.
Json box(long number) {
    static const Json kinds[] = {
        {{"maxclass", "message"}, {"numinlets", 2}, {"numoutlets", 1}, {"outlettype", {""}}, {"text", "append item"}},
        {{"maxclass", "newobj"}, {"numinlets", 1}, {"numoutlets", 1}, {"outlettype", {""}}, {"text", "prepend set"}},
        {{"maxclass", "number"}, {"numinlets", 1}, {"numoutlets", 2}, {"outlettype", {"", "bang"}}}};
    Json described = kinds[number % 3];
    described["id"] = "obj-" + std::to_string(number + 1);
    const long row = number / 50;
    described["patching_rect"] = {15.0 * static_cast<double>(number % 50), 30.0 * static_cast<double>(row), 90.0, 22.0};
    return {{"box", std::move(described)}};
}

Json cord(long number) {
    Json ends;
    ends["destination"] = Json::array({"obj-" + std::to_string(number + 1), 0});
    ends["source"] = Json::array({"obj-" + std::to_string(number), 0});
    return {{"patchline", std::move(ends)}};
}

// A patcher file in a folder of its own, which goes with it.
class PatcherFile {
  public:
    explicit PatcherFile(long boxes) : folder_((std::filesystem::temp_directory_path() / "vrk-bench-XXXXXX").string()) {
        mkdtemp(folder_.data());
        Json patcher{{"fileversion", 1},
                     {"rect", {0.0, 0.0, 800.0, 600.0}},
                     {"default_fontname", "Arial"},
                     {"gridsize", {15.0, 15.0}}};
        patcher["boxes"] = patcher["lines"] = Json::array();
        for (long i = 0; i < boxes; ++i)
            patcher["boxes"].push_back(box(i));
        for (long i = 1; i < boxes; ++i)
            patcher["lines"].push_back(cord(i));
        text_ = Json{{"patcher", std::move(patcher)}}.dump(4);
        std::ofstream(path(), std::ios::binary) << text_;
    }
    ~PatcherFile() { std::filesystem::remove_all(folder_); }
    PatcherFile(const PatcherFile &) = delete;
    PatcherFile &operator=(const PatcherFile &) = delete;

    std::string path() const { return folder_ + "/bench.maxpat"; }
    const std::string &text() const { return text_; }

  private:
    std::string folder_;
    std::string text_;
};

t_object *opened(benchmark::State &state, const PatcherFile &file) {
    std::string reason;
    t_object *patcher = maxhost::open_patcher(file.path(), reason);
    if (!patcher)
        state.SkipWithError(reason.c_str());
    return patcher;
}

void open(benchmark::State &state, long boxes) {
    const PatcherFile file(boxes);
    for (auto _ : state) {
        const auto start = Clock::now();
        t_object *patcher = opened(state, file);
        state.SetIterationTime(seconds_since(start));
        if (patcher)
            maxhost::free_patcher(patcher);
    }
}

void parse(benchmark::State &state, long boxes) {
    const PatcherFile file(boxes);
    for (auto _ : state) {
        const auto start = Clock::now();
        const Json value = Json::parse(file.text());
        state.SetIterationTime(seconds_since(start));
    }
}

void save(benchmark::State &state, long boxes) {
    const PatcherFile file(boxes);
    t_object *patcher = opened(state, file);
    std::string reason;
    for (auto _ : state)
        if (patcher && !maxhost::save_patcher(patcher, file.path(), reason))
            state.SkipWithError(reason.c_str());
    if (patcher)
        maxhost::free_patcher(patcher);
}

void dump(benchmark::State &state, long boxes) {
    const PatcherFile file(boxes);
    const Json value = Json::parse(file.text());
    for (auto _ : state)
        std::ofstream(file.path(), std::ios::binary) << value.dump(4);
}

} // namespace

void add_patcher_ratios() {
    for (long boxes : {500L, 5000L})
        add_ratio({"open a patcher of " + std::to_string(boxes) + " boxes",
                   [boxes](benchmark::State &state) { open(state, boxes); }, "parse of its JSON",
                   [boxes](benchmark::State &state) { parse(state, boxes); }, true, true});
    for (long boxes : {500L, 5000L})
        add_ratio({"save a patcher of " + std::to_string(boxes) + " boxes",
                   [boxes](benchmark::State &state) { save(state, boxes); }, "dump of its JSON into a file",
                   [boxes](benchmark::State &state) { dump(state, boxes); }});
}
