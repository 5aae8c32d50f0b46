// Whole programs: listing all items of a file in the order of their numbers, and starting.
#include <memory>
#include <string>
#include <vector>

#include "files.h"
#include "program.h"
#include "ratio.h"

namespace {

constexpr long most_items = 32767;

using Command = std::vector<std::string>;

void measure(benchmark::State &state, const Command &command) {
    for (auto _ : state) {
        const ProgramRun run = run_program(command);
        if (!run.succeeded)
            return state.SkipWithError("failed");
        state.SetIterationTime(run.seconds);
    }
}

struct Tool {
    std::string name;
    Command command; // the file is put behind it
};

const std::vector<Tool> tools{
    {"xmlstarlet", {"xmlstarlet", "sel", "-t", "-m", "//string", "-s", "A:N:-", "@number", "-v", ".", "-n"}},
    {"xmllint --xpath", {"xmllint", "--xpath", "/resourcefile/resource/string/text()"}},
    {"python3-lxml",
     {"/usr/bin/python3", "-c", // of Debian, as its lxml
      "import sys, lxml.etree as e\n"
      "found = e.parse(sys.argv[1]).iterfind('resource/string')\n"
      "print('\\n'.join(x.text for x in sorted(found, key=lambda x: int(x.get('number')))))"}},
    {"pugixml", {VRK_BIN "/pugixml-list"}},
};

Command with(Command command, const std::string &file) {
    command.push_back(file);
    return command;
}

Command listing(const std::string &file) { return {VRK_BIN "/vrk-xml", file, "list", "string"}; }

} // namespace

void add_program_ratios() {
    static const ResourceFile file(ResourceFile::Kind::text, most_items);
    for (const Tool &tool : tools) {
        if (!run_program(with(tool.command, file.path())).succeeded)
            continue; // not installed
        add_ratio({"vrk-xml lists 32767 items, beside " + tool.name,
                   [](benchmark::State &state) { measure(state, listing(file.path())); }, tool.name,
                   [tool](benchmark::State &state) { measure(state, with(tool.command, file.path())); }, true, true});
    }
    static const Command first_line{VRK_BIN "/vrk-run", "--script", VRK_FIRST_LINE};
    add_ratio({"vrk-run to its first line", [](benchmark::State &state) { measure(state, first_line); },
               "start of /bin/true", [](benchmark::State &state) { measure(state, {"/bin/true"}); }, true, true});
}
