// List models for the benchmarks.
#include "lists.h"

BareList::BareList(const char *column) : list_(jlist_new(nullptr, gensym(column), JLIST_FILE_TYPE)) {
    list_->dataview = static_cast<t_object *>(jdataview_new());
}

void BareList::append() {
    static t_symbol *const mode = gensym("append");
    static t_symbol *const item = gensym("an item");
    t_atom atom{A_SYM, {.w_sym = item}};
    jlist_append(list_, mode, item, 1, &atom);
}

void BareList::append(long rows) {
    for (long i = 0; i < rows; ++i)
        append();
}

void BareList::remove_last() {
    jlist_setdelete(list_, list_->row_count - 1);
    jlist_delete(list_);
}

Holder::Holder(const char *type) : holder_(jxmlfile_new(nullptr)) { holder_->xmlpath[1] = gensym(type); }
