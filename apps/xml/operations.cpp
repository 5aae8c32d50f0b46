// The operations of vrk-xml.
#include "operations.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>

#include "embed/host.h"
#include "ext.h"
#include "vrk.jxml-resfile.h"

using namespace maxhost;

namespace {

// The layer refuses by a result other than 0; it has said why, or there is nothing to say.
void check(long result) {
    if (result != 0)
        throw Refused{};
}

long count_of(const std::vector<t_atom> &atoms) { return static_cast<long>(atoms.size()); }

void expect_atoms(const Operation &operation, size_t least, const char *what) {
    if (operation.atoms.size() < least)
        throw Refused{operation.name + ": " + what + " is missing"};
}

long number_at(const Operation &operation, size_t at) {
    expect_atoms(operation, at + 1, "a number");
    if (atom_gettype(&operation.atoms[at]) != A_LONG)
        throw Refused{operation.name + ": " + print_atom(operation.atoms[at]) + " is no number"};
    return atom_getlong(&operation.atoms[at]);
}

// The text of an atom, as a name.
std::string text_of(const t_atom &atom) {
    return atom_gettype(&atom) == A_SYM ? atom_getsym(&atom)->s_name : print_atom(atom);
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

void write_bytes(const std::string &file, std::span<const char> bytes) {
    std::ofstream out(file, std::ios::binary);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!out.flush())
        throw Refused{"unable to write " + file};
}

// Text as it is, numbers as they are typed, several with blanks between; a block of bytes in hexadecimal, or into the
// file that was asked for.
std::string shown(std::vector<t_atom> &values, const std::string &out) {
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

// Calls a reader with room for values and shows what it gives.
template <typename Reader> std::string read_values(const Operation &operation, Reader reader) {
    if (operation.bytes < 1)
        throw Refused{operation.name + ": no room for a value"};
    std::vector<t_atom> values(static_cast<size_t>(operation.bytes));
    for (t_atom &value : values)
        atom_setlong(&value, 0);
    t_atom *first = values.data();
    short count = operation.bytes;
    check(reader(gensym(operation.as.c_str()), &count, &first));
    values.resize(static_cast<size_t>(count));
    return shown(values, operation.out);
}

// ---- operations on paths

std::string get(Document &document, const Operation &operation) {
    std::vector<t_atom> path = operation.atoms;
    return read_values(operation, [&](t_symbol *kind, short *count, t_atom **values) {
        return jxmlfile_get(document.holder(), count_of(path), path.data(), kind, count, values, 1);
    });
}

std::string getattr(Document &document, const Operation &operation) {
    expect_atoms(operation, 1, "the name of an attribute");
    std::vector<t_atom> atoms = operation.atoms;
    return read_values(operation, [&](t_symbol *kind, short *count, t_atom **values) {
        *count = 1;
        return jxmlfile_getattr(document.holder(), count_of(atoms), atoms.data(), kind, count, values, 1);
    });
}

std::string count(Document &document, const Operation &operation) {
    std::vector<t_atom> path = operation.atoms;
    short nodes = 0;
    check(jxmlfile_count(document.holder(), count_of(path), path.data(), &nodes, 1));
    return std::to_string(nodes) + "\n";
}

// A block of a file's bytes, which the layer takes over.
t_atom block_of(const std::string &file) {
    std::ifstream in(file, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(in), {}};
    if (!in)
        throw Refused{"can't find " + file};
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
    if (std::none_of(atoms.begin(), atoms.end(), is_keyword))
        throw Refused{"set: \"text\" or \"cdata\" is missing"};
    if (!operation.data_file.empty()) {
        if (atom_getsym(&atoms.back()) != gensym("cdata"))
            throw Refused{"set: data from a file belongs behind \"cdata\""};
        atoms.push_back(block_of(operation.data_file));
    }
    check(jxmlfile_set(document.holder(), count_of(atoms), atoms.data(), 1));
    document.changed = true;
    return "";
}

// The operations that change the document and answer nothing.
template <auto change> std::string changing(Document &document, const Operation &operation) {
    std::vector<t_atom> atoms = operation.atoms;
    check(change(document.holder(), count_of(atoms), atoms.data(), 1));
    document.changed = true;
    return "";
}

std::string setattr(Document &document, const Operation &operation) {
    expect_atoms(operation, 2, "name or value of an attribute");
    return changing<jxmlfile_setattr>(document, operation);
}

std::string deleteattr(Document &document, const Operation &operation) {
    expect_atoms(operation, 1, "the name of an attribute");
    return changing<jxmlfile_deleteattr>(document, operation);
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
    long counted = 0;
    check(jxmlresfile_count_resource(document.holder(), type_of(operation), &counted, 1));
    return std::to_string(counted) + "\n";
}

std::string resource(Document &document, const Operation &operation) {
    t_symbol *type = type_of(operation);
    const long number = number_at(operation, 1);
    return read_values(operation, [&](t_symbol *kind, short *room, t_atom **values) {
        return jxmlresfile_get_resource(document.holder(), type, number, kind, room, values, 1);
    });
}

std::string set_resource(Document &document, const Operation &operation) {
    t_symbol *type = type_of(operation);
    const long number = number_at(operation, 1);
    const bool from_file = !operation.data_file.empty();
    if (!from_file)
        expect_atoms(operation, 3, "a text");
    t_atom value;
    if (from_file)
        value = block_of(operation.data_file);
    else
        atom_setsym(&value, gensym(text_of(operation.atoms[2]).c_str()));
    check(jxmlresfile_set_resource(document.holder(), type, number, &value, from_file, 1));
    document.changed = true;
    return "";
}

// The title, then the items with their numbers and commands.
std::string menu(Document &document, const Operation &operation) {
    const long number = number_at(operation, 0);
    Operation text = operation;
    text.as = "text";
    text.bytes = 1;
    std::string lines = read_values(text, [&](t_symbol *kind, short *room, t_atom **values) {
        return jxmlresfile_get_menutitle(document.holder(), number, kind, room, values, 1);
    });
    long items = 0;
    check(jxmlresfile_count_menuitems(document.holder(), number, &items, 1));
    for (long item = 0; item < items; ++item)
        lines += std::to_string(item) + " " + read_values(text, [&](t_symbol *kind, short *room, t_atom **values) {
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
    {"delete", changing<jxmlfile_delete>},
    {"deleteattr", deleteattr},
    {"print", print},
    {"resources", resources},
    {"resource", resource},
    {"set-resource", set_resource},
    {"menu", menu},
};

// Takes an option and its value off the front of the words; false when there is none.
bool take_option(std::vector<t_atom> &words, Operation &operation) {
    const std::string option = words.empty() ? "" : text_of(words[0]);
    if (!option.starts_with("--"))
        return false;
    if (words.size() < 2)
        throw Refused{option + ": a value is missing"};
    const std::string value = text_of(words[1]);
    if (option == "--as")
        operation.as = value;
    else if (option == "--bytes")
        operation.bytes = static_cast<short>(std::clamp<t_atom_long>(atom_getlong(&words[1]), 0, SHRT_MAX));
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
    return found->second(document, operation);
}
