// Scripts.
#include "script.h"

#include <algorithm>
#include <map>
#include <stdexcept>

#include "ext_proto.h"

using namespace maxhost;

namespace {

constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF"; // that an editor puts in front of a file

// A line that is no command; the text says why.
struct NoCommand : std::runtime_error {
    using std::runtime_error::runtime_error;
};

[[noreturn]] void refuse(const std::string &why) { throw NoCommand(why); }

std::string text_of(const t_atom &atom) {
    return atom_gettype(&atom) == A_SYM ? atom_getsym(&atom)->s_name : print_atom(atom);
}

const t_atom &argument(std::span<const t_atom> words, size_t at, const char *what) {
    if (at >= words.size())
        refuse(std::string("missing ") + what);
    return words[at];
}

t_symbol *name(std::span<const t_atom> words, size_t at, const char *what) {
    return gensym(text_of(argument(words, at, what)).c_str());
}

long number(std::span<const t_atom> words, size_t at, const char *what) {
    const t_atom &atom = argument(words, at, what);
    if (atom_gettype(&atom) != A_LONG)
        refuse(std::string("not a number: ") + text_of(atom));
    return atom_getlong(&atom);
}

bool starts_attribute(const t_atom &atom) {
    const char *text = atom_getsym(&atom)->s_name;
    return text[0] == '@' && text[1] != 0;
}

bool is_old_argument_list(std::span<const t_atom> atoms) {
    return atoms.size() >= 6 &&
           std::all_of(atoms.begin(), atoms.end(), [](const t_atom &atom) { return atom_gettype(&atom) == A_LONG; });
}

void append(t_dictionary *dictionary, const char *key, std::span<const t_atom> atoms) {
    std::vector<t_atom> copy(atoms.begin(), atoms.end());
    dictionary_appendatoms(dictionary, gensym(key), static_cast<long>(copy.size()), copy.data());
}

// Everything behind the class: arguments, then @attributes with their values. The arguments of a class that has old
// argument lists are one, or they are dropped; those of any other class are answered.
std::span<const t_atom> read_box_arguments(t_dictionary *dictionary, t_symbol *class_name,
                                           std::span<const t_atom> words) {
    const auto first = std::find_if(words.begin(), words.end(), starts_attribute);
    const std::span<const t_atom> before(words.begin(), first);
    if (is_old_argument_list(before))
        add_old_arguments(class_name, dictionary, before);
    for (auto at = first; at != words.end();) {
        const auto next = std::find_if(at + 1, words.end(), starts_attribute);
        append(dictionary, atom_getsym(&*at)->s_name + 1, {at + 1, next});
        at = next;
    }
    return has_old_arguments(class_name) ? std::span<const t_atom>() : before;
}

// Words that begin a line and are no names of boxes.
bool is_command_word(std::string_view word) {
    return word == "new" || word == "connect" || word == "host" || word == "scheduler" || word.starts_with('#');
}

} // namespace

struct Script::NamedVerb {
    const char *name;
    const char *words;
    const char *does;
    Verb verb;
};

const Script::NamedVerb Script::verbs_[] = {
    {"open", "FILE", "opens a patcher, in place of the one that is open", &Script::open},
    {"save", "FILE", "saves the patcher", &Script::save},
    {"close", "", "closes the patcher", &Script::close},
    {"free", "NAME", "deletes the box", &Script::free},
    {"click", "NAME [ROW]", "clicks a row of a list, or the box itself", &Script::click},
    {"key", "NAME KEY", "in a list: up, down, pageup, pagedown, home or end", &Script::key},
    {"get", "NAME ATTR", "prints an attribute", &Script::get},
    {"set", "NAME ATTR ATOM...", "sets an attribute", &Script::set},
    {"assist", "NAME inlet|outlet K", "prints an assistance text", &Script::assist},
    {"paint", "NAME", "prints what every row of a list is painted with", &Script::paint},
    {"view", "NAME", "prints the state of a list's view", &Script::view},
    {"dirty", "", "prints whether the patcher is marked changed", &Script::dirty},
    {"clean", "", "takes that mark away", &Script::clean},
    {"answer", "FILE|cancel", "what the next save dialog answers", &Script::answer},
    {"wait", "MILLISECONDS", "lets time pass: what is due by then happens now", &Script::wait},
    {"hold", "", "no longer drains the queue after every line", &Script::hold},
    {"drain", "", "drains it now", &Script::drain},
    {"release", "", "drains it, and again after every line", &Script::release},
    {"fail", "N", "lets the N-th allocation of the host from now on fail", &Script::fail},
    {"memory", "", "prints how many blocks and objects are in use", &Script::memory},
};

std::string Script::help() {
    const auto line = [](std::string words, const char *does) {
        words.resize(std::max<size_t>(words.size() + 1, 38), ' ');
        return "  " + words + does + "\n";
    };
    std::string text = "A script has one command a line:\n" +
                       line("new NAME CLASS ATOM... @ATTR ATOM...", "makes a box") +
                       line("NAME MESSAGE, MESSAGE...", "sends messages to it") +
                       line("scheduler NAME MESSAGE, MESSAGE...", "the same on the scheduler thread") +
                       line("#X MESSAGE", "sends a message to what is bound to #X") +
                       line("connect NAME OUTLET NAME [INLET]", "makes a patch cord");
    for (const NamedVerb &verb : verbs_)
        text += line("host " + std::string(verb.name) + " " + verb.words, verb.does);
    return text + "A box in a patcher in a box is named OUTER::INNER.";
}

bool Script::run(std::istream &lines, const std::string &file, std::string &reason) {
    std::string line;
    for (long count = 1; std::getline(lines, line); ++count) {
        if (!run_line(line, reason)) {
            reason.insert(0, file + ":" + std::to_string(count) + ": ");
            return false;
        }
    }
    if (lines.bad())
        reason = file + ": cannot be read to its end";
    return !lines.bad();
}

bool Script::open_file(const std::string &file, std::string &reason) {
    const bool is_open = stage_.open(file, reason);
    if (!is_open)
        reason = file + ": " + reason;
    else if (!held_)
        drain_queue();
    return is_open;
}

bool Script::run_line(const std::string &line, std::string &reason) {
    try {
        carry_out(line.starts_with(byte_order_mark) ? line.substr(byte_order_mark.size()) : line);
        return true;
    } catch (const NoCommand &why) {
        reason = why.what();
        return false;
    }
}

void Script::carry_out(const std::string &line) {
    const size_t start = line.find_first_not_of(" \t\r");
    if (start == line.npos || line.compare(start, 2, "//") == 0)
        return;
    std::vector<TypedMessage> messages = parse_messages(line);
    if (messages.empty() || messages.front().receiver)
        refuse("no command");
    t_symbol *first = name(messages.front().atoms, 0, "command");
    messages.front().atoms.erase(messages.front().atoms.begin());
    command(first, messages);
    if (!held_)
        drain_queue();
}

void Script::command(const t_symbol *first, Messages messages) {
    const std::string_view text = first->s_name;
    if (text == "scheduler")
        return deliver_on_scheduler(messages);
    if (text.starts_with('#'))
        return deliver_to_receiver(const_cast<t_symbol *>(first), messages);
    if (!is_command_word(text))
        return deliver(box_of(const_cast<t_symbol *>(first)), messages);
    if (messages.size() > 1)
        refuse("one command a line");
    const Atoms words = messages.front().atoms;
    text == "new" ? make_box(words) : text == "connect" ? connect(words) : host(words);
}

void Script::host(Atoms words) {
    const std::string wanted = text_of(argument(words, 0, "verb"));
    for (const NamedVerb &each : verbs_)
        if (wanted == each.name)
            return (this->*each.verb)(words.subspan(1));
    refuse("host does not know \"" + wanted + "\"");
}

// ---- boxes and messages

t_object *Script::patcher() {
    if (!stage_.patcher())
        stage_.make_untitled();
    return stage_.patcher();
}

t_object *Script::box_of(t_symbol *wanted) {
    t_object *found = stage_.patcher() ? box_named(stage_.patcher(), wanted) : nullptr;
    if (!found)
        refuse(std::string("no box is named \"") + wanted->s_name + "\"");
    return found;
}

t_object *Script::box(Atoms words, size_t at) { return box_of(name(words, at, "name of a box")); }

void Script::make_box(Atoms words) {
    t_symbol *box_name = name(words, 0, "name of the box");
    t_symbol *class_name = name(words, 1, "class");
    if (!is_box_class(class_name))
        refuse(std::string("no class is named \"") + class_name->s_name + "\"");
    if (is_command_word(box_name->s_name))
        refuse(std::string("no box can be named \"") + box_name->s_name + "\"");
    if (box_named(patcher(), box_name))
        refuse(std::string("a box is named \"") + box_name->s_name + "\" already");
    const OwnedDictionary dictionary = empty_dictionary();
    const std::span<const t_atom> arguments = read_box_arguments(dictionary.get(), class_name, words.subspan(2));
    t_atom varname;
    atom_setsym(&varname, box_name);
    append(dictionary.get(), "varname", {&varname, 1}); // whatever the attributes said
    if (!new_box(patcher(), class_name, dictionary.get(), arguments))
        refuse(std::string("no box of the class \"") + class_name->s_name + "\" can be made");
}

void Script::connect(Atoms words) {
    t_object *from = box(words, 0);
    const long outlet = number(words, 1, "outlet");
    t_object *to = box(words, 2);
    const long inlet = words.size() > 3 ? number(words, 3, "inlet") : 0;
    if (inlet < 0 || inlet >= inlets_of(to))
        refuse("no such inlet");
    if (!connect_boxes(from, outlet, to, inlet))
        refuse("no such outlet");
}

void Script::deliver(t_object *to, Messages messages) {
    if (messages.front().atoms.empty())
        refuse("no message");
    for (const TypedMessage &message : messages) {
        if (message.receiver)
            deliver_to_receiver(message.receiver, {&message, 1});
        else
            send_message(to, message.atoms);
    }
}

void Script::deliver_on_scheduler(Messages messages) {
    Atoms words = messages.front().atoms;
    t_object *to = box(words, 0);
    argument(words, 1, "message");
    if (std::any_of(messages.begin(), messages.end(), [](const TypedMessage &each) { return each.receiver; }))
        refuse("no receivers on the scheduler thread");
    send_on_scheduler(to, {words.begin() + 1, words.end()});
    for (const TypedMessage &message : messages.subspan(1))
        send_on_scheduler(to, message.atoms);
    wait_until_delivered();
}

void Script::deliver_to_receiver(t_symbol *receiver, Messages messages) {
    for (const TypedMessage &message : messages) {
        if (message.atoms.empty())
            refuse("no message");
        t_symbol *to = message.receiver ? message.receiver : receiver; // behind a semicolon stands another one
        if (!send_to_receiver(to, message.atoms))
            transcript_.line("error: " + print_text(to->s_name) + ": no such object");
    }
}

// ---- what is said to the host

void Script::close(Atoms) { stage_.close(); }

void Script::open(Atoms words) {
    std::string reason;
    if (!open_file(text_of(argument(words, 0, "file")), reason))
        refuse(reason);
}

void Script::save(Atoms words) {
    const std::string file = text_of(argument(words, 0, "file"));
    std::string reason;
    patcher(); // an untitled one can be saved as well
    if (!stage_.save(file, reason))
        refuse(file + ": " + reason);
}

void Script::free(Atoms words) { free_box(box(words, 0)); }

// With a row: in the data view; without: the box itself.
void Script::click(Atoms words) {
    t_object *of = box(words, 0);
    if (words.size() > 1 || !click_box(of))
        click_row(of, number(words, 1, "row"));
}

void Script::key(Atoms words) {
    static const std::map<std::string, Key> keys{{"up", Key::up},          {"down", Key::down},
                                                 {"pageup", Key::page_up}, {"pagedown", Key::page_down},
                                                 {"home", Key::home},      {"end", Key::end}};
    t_object *of = box(words, 0);
    const auto found = keys.find(text_of(argument(words, 1, "key")));
    if (found == keys.end())
        refuse("no such key");
    press_key(of, found->second);
}

t_symbol *Script::attribute_of(t_object *of, Atoms words, size_t at) {
    t_symbol *attribute = name(words, at, "attribute");
    if (!has_attribute(of, attribute))
        refuse(std::string("no attribute is named \"") + attribute->s_name + "\"");
    return attribute;
}

void Script::get(Atoms words) {
    t_object *of = box(words, 0);
    t_symbol *attribute = attribute_of(of, words, 1);
    std::vector<t_atom> values;
    const t_max_err result = read_attribute(of, attribute, values);
    const std::string start = text_of(words[0]) + "." + attribute->s_name;
    if (result != MAX_ERR_NONE)
        transcript_.line(start + " refused " + std::to_string(result));
    else
        transcript_.line(start + (values.empty() ? "" : " ") + print_atoms(values));
}

void Script::set(Atoms words) {
    t_object *of = box(words, 0);
    t_symbol *attribute = attribute_of(of, words, 1);
    const t_max_err result = write_attribute(of, attribute, words.subspan(2));
    if (result != MAX_ERR_NONE)
        transcript_.line(text_of(words[0]) + "." + attribute->s_name + " refused " + std::to_string(result));
}

void Script::assist(Atoms words) {
    t_object *of = box(words, 0);
    const std::string side = text_of(argument(words, 1, "inlet or outlet"));
    if (side != "inlet" && side != "outlet")
        refuse("neither inlet nor outlet: " + side);
    transcript_.line("assist: " + print_text(assistance(of, side == "inlet", number(words, 2, "number"))));
}

void Script::paint(Atoms words) {
    t_object *of = box(words, 0);
    ViewState state{};
    data_view_state(of, state);
    for (long row = 1; row <= state.rows; ++row)
        for (const DrawRecord &record : painted_row(of, row))
            transcript_.line(paint_line(row, record));
}

void Script::view(Atoms words) {
    ViewState state;
    if (!data_view_state(box(words, 0), state))
        refuse("the box has no data view");
    transcript_.line(view_line(state));
}

void Script::dirty(Atoms) { transcript_.line(std::string("dirty: ") + (is_dirty(patcher()) ? "1" : "0")); }

void Script::clean(Atoms) { set_clean(patcher()); }

void Script::answer(Atoms words) {
    const std::string file = text_of(argument(words, 0, "file"));
    transcript_.prepare_answer(file == "cancel" ? "" : file);
}

void Script::hold(Atoms) { held_ = true; }

void Script::drain(Atoms) { drain_queue(); }

void Script::release(Atoms) { held_ = false; } // the queue is drained at the end of the line

void Script::wait(Atoms words) {
    const t_atom &time = argument(words, 0, "time");
    const bool is_time = atom_gettype(&time) != A_SYM && atom_getfloat(&time) >= 0;
    if (!is_time)
        refuse("not a time in milliseconds: " + text_of(time));
    const double until = clock_time() + atom_getfloat(&time);
    while (run_next_clock(until))
        if (!held_)
            drain_queue();
}

void Script::fail(Atoms words) { fail_nth_allocation(number(words, 0, "number")); }

void Script::memory(Atoms) {
    const MemoryInUse in_use = memory_in_use();
    transcript_.line("memory: " + std::to_string(in_use.blocks) + " blocks, " + std::to_string(in_use.objects) +
                     " objects");
}
