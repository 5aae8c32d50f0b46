// vrk-run: runs boxes without a screen. A script goes in, a transcript comes out.
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>

#include <CLI/CLI.hpp>

#include "embed/signals.h"
#include "script/program.h"
#include "script/script.h"
#include "script/stage.h"
#include "script/transcript.h"

namespace {

constexpr int wrong_usage = 2;

struct Options {
    std::vector<std::string> plugins;
    std::vector<std::string> search;
    std::vector<std::string> traces;
    std::string script;
    std::string patcher;
};

const std::map<std::string, unsigned> trace_families{
    {"view", maxhost::trace_view}, {"queue", maxhost::trace_queue}, {"lock", maxhost::trace_lock},
    {"file", maxhost::trace_file}, {"dirty", maxhost::trace_dirty}, {"notify", maxhost::trace_notify}};

void describe(CLI::App &app, Options &options) {
    app.description("Runs boxes without a screen: a script goes in, a transcript comes out.");
    app.add_option("--plugin", options.plugins, "a module to load (default: the vrk.tessaroll beside this program)")
        ->allow_extra_args(false);
    app.add_option("--search", options.search, "a folder to search files in, before the current one")
        ->allow_extra_args(false);
    app.add_option("--trace", options.traces, "families of calls to trace: view, queue, lock, file, dirty, notify")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(CLI::IsMember(trace_families));
    const auto is_named = [](const std::string &name) { return name.empty() ? "a name is missing" : ""; };
    app.add_option("--script", options.script, "the script, - for standard input")->check(is_named);
    app.add_option("PATCHER", options.patcher, "a patcher file that is opened first")->check(is_named);
    app.footer(Script::help());
}

int fail(const std::string &reason) {
    std::cerr << "vrk-run: " << reason << '\n';
    return wrong_usage;
}

int run_script(Script &script, const std::string &file) {
    std::ifstream opened;
    if (file != "-") {
        opened.open(file);
        if (!opened || std::filesystem::is_directory(file))
            return fail(file + ": cannot be read");
    }
    std::string reason;
    return script.run(file == "-" ? std::cin : opened, file, reason) ? 0 : fail(reason);
}

int open_and_run(Transcript &transcript, const Options &options) {
    Stage stage;
    Script script(transcript, stage);
    std::string reason;
    if (!options.patcher.empty() && !script.open_file(in_current_folder(options.patcher), reason))
        return fail(reason);
    return options.script.empty() ? 0 : run_script(script, options.script);
}

int run(const Options &options) {
    std::string reason;
    if (!load_plugins(options.plugins, reason))
        return fail(reason);
    maxhost::set_search_folders(options.search);
    Transcript transcript(stdout);
    unsigned traced = 0;
    for (const std::string &family : options.traces)
        traced |= trace_families.at(family);
    maxhost::start_host(transcript.front_end(traced));
    const int status = open_and_run(transcript, options);
    maxhost::stop_host();
    const std::string fault = transcript.fault();
    return fault.empty() ? status : fail("the transcript cannot be written: " + fault);
}

} // namespace

int main(int argc, char **argv) {
    maxhost::take_signals_here();
    try {
        CLI::App app;
        Options options;
        describe(app, options);
        try {
            app.parse(argc, argv);
        } catch (const CLI::ParseError &error) {
            return app.exit(error) == 0 ? 0 : wrong_usage;
        }
        return run(options);
    } catch (const std::exception &error) { // no memory, or a folder that has gone
        std::fprintf(stderr, "vrk-run: %s\n", error.what());
        return wrong_usage;
    }
}
