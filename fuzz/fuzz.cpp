// What fuzz targets share.
#include "fuzz.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>
#include <utility>

namespace fs = std::filesystem;
using namespace maxhost;

namespace fuzz {
namespace {

std::mutex lines_mutex; // lines come from both threads

// The folder that all inputs work in, in memory where the system has that; it goes with the process.
class Folder {
  public:
    Folder() {
        std::error_code error;
        const fs::path memory("/dev/shm");
        std::string name = ((fs::exists(memory, error) ? memory : fs::temp_directory_path()) / "vrk-fuzz-XXXXXX");
        expect(mkdtemp(name.data()) != nullptr, "no folder can be made");
        path_ = name;
    }
    ~Folder() {
        std::error_code error;
        fs::remove_all(path_, error);
    }
    Folder(const Folder &) = delete;
    Folder &operator=(const Folder &) = delete;

    const fs::path &path() const { return path_; }
    void empty() const {
        for (const fs::directory_entry &entry : fs::directory_iterator(path_))
            fs::remove_all(entry.path());
    }

  private:
    fs::path path_;
};

const Folder &folder() {
    static const Folder the_folder;
    return the_folder;
}

void load_plugin_once() {
    static const bool loaded = [] {
        std::string reason;
        expect(load_plugin(VRK_PLUGIN, reason), reason);
        return true;
    }();
    (void)loaded;
}

// The current folder while an input lasts; before and after, the fuzzer has its own.
fs::path former_folder;

} // namespace

void expect(bool holds, const std::string &otherwise) {
    if (holds)
        return;
    std::fprintf(stderr, "fuzz: %s\n", otherwise.c_str());
    std::abort();
}

size_t Bytes::number() {
    if (rest_.empty())
        return 0;
    const auto byte = static_cast<unsigned char>(rest_.front());
    rest_.remove_prefix(1);
    return byte;
}

std::string Bytes::text(size_t most) {
    const std::string_view taken = rest_.substr(0, most);
    std::string text(taken.substr(0, taken.find('\0')));
    rest_.remove_prefix(std::min(rest_.size(), text.size() + 1));
    return text;
}

bool could_leave_the_folder(std::string_view text) {
    return text.find('/') != text.npos || text.find("\\u002f") != text.npos || text.find("\\u002F") != text.npos;
}

Host::Host() : Host(FrontEnd()) {}

Host::Host(FrontEnd front) {
    load_plugin_once();
    const auto add = [this](const std::string &line) {
        const std::lock_guard lock(lines_mutex);
        lines_.push_back(line);
    };
    if (!front.console)
        front.console = [add](ConsoleLine kind, const std::string &object, const std::string &text) {
            add(std::string(kind == ConsoleLine::error ? "error: " : "") + object + ": " + text);
        };
    if (!front.output)
        front.output = [add](const std::string &object, long outlet, t_symbol *, std::span<const t_atom> atoms) {
            add(object + ":" + std::to_string(outlet) + " " + print_atoms(atoms));
        };
    former_folder = fs::current_path();
    folder().empty();
    fs::current_path(folder().path());
    start_host(std::move(front)); // without a function for misuse, misuse ends the program
}

Host::~Host() {
    drain_queue();
    stop_host();
    fs::current_path(former_folder);
    const MemoryInUse left = memory_in_use();
    expect(left.blocks == 0 && left.objects == 0 && files_open() == 0,
           "left behind: " + std::to_string(left.blocks) + " blocks, " + std::to_string(left.objects) + " objects, " +
               std::to_string(files_open()) + " open files");
}

std::vector<std::string> Host::take_lines() {
    const std::lock_guard lock(lines_mutex);
    return std::exchange(lines_, {});
}

t_object *Host::box(t_object *patcher, const char *class_name) {
    const OwnedDictionary dictionary = empty_dictionary();
    t_atom name;
    atom_setsym(&name, gensym(class_name));
    dictionary_appendatoms(dictionary.get(), gensym("varname"), 1, &name);
    t_object *made = new_box(patcher, gensym(class_name), dictionary.get());
    expect(made != nullptr, std::string("no box of the class ") + class_name);
    return made;
}

void Host::send(t_object *box, std::string_view messages) {
    for (const TypedMessage &message : parse_messages(messages))
        message.receiver ? (void)send_to_receiver(message.receiver, message.atoms) : send_message(box, message.atoms);
    drain_queue();
}

void Host::open_and_save_patcher(std::string_view text) {
    write_file("given", text);
    std::string name = "given", reason;
    for (const char *saved : {"saved", "saved again"}) {
        t_object *patcher = open_patcher(name, reason);
        expect(patcher || name == "given", "what was saved cannot be opened: " + reason);
        if (!patcher)
            return;
        drain_queue();
        expect(save_patcher(patcher, saved, reason), "cannot be saved: " + reason);
        free_patcher(patcher);
        name = saved;
    }
}

void write_file(const std::string &name, std::string_view content) { std::ofstream(name, std::ios::binary) << content; }

std::string read_file(const std::string &name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace fuzz
