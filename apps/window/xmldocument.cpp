// An XML file that is edited in a text editor window.

#include <cstring>

#include "vrk.jxmlfile.h" // libxml2's headers come before the host's

#include "xmldocument.h"

#include <QFileInfo>

#include "vrk.pathname.h"

namespace {

// The owner of the editor: what it hears goes to the holder of the document.
struct XmlDocument {
    t_object object;
    t_jxmlfile *holder;
};

t_class *document_class;

void *document_new() {
    auto *x = static_cast<XmlDocument *>(object_alloc(document_class));
    if (x)
        x->holder = jxmlfile_new(&x->object);
    return x;
}

void document_free(XmlDocument *x) { jxmlfile_free(x->holder); }

// The holder queues its writing, which does not tell whether it could write: so it is written here as well.
long document_edsave(XmlDocument *x, char **text, long size, const char *name, t_ptr_int folder) {
    const long result = jxmlfile_edsave(x->holder, text, size, name, static_cast<short>(folder));
    const bool is_taken = result > 0;
    const int written = is_taken ? vrk_save_document(x->holder->write_path, x->holder->doc) : 0;
    if (written < 0)
        object_error(&x->object, "unable to write %s (%s)", name, std::strerror(-written));
    return result;
}

void document_edclose(XmlDocument *x, char **text, long size) {
    jxmlfile_edclose(x->holder, text, size);
    object_free(x);
}

bool load(t_jxmlfile *holder, const QString &path) {
    char name[MAX_FILENAME_CHARS] = "";
    short folder = 0;
    return path_frompathname(path.toUtf8().constData(), &folder, name) == 0 && jxmlfile_load(holder, name, folder) &&
           holder->loaded;
}

XmlDocument *open_document(const QString &file, QString &reason) {
    const QFileInfo info(file);
    if (!info.isFile() || !info.isReadable()) {
        reason = info.exists() ? "cannot be read" : "not found";
        return nullptr;
    }
    auto *x = static_cast<XmlDocument *>(object_new(CLASS_NOBOX, gensym("xmldocument")));
    if (!x || !x->holder)
        reason = "out of memory";
    else if (!load(x->holder, info.canonicalFilePath()))
        reason = "no XML file that can be parsed";
    else
        return x;
    object_free(x);
    return nullptr;
}

} // namespace

void register_xml_document() {
    if (document_class)
        return;
    document_class = class_new("xmldocument", reinterpret_cast<method>(document_new),
                               reinterpret_cast<method>(document_free), sizeof(XmlDocument), nullptr, A_GIMME, 0);
    class_addmethod(document_class, reinterpret_cast<method>(document_edsave), "edsave", A_CANT, 0);
    class_addmethod(document_class, reinterpret_cast<method>(document_edclose), "edclose", A_CANT, 0);
    class_register(CLASS_NOBOX, document_class);
}

bool edit_xml_file(const QString &file, QString &reason) {
    const XmlDocument *x = open_document(file, reason);
    if (x)
        jxmlfile_open(x->holder);
    return x != nullptr;
}

bool read_xml_text(const QString &file, QString &text, QString &reason) {
    XmlDocument *x = open_document(file, reason);
    if (!x)
        return false;
    const xml_text bytes = jxmlfile_editor_text(x->holder);
    if (bytes)
        text = QString::fromUtf8(reinterpret_cast<const char *>(bytes.get()));
    else
        reason = "out of memory";
    object_free(x);
    return bytes != nullptr;
}
