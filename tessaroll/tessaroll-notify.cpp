// What the host and the data view ask of the list box: notifications, assistance, attributes, painting, clicks.
#include <cstring>
#include <iterator>

#include "vrk.tessaroll.h"

// ---- notifications and assistance

// "embed" switched on changes what is saved in the patcher; switched off, it marks nothing.
static void follow_attribute(t_tessaroll *box, const t_symbol *attribute) {
    if (attribute == gensym("fontname"))
        jlist_setfontname(box->jlist, jbox_get_fontname((t_object *)box));
    else if (attribute == gensym("fontsize"))
        jlist_setfontsize(box->jlist, jbox_get_fontsize((t_object *)box));
    else if (attribute == gensym("embed"))
        tessaroll_markchanged(box);
}

t_max_err tessaroll_notify(t_tessaroll *box, t_symbol *sender_name, t_symbol *message, void *sender, void *data) {
    if (message == _sym_attr_modified) {
        if (jlist_hasdataview(box->jlist))
            follow_attribute(box, (t_symbol *)object_method((t_object *)data, _sym_getname));
        jbox_redraw(&box->box);
    }
    return jbox_notify(&box->box, sender_name, message, sender, data);
}

void tessaroll_assist(t_tessaroll *, void *, long m, long a, char *text) {
    static const char *const outlets[] = {
        "itemnumber selected",
        "number of items in response to length message",
        "text of selected item",
    };
    constexpr long inlet = 1; // anything else is an outlet
    if (m == inlet)
        std::strcpy(text, "read file/resource");
    else if (a >= 0 && a < (long)std::size(outlets))
        std::strcpy(text, outlets[a]);
}

// ---- from the data view

void tessaroll_newpatcherview(t_tessaroll *box, t_object *patcherview) {
    jlist_newpatcherview(box->jlist, patcherview);
}

void tessaroll_freepatcherview(t_tessaroll *box, t_object *patcherview) {
    jlist_freepatcherview(box->jlist, patcherview);
}

// The host's call carries three ints.
void tessaroll_custompaintcell(t_tessaroll *box, t_object *patcherview, t_symbol *column, t_rowref row, int width,
                               int height, int selected) {
    jlist_custompaintcell(box->jlist, patcherview, column, (long)(t_ptr_int)row, (double)width, (double)height,
                          (char)selected);
}

void tessaroll_selected(t_tessaroll *box, t_symbol *column, t_rowref row) {
    jlist_selected(box->jlist, column, (long)(t_ptr_int)row);
    tessaroll_sendout(box);
}

// ---- attribute accessors

t_max_err tessaroll_getframe(t_tessaroll *box, void *attr, long *argc, t_atom **argv) {
    return jlist_getframe(box->jlist, attr, argc, argv);
}

t_max_err tessaroll_frame(t_tessaroll *box, void *attr, long argc, t_atom *argv) {
    return jlist_frame(box->jlist, attr, argc, argv);
}

t_max_err tessaroll_getselectcolor(t_tessaroll *box, void *attr, long *argc, t_atom **argv) {
    return jlist_getselectcolor(box->jlist, attr, argc, argv);
}

t_max_err tessaroll_selectcolor(t_tessaroll *box, void *attr, long argc, t_atom *argv) {
    return jlist_selectcolor(box->jlist, attr, argc, argv);
}

t_max_err tessaroll_getroot(t_tessaroll *box, void *attr, long *argc, t_atom **argv) {
    if (!box->xmlfile)
        return MAX_ERR_INVALID_PTR;
    return jxmlfile_getroot(box->xmlfile, attr, argc, argv);
}

t_max_err tessaroll_root(t_tessaroll *box, void *attr, long argc, t_atom *argv) {
    if (!box->xmlfile)
        return MAX_ERR_INVALID_PTR;
    return jxmlfile_root(box->xmlfile, attr, argc, argv);
}

t_max_err tessaroll_getxmlpath(t_tessaroll *box, void *attr, long *argc, t_atom **argv) {
    if (!box->xmlfile)
        return MAX_ERR_INVALID_PTR;
    return jxmlfile_getxmlpath(box->xmlfile, attr, argc, argv);
}

t_max_err tessaroll_xmlpath(t_tessaroll *box, void *attr, long argc, t_atom *argv) {
    if (!box->xmlfile)
        return MAX_ERR_INVALID_PTR;
    return jxmlfile_xmlpath(box->xmlfile, attr, argc, argv);
}
