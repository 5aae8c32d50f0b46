// Saving the items of the list box in the patcher, and restoring them.
#include <algorithm>
#include <array>
#include <cstddef>
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

static bool is_text(const t_atom &atom) { return atom_gettype(&atom) == A_SYM; }

// Queues the texts in pieces. The first atom of each is the number of atoms after it.
static void defer_pieces(t_tessaroll *box, long argc, const t_atom *argv) {
    std::array<t_atom, 1024> piece;
    const t_atom *const end = argv + argc, *const end_of_texts = std::find_if_not(argv, end, is_text);
    while (argv < end_of_texts) {
        const t_atom *const next = argv + std::min<ptrdiff_t>(end_of_texts - argv, piece.size() - 1);
        atom_setlong(piece.data(), end - next);
        const t_atom *const end_of_piece = std::copy(argv, next, piece.begin() + 1);
        defer_low(box, (method)tessaroll_dorestorepiece, gensym("restoreitems"), (short)(end_of_piece - piece.data()),
                  piece.data());
        argv = next;
    }
}

void tessaroll_deferrestore(t_tessaroll *box, long argc, t_atom *argv) {
    if (argc > std::numeric_limits<short>::max())
        defer_pieces(box, argc, argv); // defer_low counts in 16 bits
    else
        defer_low(box, (method)tessaroll_dorestoreitems, gensym("restoreitems"), (short)argc, argv);
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

// The number in the message is that of the atoms left, this one and the `after` that follow among them: it counts
// down (docs/compatibility.md).
static void restore_items(t_tessaroll *box, long argc, t_atom *argv, long after) {
    for (; argc > 0 && argv && is_text(*argv); argc--, argv++) {
        if (too_long(atom_getsym(argv)))
            object_error((t_object *)box, "item %ld to restore > %ld characters", argc + after, longest_text);
        defer_append(box, argv);
    }
}

void tessaroll_restoreitems(t_tessaroll *box, t_symbol *, long argc, t_atom *argv) {
    restore_items(box, argc, argv, 0);
}

void tessaroll_dorestoreitems(t_tessaroll *box, t_symbol *, short argc, t_atom *argv) {
    restore_items(box, argc, argv, 0);
}

void tessaroll_dorestorepiece(t_tessaroll *box, t_symbol *, short argc, t_atom *argv) {
    restore_items(box, argc - 1, argv + 1, (long)atom_getlong(argv));
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
