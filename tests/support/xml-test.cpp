// A test with a document holder.
#include "support/xml-test.h"

#include <cstring>

#include "support/document-text.h"

using namespace maxhost;

namespace {

std::string failed(long result) { return "failed " + std::to_string(result); }

// The bytes of a block, which is released.
std::string taken_block(void *block) {
    static constexpr char digits[] = "0123456789ABCDEF";
    const auto *bytes = static_cast<const unsigned char *>(block);
    std::string text = "block";
    for (size_t i = 0; i < sysmem_ptrsize(block); ++i)
        text.append(" ").append(1, digits[bytes[i] >> 4]).append(1, digits[bytes[i] & 15]);
    sysmem_freeptr(block);
    return text;
}

std::string symbol_text(const t_atom &atom) {
    EXPECT_EQ(atom_gettype(&atom), A_SYM);
    return atom_gettype(&atom) == A_SYM ? atom_getsym(&atom)->s_name : "";
}

} // namespace

t_atom symbol_atom(const std::string &text) {
    t_atom atom;
    atom_setsym(&atom, gensym(text.c_str()));
    return atom;
}

t_atom block_atom(const std::string &bytes) {
    t_ptr block = sysmem_newptr(bytes.size());
    std::memcpy(block, bytes.data(), bytes.size());
    t_atom atom;
    atom_setobj(&atom, block);
    return atom;
}

std::string error(const std::string &text) { return "error: -: " + text; }
std::string warning(const std::string &text) { return "warn: -: " + text; }
std::string post(const std::string &text) { return "post: -: " + text; }

std::string unable(const std::string &what, const std::string &expression) {
    return error("unable to " + what + " xpath expression \"" + expression + "\"");
}

Atoms typed(const std::string &list, const Atoms &more) {
    Atoms atoms = parse_atoms(list);
    atoms.insert(atoms.end(), more.begin(), more.end());
    return atoms;
}

void XmlTest::SetUp() {
    HostTest::SetUp();
    holder = jxmlfile_new(nullptr);
    ASSERT_NE(holder, nullptr);
}

void XmlTest::TearDown() {
    fail_nth_allocation(0);
    jxmlfile_free(holder);
    for (const std::string &line : take_lines())
        EXPECT_FALSE(line.starts_with("misuse: ")) << line;
    HostTest::TearDown();
}

short XmlTest::load(const std::string &content, const std::string &name) {
    write_file(name, "<?xml version=\"1.0\"?>\n" + content);
    holder->file_path = nullptr; // so that a file of the same name is read again
    return load_file(name);
}

short XmlTest::load_file(const std::string &name) {
    char found[MAX_PATH_CHARS];
    strncpy_zero(found, name.c_str(), sizeof found);
    short path_id = 0;
    t_fourcc type = 0;
    if (locatefile_extended(found, &path_id, &type, nullptr, 0) != 0)
        return -1;
    return jxmlfile_load(holder, found, path_id);
}

bool XmlTest::reload() {
    jxmlfile_write(holder, gensym(path_of("reload.xml").c_str()));
    drain_queue();
    jxmlfile_bang(holder);
    drain_queue();
    return holder->loaded && holder->doc;
}

std::string XmlTest::document() const { return document_text(holder->doc); }

std::string XmlTest::expression(Atoms path, const std::string &before) {
    std::vector<char> buffer(JXMLFILE_EXPRESSION_SIZE, 0);
    before.copy(buffer.data(), buffer.size() - 1);
    char *text = buffer.data();
    t_atom *atoms = path.data();
    long count = static_cast<long>(path.size());
    jxmlfile_to_xmlXPath(&count, &atoms, &text);
    EXPECT_EQ(text, buffer.data());
    EXPECT_EQ(count, 0);
    EXPECT_EQ(atoms, path.data() + path.size());
    return text;
}

std::string XmlTest::get(const std::string &path, short room, const std::string &kind, char verbose) {
    Atoms atoms = typed(path);
    Atoms values(static_cast<size_t>(std::max<short>(room, 1)), symbol_atom("untouched"));
    t_atom *first = values.data();
    short count = room;
    const long result = jxmlfile_get(holder, static_cast<long>(atoms.size()), atoms.data(), gensym(kind.c_str()),
                                     &count, &first, verbose);
    if (result)
        return failed(result);
    if (count == 1 && atom_gettype(first) == A_OBJ)
        return taken_block(atom_getobj(first));
    return print_atoms(std::span(first, static_cast<size_t>(count)));
}

std::string XmlTest::getattr(const std::string &path_and_name, const std::string &kind, char verbose) {
    Atoms atoms = typed(path_and_name);
    t_atom value;
    t_atom *first = &value;
    const long result = jxmlfile_getattr(holder, static_cast<long>(atoms.size()), atoms.data(), gensym(kind.c_str()),
                                         nullptr, &first, verbose);
    return result ? failed(result) : print_atom(value);
}

std::string XmlTest::count(const std::string &path, char verbose) {
    Atoms atoms = typed(path);
    constexpr short untouched = -99;
    short nodes = untouched;
    const long result = jxmlfile_count(holder, static_cast<long>(atoms.size()), atoms.data(), &nodes, verbose);
    EXPECT_TRUE(result == 0 || nodes == untouched);
    return result ? failed(result) : std::to_string(nodes);
}

std::string XmlTest::text(const std::string &path) {
    Atoms atoms = typed(path);
    t_atom value;
    atom_setlong(&value, 0);
    t_atom *first = &value;
    short count = 1;
    EXPECT_EQ(jxmlfile_get(holder, static_cast<long>(atoms.size()), atoms.data(), gensym("text"), &count, &first, 1),
              0);
    return symbol_text(value);
}

std::string XmlTest::attribute(const std::string &path_and_name) {
    Atoms atoms = typed(path_and_name);
    t_atom value;
    atom_setlong(&value, 0);
    t_atom *first = &value;
    EXPECT_EQ(
        jxmlfile_getattr(holder, static_cast<long>(atoms.size()), atoms.data(), gensym("text"), nullptr, &first, 1), 0);
    return symbol_text(value);
}

long XmlTest::set(const std::string &path_and_data, const Atoms &more, char verbose) {
    Atoms atoms = typed(path_and_data, more);
    return jxmlfile_set(holder, static_cast<long>(atoms.size()), atoms.data(), verbose);
}

long XmlTest::setattr(const std::string &path_name_value, const Atoms &more, char verbose) {
    Atoms atoms = typed(path_name_value, more);
    return jxmlfile_setattr(holder, static_cast<long>(atoms.size()), atoms.data(), verbose);
}

long XmlTest::remove(const std::string &path, char verbose) {
    Atoms atoms = typed(path);
    return jxmlfile_delete(holder, static_cast<long>(atoms.size()), atoms.data(), verbose);
}

long XmlTest::removeattr(const std::string &path_and_name, char verbose) {
    Atoms atoms = typed(path_and_name);
    return jxmlfile_deleteattr(holder, static_cast<long>(atoms.size()), atoms.data(), verbose);
}
