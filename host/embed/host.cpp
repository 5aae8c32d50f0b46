// The host, as programs see it.
#include "embed/host.h"

#include <algorithm>
#include <filesystem>

#include "ext_path.h"
#include "ext_proto.h"
#include "files/wholefile.h"
#include "kernel/attributes.h"
#include "kernel/classes.h"
#include "kernel/critical.h"
#include "kernel/memory.h"
#include "kernel/objects.h"
#include "kernel/outlets.h"
#include "kernel/receivers.h"
#include "kernel/scheduler.h"
#include "kernel/symbols.h"
#include "ui/box.h"
#include "ui/boxes/boxes.h"
#include "ui/dataview.h"
#include "ui/editor.h"
#include "ui/patcher.h"
#include "ui/patcherfile.h"
#include "ui/patcherwriter.h"

namespace fs = std::filesystem;

namespace maxhost {
namespace {

constexpr size_t assistance_size = 512; // the text buffer that plug-ins write to

Class &class_of(t_object *object) { return *record_of(object)->cls; }

// The data view of a box, or null.
DataView *view_of(t_object *box) {
    const BoxState *state = box_state(box);
    return state && !state->views.empty() ? state->views.front() : nullptr;
}

long rows_in_a_page(t_object *box, const ViewState &view) {
    t_rect rect{};
    jbox_get_patching_rect(box, &rect);
    return std::max(1L, static_cast<long>(rect.height) / view.row_height);
}

// The full path of a file that is there, as open_patcher finds it.
bool find_file(const std::string &file, std::string &path) {
    std::error_code error;
    if (fs::path(file).has_parent_path() && fs::exists(file, error)) {
        path = fs::absolute(file, error).lexically_normal().string();
        return !error;
    }
    path = find_in_search_path(file);
    return !path.empty();
}

} // namespace

void start_host(FrontEnd front) {
    front_end() = std::move(front);
    register_editor();
    register_boxes();
}

void stop_host() {
    stop_scheduler();
    front_end() = FrontEnd();
}

MemoryInUse memory_in_use() { return {blocks_alive(), objects_alive(), symbols_alive()}; }

void fail_nth_allocation(long n) { fail_allocation(n, false); }
void fail_allocations_from(long n) { fail_allocation(n, true); }
long failed_allocations() { return allocation_failures(); }

OwnedDictionary empty_dictionary() { return new_dictionary(); }

t_object *new_patcher() { return create<Patcher>(); }

t_object *open_patcher(const std::string &file, std::string &reason) {
    std::string path, text;
    if (!find_file(file, path)) {
        reason = "not found";
        return nullptr;
    }
    const FileStamp stamp = stamp_of(path); // a change while the file is read is one since then
    if (!read_whole_file(path, text, reason))
        return nullptr;
    const fs::path whole(path);
    set_patcher_folder(whole.parent_path().string());
    Patcher *patcher = read_patcher(text, whole.filename().string(), reason);
    if (!patcher) {
        set_patcher_folder("");
        return nullptr;
    }
    patcher->file = path;
    patcher->file_stamp = stamp;
    return patcher;
}

bool save_patcher(t_object *patcher, const std::string &file, std::string &reason) {
    auto *found = expect<Patcher>(patcher, "save_patcher");
    if (!found)
        return false;
    const fs::path named(file);
    std::error_code error;
    const fs::path path = named.has_parent_path() ? fs::absolute(named, error) : fs::path(default_folder()) / named;
    if (named.filename().empty()) {
        reason = "no name of a file";
        return false;
    }
    if (!replace_whole_file(path.string(), patcher_text(*found), reason, &found->file_stamp))
        return false;
    set_patcher_folder(path.parent_path().string());
    found->file = path.lexically_normal().string();
    set_clean(patcher);
    return true;
}

std::string file_of_patcher(t_object *patcher) {
    const auto *found = expect<Patcher>(patcher, "file_of_patcher");
    return found ? found->file : "";
}

bool changed_on_disk(t_object *patcher) {
    const auto *found = expect<Patcher>(patcher, "changed_on_disk");
    return found && !found->file.empty() && stamp_of(found->file) != found->file_stamp;
}

void free_patcher(t_object *patcher) {
    auto *found = expect<Patcher>(patcher, "free_patcher");
    if (!found)
        return;
    between_deliveries([&] { close_patcher(found); });
    set_patcher_folder("");
}

bool is_dirty(t_object *patcher) {
    const auto *found = expect<Patcher>(patcher, "is_dirty");
    return found && found->dirty;
}

void set_clean(t_object *patcher) {
    auto *found = expect<Patcher>(patcher, "set_clean");
    if (found && found->dirty.exchange(false))
        tell_of_change(*found);
}

t_object *open_patcher_view(t_object *patcher) {
    auto *found = expect<Patcher>(patcher, "open_patcher_view");
    return found ? open_view(*found) : nullptr;
}

void close_patcher_view(t_object *view) {
    if (auto *found = expect<PatcherView>(view, "close_patcher_view"))
        close_view(found);
}

bool is_box_class(t_symbol *class_name) { return find_class(CLASS_BOX, class_name) != nullptr; }

bool has_old_arguments(t_symbol *class_name) {
    const Class *cls = find_class(CLASS_BOX, class_name);
    return cls && find_method(*cls, gensym("stdargs"));
}

void add_old_arguments(t_symbol *class_name, t_dictionary *dictionary, std::span<const t_atom> arguments) {
    const Class *cls = find_class(CLASS_BOX, class_name);
    const Method *found = cls ? find_method(*cls, gensym("stdargs")) : nullptr;
    if (!found)
        return;
    std::vector<t_atom> atoms(arguments.begin(), arguments.end());
    using Conversion = long (*)(t_dictionary *, t_symbol *, long, t_atom *);
    reinterpret_cast<Conversion>(found->function)(dictionary, class_name, static_cast<long>(atoms.size()),
                                                  atoms.data());
}

t_object *new_box(t_object *patcher, t_symbol *class_name, t_dictionary *dictionary,
                  std::span<const t_atom> arguments) {
    auto *found = expect<Patcher>(patcher, "new_box");
    return found ? make_new_box(*found, class_name, dictionary, arguments) : nullptr;
}

void free_box(t_object *box) {
    between_deliveries([&] { object_free(box); });
}

t_object *box_named(t_object *patcher, t_symbol *name) {
    const auto *found = expect<Patcher>(patcher, "box_named");
    return found ? find_box(*found, name) : nullptr;
}

std::vector<t_object *> boxes_in(t_object *patcher) {
    std::vector<t_object *> boxes;
    if (const auto *found = expect<Patcher>(patcher, "boxes_in"))
        for (t_jbox *box : found->boxes)
            boxes.push_back(&box->b_ob);
    return boxes;
}

t_symbol *class_of_box(t_object *box) { return class_of(box).name; }

t_object *patcher_in(t_object *box) {
    const BoxState *state = box_state(box);
    return state ? state->inner : nullptr;
}

BoxFlags flags_of_box(t_object *box) {
    const BoxState *state = box_state(box);
    return state ? BoxFlags{class_of(box).box_flags, state->flags} : BoxFlags{0, 0};
}

long inlets_of(t_object *box) { return inlet_count(box); }
long outlets_of(t_object *box) { return outlet_count(box); }

bool connect_boxes(t_object *from, long outlet, t_object *to, long inlet) {
    Outlet *found = outlet_of(from, outlet);
    if (!found || inlet < 0 || inlet >= inlet_count(to))
        return false;
    between_deliveries([&] { connect(*found, {to, inlet}); });
    if (auto *patcher = as<Patcher>(reinterpret_cast<t_jbox *>(to)->b_patcher))
        tell_of_change(*patcher);
    return true;
}

OwnedDictionary saved_box(t_object *box) {
    OwnedDictionary dictionary = new_dictionary();
    if (expect_object(box, "saved_box")) {
        save_attributes(box, class_of(box), dictionary.get());
        object_method(box, gensym("jsave"), dictionary.get());
    }
    return dictionary;
}

void send_message(t_object *box, std::span<const t_atom> atoms) {
    if (atoms.empty())
        return;
    const Message message = message_of(atoms);
    deliver_to_inlet(box, 0, message.selector, message.arguments);
    expect_no_region("a message");
}

void send_on_scheduler(t_object *box, std::vector<t_atom> atoms) {
    const Record *record = expect_object(box, "send_on_scheduler");
    if (!record)
        return;
    post_to_scheduler([box, serial = record->serial, atoms = std::move(atoms)] {
        const Record *now = record_of(box); // it may have been freed since, and another one made in its place
        if (now && now->serial == serial)
            send_message(box, atoms);
    });
}

void wait_until_delivered() { wait_for_scheduler(); }

bool send_to_receiver(t_symbol *receiver, std::span<const t_atom> atoms) {
    const bool reached = deliver_to_name(receiver, message_of(atoms));
    expect_no_region("a message");
    return reached;
}

bool has_attribute(t_object *box, t_symbol *name) { return find_attribute(class_of(box), name) != nullptr; }

t_max_err read_attribute(t_object *box, t_symbol *name, std::vector<t_atom> &values) {
    Attribute *attribute = find_attribute(class_of(box), name);
    return attribute ? get_attribute(box, *attribute, values) : MAX_ERR_GENERIC;
}

t_max_err write_attribute(t_object *box, t_symbol *name, std::span<const t_atom> values) {
    Attribute *attribute = find_attribute(class_of(box), name);
    return attribute ? set_attribute(box, *attribute, values) : MAX_ERR_GENERIC;
}

bool data_view_state(t_object *box, ViewState &state) {
    DataView *view = view_of(box);
    if (view)
        state = view_state(*view);
    return view != nullptr;
}

bool click_row(t_object *box, long position) {
    DataView *view = view_of(box);
    return view && select_as_person(*view, position);
}

bool press_key(t_object *box, Key key) {
    DataView *view = view_of(box);
    if (!view)
        return false;
    const ViewState now = view_state(*view);
    const long page = rows_in_a_page(box, now);
    long to = now.selected;
    switch (key) {
    case Key::up:
        to -= 1;
        break;
    case Key::down:
        to += 1;
        break;
    case Key::page_up:
        to -= page;
        break;
    case Key::page_down:
        to += page;
        break;
    case Key::home:
        to = 1;
        break;
    case Key::end:
        to = now.rows;
        break;
    }
    return now.rows > 0 && select_as_person(*view, std::clamp(to, 1L, now.rows));
}

bool click_box(t_object *box) {
    if (!find_method(class_of(box), gensym("click")))
        return false;
    object_method(box, gensym("click"));
    expect_no_region("a click");
    return true;
}

DrawList painted_row(t_object *box, long position, t_object *patcher_view, long width) {
    DataView *view = view_of(box);
    if (!view)
        return {};
    if (auto *shown_in = as<PatcherView>(patcher_view))
        return paint_row(*view, *shown_in, position, width);
    const auto release_view = [](PatcherView *v) { object_free(v); };
    const std::unique_ptr<PatcherView, decltype(release_view)> offscreen(create<PatcherView>());
    return paint_row(*view, *offscreen, position, width);
}

std::string assistance(t_object *box, bool inlet, long index) {
    char text[assistance_size] = "";
    object_method(box, gensym("assist"), nullptr, inlet ? 1 : 2, index, text);
    text[assistance_size - 1] = 0;
    return text;
}

EditorState editor_state(t_object *editor) {
    const auto *found = expect<Editor>(editor, "editor_state");
    if (!found)
        return {};
    const std::string path = found->file.empty() ? "" : path_in_folder(found->folder, found->file);
    return {found->text, found->file, path, found->title->s_name, found->visible != 0};
}

bool save_editor_text(t_object *editor, const std::string &text) {
    auto *found = expect<Editor>(editor, "save_editor_text");
    if (!found)
        return false;
    found->text = text;
    return save_editor(*found);
}

void close_editor_window(t_object *editor) {
    if (auto *found = expect<Editor>(editor, "close_editor_window"))
        close_editor(found);
}

} // namespace maxhost
