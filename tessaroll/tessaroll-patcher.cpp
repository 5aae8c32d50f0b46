// Saving the items of the list box in the patcher, and restoring them.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "vrk.tessaroll.h"

// The longest text that is restored without a word, in bytes.
static constexpr long longest_text = 2048;

static bool too_long(const t_symbol *text) { return std::strlen(text->s_name) > (size_t)longest_text; }

// The host sets "embed" with the region held.
static bool is_embedded(const t_tessaroll *box) {
    critical_section hold;
    return box->embed != 0;
}

void tessaroll_markchanged(t_tessaroll *box) {
    t_object *patcher = is_embedded(box) ? jbox_get_patcher((t_object *)box) : nullptr;
    if (patcher)
        jpatcher_set_dirty(patcher, 1);
}

// ---- saving

static constexpr long no_data = -1;

// The items as atoms, at one moment; null when memory runs out, or when there is no data: then the count stays.
static malloc_array<t_atom> copy_items(t_jlist *list, long *count) {
    critical_section hold;
    if (!jlist_hasdata(list))
        return nullptr;
    *count = jlist_numrows(list);
    malloc_array<t_atom> items((t_atom *)std::malloc((size_t)std::max(*count, 1L) * sizeof(t_atom)));
    for (long i = 0; items && i < *count; i++)
        atom_setsym(&items[i], (t_symbol *)jlist_getdata(list, i + 1));
    return items;
}

void tessaroll_save(t_tessaroll *box, t_dictionary *dictionary) {
    if (!box || !dictionary || !is_embedded(box))
        return;
    long count = no_data;
    const malloc_array<t_atom> items = copy_items(box->jlist, &count);
    if (count == no_data)
        return;
    if (!items || dictionary_appendatoms(dictionary, gensym("restoreitems"), count, items.get()))
        object_error((t_object *)box, "out of memory: the items are not saved");
}

// ---- restoring

static void defer_append(t_tessaroll *box, t_atom *item) {
    defer_low(box, (method)tessaroll_doappend, gensym("append"), 1, item);
}

// defer_low counts in 16 bits: more items go in pieces. An atom that is no symbol ends the restoring, so that the
// pieces after it are not queued.
void tessaroll_deferrestore(t_tessaroll *box, long argc, t_atom *argv) {
    const auto is_text = [](const t_atom &atom) { return atom_gettype(&atom) == A_SYM; };
    bool goes_on = true;
    while (goes_on) {
        const long piece = std::min<long>(argc, std::numeric_limits<short>::max());
        defer_low(box, (method)tessaroll_dorestoreitems, gensym("restoreitems"), (short)piece, argv);
        goes_on = piece < argc && std::all_of(argv, argv + piece, is_text);
        argc -= piece;
        argv += piece;
    }
}

void tessaroll_restoreitem(t_tessaroll *box, t_symbol *text) {
    if (too_long(text)) {
        object_error((t_object *)box, "item to restore > %ld characters", longest_text);
        return;
    }
    t_atom item;
    atom_setsym(&item, text);
    defer_append(box, &item);
}

// The number in the message is that of the items left, this one among them, on purpose.
void tessaroll_restoreitems(t_tessaroll *box, t_symbol *, long argc, t_atom *argv) {
    for (; argc > 0 && argv && atom_gettype(argv) == A_SYM; argc--, argv++) {
        if (too_long(atom_getsym(argv)))
            object_error((t_object *)box, "item %ld to restore > %ld characters", argc, longest_text);
        defer_append(box, argv);
    }
}

void tessaroll_dorestoreitems(t_tessaroll *box, t_symbol *message, short argc, t_atom *argv) {
    tessaroll_restoreitems(box, message, argc, argv);
}

void tessaroll_restore(t_tessaroll *box, t_atom_long size, t_atom_long font_number) {
    t_object *host_box = (t_object *)box;
    if (size != -1)
        jbox_set_fontsize(host_box, (double)size);
    if (font_number != -1)
        jbox_set_fontname(host_box, fontinfo_getname((short)font_number));
    jbox_redraw(&box->box);
}

void tessaroll_done(t_tessaroll *) { tessaroll_bind(nullptr); }
