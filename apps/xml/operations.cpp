// The operations of vrk-xml.
#include "operations.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstring>
#include <iterator>
#include <map>
#include <span>

#include "bytes.h"
#include "console.h"
#include "ext.h"
#include "vrk.jxml-resfile.h"

using namespace maxhost;

namespace {

// The layer refuses by a result other than 0. Nearly always it says why; `reason` is what to say when it does not.
template <typename Call> void attempt(const Call &call, const std::string &reason) {
    const long told = complaints();
    if (call() != 0)
        throw Refused{complaints() == told ? reason : ""};
}

long count_of(const std::vector<t_atom> &atoms) { return static_cast<long>(atoms.size()); }

void expect_atoms(const Operation &operation, size_t least, const char *what) {
    if (operation.atoms.size() < least)
        throw Refused{operation.name + ": " + what + " is missing"};
}

// The text of an atom, as a name.
std::string text_of(const t_atom &atom) {
    return atom_gettype(&atom) == A_SYM ? atom_getsym(&atom)->s_name : print_atom(atom);
}

long number_at(const Operation &operation, size_t at) {
    expect_atoms(operation, at + 1, "a number");
    if (atom_gettype(&operation.atoms[at]) != A_LONG)
        throw Refused{operation.name + ": " + text_of(operation.atoms[at]) + " is no whole number"};
    return atom_getlong(&operation.atoms[at]);
}

// ---- values that come out

std::string hexadecimal(std::span<const char> bytes) {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    for (const char byte : bytes) {
        text += digits[static_cast<unsigned char>(byte) >> 4];
        text += digits[static_cast<unsigned char>(byte) & 15];
    }
    return text;
}

// Text as it is, numbers as they are typed, several with blanks between; a block of bytes in hexadecimal, or into the
// file that was asked for.
std::string shown(const std::vector<t_atom> &values, const std::string &out) {
    if (values.size() == 1 && atom_gettype(values.data()) == A_OBJ) {
        const host_block<char> block(static_cast<char *>(atom_getobj(values.data())));
        const std::span<const char> bytes(block.get(), sysmem_ptrsize(block.get()));
        if (out.empty())
            return hexadecimal(bytes) + "\n";
        write_bytes(out, bytes);
        return "";
    }
    std::string text;
    for (const t_atom &value : values)
        text.append(text.empty() ? "" : " ").append(text_of(value));
    if (out.empty())
        return text + "\n";
    write_bytes(out, text);
    return "";
}

// Calls a reader with room for values and shows what it gives; `reason` as above.
template <typename Reader>
std::string read_values(const Operation &operation, const std::string &reason, const Reader &reader) {
    std::vector<t_atom> values(static_cast<size_t>(operation.bytes));
    for (t_atom &value : values)
        atom_setlong(&value, 0);
    t_atom *first = values.data();
    short count = operation.bytes;
    attempt([&] { return reader(gensym(operation.as.c_str()), &count, &first); }, reason);
    values.resize(static_cast<size_t>(count));
    return shown(values, operation.out);
}

// ---- what the layer takes without a word, and somebody would lose data by

// Whether an expression selects anything; one that cannot be evaluated refuses the operation.
bool selects(Document &document, const std::string &expression) {
    t_atom path; // the layer puts the first slash
    atom_setsym(&path, gensym(expression.c_str() + 1));
    const long told = complaints();
    short nodes = 1; // also for more than can be counted
    jxmlfile_count(document.holder(), 1, &path, &nodes, 1);
    if (complaints() != told)
        throw Refused{};
    return nodes > 0;
}

// The end of the step of an expression that begins behind a slash.
size_t step_end(const std::string &expression, size_t slash) {
    return std::min(expression.find('/', slash + 1), expression.size());
}

// A position that is not there cannot be made: the layer would make an element of the name "a[3]", and a file that
// holds it cannot be read again.
void expect_positions(Document &document, const Operation &operation, const std::vector<t_atom> &path) {
    const std::string expression = expression_of(path);
    for (size_t slash = 0, end = 0; slash < expression.size(); slash = end) {
        end = step_end(expression, slash);
        const std::string step = expression.substr(slash + 1, end - slash - 1);
        const size_t bracket = step.find('['); // behind it "@" begins a filter, and whatever else the layer refuses
        const bool has_position = bracket != step.npos && step.find_first_of("-0123456789", bracket) == bracket + 1;
        if (has_position && !selects(document, expression.substr(0, end)))
            throw Refused{operation.name + ": there is no " + step + ", and positions cannot be made"};
    }
}

// The layer has nothing to do for a path that begins with another root element.
void expect_root(Document &document, const Operation &operation, const std::vector<t_atom> &path) {
    const std::string expression = expression_of(path);
    const std::string root = expression.substr(0, step_end(expression, 0));
    if (!selects(document, root))
        throw Refused{operation.name + ": the root element is not " + root.substr(1)};
}

// ---- operations on paths

std::string get(Document &document, const Operation &operation) {
    std::vector<t_atom> path = operation.atoms;
    return read_values(operation, "get: the element holds neither text nor bytes alone",
                       [&](t_symbol *kind, short *count, t_atom **values) {
                           return jxmlfile_get(document.holder(), count_of(path), path.data(), kind, count, values, 1);
                       });
}

// The last atom, which names an attribute.
void expect_attribute_name(const Operation &operation) {
    expect_atoms(operation, 1, "the name of an attribute");
    if (atom_gettype(&operation.atoms.back()) != A_SYM)
        throw Refused{operation.name + ": " + text_of(operation.atoms.back()) + " cannot name an attribute"};
}

std::string getattr(Document &document, const Operation &operation) {
    expect_attribute_name(operation);
    std::vector<t_atom> atoms = operation.atoms;
    return read_values(operation, "getattr: refused", [&](t_symbol *kind, short *count, t_atom **values) {
        *count = 1;
        return jxmlfile_getattr(document.holder(), count_of(atoms), atoms.data(), kind, count, values, 1);
    });
}

std::string count(Document &document, const Operation &operation) {
    std::vector<t_atom> path = operation.atoms;
    constexpr long no_nodes = -2;
    const long told = complaints();
    short nodes = 0;
    const long result = jxmlfile_count(document.holder(), count_of(path), path.data(), &nodes, 1);
    if (complaints() != told)
        throw Refused{};
    if (result != 0)
        throw Refused{result == no_nodes ? "count: the expression selects no nodes" : "count: more than 32767 nodes"};
    return std::to_string(nodes) + "\n";
}

// A block of a file's bytes, which the layer takes over.
t_atom block_of(const std::string &file) {
    const std::string bytes = content_of(file);
    t_ptr block = sysmem_newptr(bytes.size());
    if (!block)
        throw Refused{"out of memory"};
    std::memcpy(block, bytes.data(), bytes.size());
    t_atom atom;
    atom_setobj(&atom, block);
    return atom;
}

bool is_keyword(const t_atom &atom) {
    return atom_getsym(&atom) == gensym("text") || atom_getsym(&atom) == gensym("cdata");
}

std::string set(Document &document, const Operation &operation) {
    std::vector<t_atom> atoms = operation.atoms;
    const auto keyword = std::find_if(atoms.begin(), atoms.end(), is_keyword);
    if (keyword == atoms.end())
        throw Refused{"set: \"text\" or \"cdata\" is missing"};
    const std::vector<t_atom> path(atoms.begin(), keyword);
    expect_positions(document, operation, path);
    if (!operation.data_file.empty()) {
        if (keyword + 1 != atoms.end() || atom_getsym(&*keyword) != gensym("cdata"))
            throw Refused{"set: --data-file is for \"cdata\" without other data"};
        atoms.push_back(block_of(operation.data_file));
    }
    attempt([&] { return jxmlfile_set(document.holder(), count_of(atoms), atoms.data(), 1); }, "set: refused");
    expect_root(document, operation, path);
    document.changed = true;
    return "";
}

std::string setattr(Document &document, const Operation &operation) {
    expect_atoms(operation, 2, "name or value of an attribute");
    std::vector<t_atom> atoms = operation.atoms;
    attempt([&] { return jxmlfile_setattr(document.holder(), count_of(atoms), atoms.data(), 1); }, "setattr: refused");
    document.changed = true;
    return "";
}

std::string remove(Document &document, const Operation &operation) {
    std::vector<t_atom> atoms = operation.atoms;
    t_jxmlfile *holder = document.holder();
    t_atom *path = atoms.data();
    long path_count = count_of(atoms);
    xmlNodePtr element = nullptr;
    attempt([&] { return jxmlfile_get_node(holder, &path_count, &path, &element, 1); }, "delete: refused");
    if (element == xmlDocGetRootElement(holder->doc))
        throw Refused{"delete: a file without a root element cannot be read again"};
    attempt([&] { return jxmlfile_delete(holder, count_of(atoms), atoms.data(), 1); }, "delete: refused");
    document.changed = true;
    return "";
}

std::string deleteattr(Document &document, const Operation &operation) {
    expect_attribute_name(operation);
    std::vector<t_atom> atoms = operation.atoms;
    attempt([&] { return jxmlfile_deleteattr(document.holder(), count_of(atoms), atoms.data(), 1); },
            "deleteattr: refused");
    document.changed = true;
    return "";
}

std::string print(Document &document, const Operation &) {
    jxmlfile_print(document.holder());
    return "";
}

// ---- operations on resources

t_symbol *type_of(const Operation &operation) {
    expect_atoms(operation, 1, "a type");
    return gensym(text_of(operation.atoms[0]).c_str());
}

std::string resources(Document &document, const Operation &operation) {
    t_symbol *type = type_of(operation);
    long counted = 0;
    attempt([&] { return jxmlresfile_count_resource(document.holder(), type, &counted, 1); }, "resources: refused");
    return std::to_string(counted) + "\n";
}

std::string resource(Document &document, const Operation &operation) {
    t_symbol *type = type_of(operation);
    const long number = number_at(operation, 1);
    return read_values(operation, "resource: refused", [&](t_symbol *kind, short *room, t_atom **values) {
        return jxmlresfile_get_resource(document.holder(), type, number, kind, room, values, 1);
    });
}

// The path of the numbered resources of a type; its last atom is the number.
std::array<t_atom, 6> resource_path(const Document &document, t_symbol *type) {
    std::array<t_atom, 6> path;
    t_symbol *const words[] = {document.holder()->root, document.holder()->xmlpath[0], type, gensym("attr"),
                               gensym("number")};
    for (size_t i = 0; i < std::size(words); ++i)
        atom_setsym(&path[i], words[i]);
    return path;
}

// The text at a path where it stands in the document; null when it has to be asked for as a value.
const char *text_in_place(const Document &document, std::span<t_atom> path) {
    t_atom *atoms = path.data();
    long count = static_cast<long>(path.size());
    xmlNodePtr element = nullptr;
    const bool found = jxmlfile_get_node(document.holder(), &count, &atoms, &element, 0) == 0;
    return found ? jxmlfile_plain_text(element) : nullptr;
}

// All resources of a type, one a line, in the order of their numbers from 0. There may be very many, most of them texts
// that need not become symbols.
std::string list(Document &document, const Operation &operation) {
    t_symbol *type = type_of(operation);
    long counted = 0;
    attempt([&] { return jxmlresfile_count_resource(document.holder(), type, &counted, 1); }, "list: refused");
    t_symbol *kind = gensym(operation.as.c_str());
    const bool as_text = operation.as.empty() || operation.as == "text";
    std::array<t_atom, 6> path = resource_path(document, type);
    std::string lines;
    lines.reserve(32 * static_cast<size_t>(counted));
    for (long number = 0; number < counted; ++number) {
        atom_setlong(&path.back(), number);
        if (const char *text = as_text ? text_in_place(document, path) : nullptr) {
            lines.append(text).append("\n");
            continue;
        }
        t_atom found;
        t_atom *value = &found;
        short count = 1;
        attempt([&] { return jxmlresfile_get_resource(document.holder(), type, number, kind, &count, &value, 1); },
                "list: refused");
        lines += shown({found}, "");
    }
    return lines;
}

// The atoms from the given one on as one text, numbers as "set" stores them.
std::string joined(const std::vector<t_atom> &atoms, size_t from) {
    std::string text;
    for (size_t i = from; i < atoms.size(); ++i) {
        const bool is_float = atom_gettype(&atoms[i]) == A_FLOAT;
        text.append(i == from ? "" : " ");
        text.append(is_float ? std::to_string(atom_getfloat(&atoms[i])) : text_of(atoms[i]));
    }
    return text;
}

std::string set_resource(Document &document, const Operation &operation) {
    t_symbol *type = type_of(operation);
    const long number = number_at(operation, 1);
    const bool from_file = !operation.data_file.empty();
    if (from_file == (operation.atoms.size() > 2))
        throw Refused{"set-resource: either a text or --data-file has to tell the content"};
    const t_jxmlfile *holder = document.holder();
    std::vector<t_atom> path(3);
    atom_setsym(&path[0], holder->root);
    atom_setsym(&path[1], holder->xmlpath[0]);
    atom_setsym(&path[2], type);
    expect_positions(document, operation, path);
    t_atom value;
    if (from_file)
        value = block_of(operation.data_file);
    else
        atom_setsym(&value, gensym(joined(operation.atoms, 2).c_str()));
    attempt([&] { return jxmlresfile_set_resource(document.holder(), type, number, &value, from_file, 1); },
            "set-resource: refused");
    expect_root(document, operation, path);
    document.changed = true;
    return "";
}

// The title, then the items with their numbers and commands.
std::string menu(Document &document, const Operation &operation) {
    const long number = number_at(operation, 0);
    Operation text = operation;
    text.as = "text";
    text.bytes = 1;
    std::string lines = read_values(text, "menu: refused", [&](t_symbol *kind, short *room, t_atom **values) {
        return jxmlresfile_get_menutitle(document.holder(), number, kind, room, values, 1);
    });
    long items = 0;
    attempt([&] { return jxmlresfile_count_menuitems(document.holder(), number, &items, 1); }, "menu: refused");
    for (long item = 0; item < items; ++item)
        lines += std::to_string(item) + " " +
                 read_values(text, "menu: refused", [&](t_symbol *kind, short *room, t_atom **values) {
                     return jxmlresfile_get_menuitem(document.holder(), number, item, kind, room, values, 1, 1);
                 });
    return lines;
}

using Handler = std::string (*)(Document &, const Operation &);

const std::map<std::string, Handler> handlers{
    {"get", get},
    {"getattr", getattr},
    {"count", count},
    {"set", set},
    {"setattr", setattr},
    {"delete", remove},
    {"deleteattr", deleteattr},
    {"print", print},
    {"resources", resources},
    {"resource", resource},
    {"list", list},
    {"set-resource", set_resource},
    {"menu", menu},
};

short bytes_of(const t_atom &value) {
    const t_atom_long bytes = atom_getlong(&value);
    if (atom_gettype(&value) != A_LONG || bytes < 1 || bytes > SHRT_MAX)
        throw Refused{"--bytes: " + text_of(value) + " is no number from 1 to 32767"};
    return static_cast<short>(bytes);
}

std::string kind_of(const std::string &value) {
    if (value != "int" && value != "float" && value != "text")
        throw Refused{"--as: " + value + " is none of int, float, text"};
    return value;
}

// Takes an option and its value off the front of the words; false when there is none.
bool take_option(std::vector<t_atom> &words, Operation &operation) {
    const std::string option = words.empty() ? "" : text_of(words[0]);
    if (!option.starts_with("--"))
        return false;
    if (words.size() < 2)
        throw Refused{option + ": a value is missing"};
    const std::string value = text_of(words[1]);
    if (option == "--as")
        operation.as = kind_of(value);
    else if (option == "--bytes")
        operation.bytes = bytes_of(words[1]);
    else if (option == "--out")
        operation.out = value;
    else if (option == "--data-file")
        operation.data_file = value;
    else
        throw Refused{option + ": no such option"};
    words.erase(words.begin(), words.begin() + 2);
    return true;
}

} // namespace

t_atom atom_of(const std::string &word) {
    t_atom atom;
    if (!parse_number(word, atom))
        atom_setsym(&atom, gensym(word.c_str()));
    return atom;
}

std::string expression_of(std::vector<t_atom> path) {
    std::vector<char> buffer(JXMLFILE_EXPRESSION_SIZE, 0);
    long count = count_of(path);
    t_atom *atoms = path.data();
    char *expression = buffer.data();
    jxmlfile_to_xmlXPath(&count, &atoms, &expression);
    return expression;
}

Operation parse_operation(const std::string &line) {
    std::vector<t_atom> words = parse_atoms(line);
    Operation operation;
    if (words.empty())
        return operation;
    operation.name = text_of(words[0]);
    words.erase(words.begin());
    while (take_option(words, operation)) {
    }
    operation.atoms = std::move(words);
    return operation;
}

std::string run_operation(Document &document, const Operation &operation) {
    const auto found = handlers.find(operation.name);
    if (found == handlers.end())
        throw Refused{operation.name + ": no such operation"};
    if (!operation.out.empty() && document.is_itself(operation.out))
        throw Refused{"--out: " + operation.out + " is the document itself"};
    return found->second(document, operation);
}
