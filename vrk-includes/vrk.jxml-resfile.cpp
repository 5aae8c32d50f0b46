// Resource files: numbered resources by type, and menus, in the document of a holder.
#include <algorithm>
#include <array>
#include <cstring>
#include <cwchar>
#include <iterator>
#include <string_view>

#include "vrk.jxml-resfile.h"

#include "vrk.pathname.h"
#include "vrk.utf8.h"
#include "vrk.wholefile.h"

constexpr size_t LABEL_SIZE = 1024; // a label with its command and a terminating zero

// The longest path, with what "set" adds to it.
using path_atoms = std::array<t_atom, 10>;

// The words that are needed for every resource, interned once.
struct resource_symbols {
    t_symbol *nothing = gensym("");
    t_symbol *attr = gensym("attr");
    t_symbol *number = gensym("number");
    t_symbol *text = gensym("text");
    t_symbol *cdata = gensym("cdata");
};

static const resource_symbols &symbols() {
    static const resource_symbols all;
    return all;
}

// A path in the order of its atoms: a text becomes a symbol.
static void append(t_atom *&end, const char *word) { atom_setsym(end++, gensym(word)); }
static void append(t_atom *&end, t_symbol *word) { atom_setsym(end++, word); }
static void append(t_atom *&end, long number) { atom_setlong(end++, number); }

// ROOT GROUP ELEMENT "attr" "number" NUMBER; returns what comes after it.
static t_atom *numbered_path(const t_jxmlfile *holder, t_symbol *element, long number, path_atoms &path) {
    t_atom *end = path.data();
    append(end, holder->root);
    append(end, holder->xmlpath[0]);
    append(end, element);
    append(end, symbols().attr);
    append(end, symbols().number);
    append(end, number);
    return end;
}

// Whether the holder's document and path can be used; says why not.
static bool is_ready(const t_jxmlfile *holder) {
    if (!holder)
        return false;
    const char *missing = nullptr;
    if (!holder->loaded || !holder->doc)
        missing = "no xml file loaded";
    else if (holder->root == symbols().nothing)
        missing = "no root tag defined";
    else if (holder->xmlpath[0] == symbols().nothing)
        missing = "no xml path defined";
    if (missing)
        object_error(holder->owner, "%s", missing);
    return !missing;
}

// The same for menus, which ask for both words of the path although they use only the first.
static bool is_ready_for_menus(const t_jxmlfile *holder) {
    if (!is_ready(holder))
        return false;
    if (holder->xmlpath[1] != symbols().nothing)
        return true;
    object_error(holder->owner, "no xml path defined");
    return false;
}

// ---- resources

// What follows a line about a count that failed: why, when the path has selected that many nodes.
static const char *reason_of_failure(long counted) { return counted > SHRT_MAX ? " (more than 32767)" : ""; }

// Counts what the path selects. False when that fails or is more than 16 bits count.
static bool count_nodes(t_jxmlfile *holder, path_atoms &path, const t_atom *end, long *count) {
    return jxmlfile_count_all(holder, end - path.data(), path.data(), count) == 0 && *count <= SHRT_MAX;
}

long jxmlresfile_count_resource(t_jxmlfile *holder, t_symbol *type, long *count, char) {
    if (!is_ready(holder))
        return -1;
    path_atoms path;
    t_atom *end = path.data();
    append(end, holder->root);
    append(end, holder->xmlpath[0]);
    if (type != gensym("types"))
        append(end, type);
    long counted = 0;
    if (!count_nodes(holder, path, end, &counted)) {
        object_error(holder->owner, "cannot count resources of type %s%s", type->s_name, reason_of_failure(counted));
        return -1;
    }
    *count = counted;
    return 0;
}

long jxmlresfile_get_resource(t_jxmlfile *holder, t_symbol *type, long number, t_symbol *value_kind, short *count,
                              t_atom **result, char verbose) {
    if (!is_ready(holder))
        return -1;
    path_atoms path;
    const t_atom *end = numbered_path(holder, type, number, path);
    if (jxmlfile_get(holder, end - path.data(), path.data(), value_kind, count, result, verbose) == 0 || !verbose)
        return 0; // a quiet caller looks at *count and *result (docs/compatibility.md)
    object_error(holder->owner, "cannot get resource %s number %ld", type->s_name, number);
    return -1;
}

// The first of the path's words that "set" would take for the keyword that ends it, to write into the wrong element;
// null when there is none.
static const t_symbol *hiding_keyword(const path_atoms &path) {
    for (size_t i = 0; i < 3; ++i)
        if (const t_symbol *word = atom_getsym(&path[i]); word == symbols().text || word == symbols().cdata)
            return word;
    return nullptr;
}

long jxmlresfile_set_resource(t_jxmlfile *holder, t_symbol *type, long number, t_atom *value, char as_cdata,
                              char verbose) {
    host_block<void> block(as_cdata ? atom_getobj(value) : nullptr);
    if (!is_ready(holder))
        return -1;
    path_atoms path;
    t_atom *end = numbered_path(holder, type, number, path);
    append(end, as_cdata ? symbols().cdata : symbols().text);
    *end++ = *value;
    const t_symbol *const keyword = hiding_keyword(path);
    if (!keyword)
        (void)block.release(); // jxmlfile_set takes it
    if (!keyword && jxmlfile_set(holder, end - path.data(), path.data(), verbose) == 0)
        return 0;
    if (!verbose)
        return 0;
    if (keyword)
        object_error(holder->owner, "cannot set resource %s number %ld (\"%s\" ends a path)", type->s_name, number,
                     keyword->s_name);
    else
        object_error(holder->owner, "cannot set resource %s number %ld", type->s_name, number);
    return -1;
}

// ---- menus

long jxmlresfile_get_menutitle(t_jxmlfile *holder, long menu, t_symbol *value_kind, short *count, t_atom **result,
                               char verbose) {
    if (!is_ready_for_menus(holder))
        return -1;
    path_atoms path;
    t_atom *end = numbered_path(holder, gensym("menu"), menu, path);
    append(end, "menu-title");
    if (jxmlfile_get(holder, end - path.data(), path.data(), value_kind, count, result, verbose) == 0)
        return 0;
    object_error(holder->owner, "cannot get menu-title from %s %ld", holder->xmlpath[1]->s_name, menu);
    return -1;
}

long jxmlresfile_count_menuitems(t_jxmlfile *holder, long menu, long *count, char) {
    if (!is_ready_for_menus(holder))
        return -1;
    path_atoms path;
    t_atom *end = numbered_path(holder, gensym("menu"), menu, path);
    append(end, "menu-item");
    long counted = 0;
    if (!count_nodes(holder, path, end, &counted)) {
        wchar_t number[24]; // "%ls" asks for a wide text (docs/compatibility.md)
        std::swprintf(number, std::size(number), L"%ld", menu);
        object_error(holder->owner, "cannot count menu-items of %s %ls%s", holder->xmlpath[1]->s_name, number,
                     reason_of_failure(counted));
        return -1;
    }
    *count = counted;
    return 0;
}

// The symbol that a read has left, the empty one for anything else. Bytes are no label: their block is released.
static t_symbol *taken_symbol(short count, const t_atom *result) {
    if (count < 1)
        return symbols().nothing;
    sysmem_freeptr(atom_getobj(result));
    return atom_getsym(result);
}

// The text up to its first blank, without blanks in front.
static std::string_view first_word(std::string_view text) {
    constexpr std::string_view blanks = " \t\n\v\f\r";
    const size_t begin = std::min(text.find_first_not_of(blanks), text.size());
    const size_t end = std::min(text.find_first_of(blanks, begin), text.size());
    return text.substr(begin, end - begin);
}

// "LABEL/COMMAND", the label alone without a command; cut to a size that menus can hold.
static t_symbol *labelled(const t_symbol *label, std::string_view command) {
    char text[LABEL_SIZE] = "";
    size_t length = 0;
    for (const std::string_view part :
         {std::string_view(label->s_name), std::string_view(command.empty() ? "" : "/"), command}) {
        const size_t taken = vrk_whole_characters(part, LABEL_SIZE - 1 - length);
        length += part.copy(text + length, taken);
        if (taken < part.size())
            break;
    }
    return gensym(text);
}

long jxmlresfile_get_menuitem(t_jxmlfile *holder, long menu, long item, t_symbol *value_kind, short *count,
                              t_atom **result, char with_command, char verbose) {
    if (!is_ready_for_menus(holder))
        return -1;
    path_atoms path;
    t_atom *end = numbered_path(holder, gensym("menu"), menu, path);
    t_atom *const kind = end;
    append(end, "menu-item");
    append(end, symbols().attr);
    append(end, symbols().number);
    append(end, item);
    const long path_count = end - path.data();
    short none = 0;
    if (!count)
        count = &none;
    const short room = *count;
    if (jxmlfile_get(holder, path_count, path.data(), value_kind, count, result, verbose) != 0) {
        object_error(holder->owner, "cannot get menu-item %ld of %s %ld", item, holder->xmlpath[1]->s_name, menu);
        return -1;
    }
    const t_symbol *label = taken_symbol(*count, *result);
    std::string_view command;
    if (with_command && label != gensym("-")) {
        atom_setsym(kind, gensym("menu-command"));
        *count = room;
        if (jxmlfile_get(holder, path_count, path.data(), value_kind, count, result, 0) == 0)
            command = first_word(taken_symbol(*count, *result)->s_name);
    }
    atom_setsym(*result, labelled(label, command));
    *count = 1;
    return 0;
}

// ---- files

// A lookup can fail for want of memory as well; a file that is there all the same must not be made anew.
static bool can_be_made(const t_jxmlfile *holder, t_symbol *filename) {
    const t_symbol *path = vrk_path_to_OSX_path(holder->owner, filename);
    const bool is_free = path->s_name[0] && !vrk_file_exists(path->s_name);
    if (!is_free)
        object_error(holder->owner, "can't find %s", filename->s_name);
    return is_free;
}

t_symbol *jxmlresfile_read(t_jxmlfile *holder, t_symbol *filename) {
    t_symbol *located = vrk_file_locate(filename);
    char name[MAX_FILENAME_CHARS] = "";
    short path_id = 0;
    if (!located && holder && filename && can_be_made(holder, filename))
        jxmlfile_newdoc(holder, filename);
    if (located) {
        path_frompathname(located->s_name, &path_id, name);
        jxmlfile_load(holder, name, path_id); // reports a path that could not be split
    }
    return located;
}

void jxmlresfile_open(t_jxmlfile *holder) {
    if (holder && holder->loaded)
        jxmlfile_open(holder);
    else
        ouchstring("No xml file loaded");
}
