// A document that is worked on from the shell.
#include "document.h"

#include <filesystem>

#include "ext.h"
#include "vrk.pathname.h"

namespace fs = std::filesystem;

namespace {

std::string full_path(const std::string &file) { return fs::absolute(file).lexically_normal().string(); }

t_symbol *name_or(const std::string &name, t_symbol *otherwise) {
    return name.empty() ? otherwise : gensym(name.c_str());
}

} // namespace

Document::Document(const Names &names) : holder_(jxmlfile_new(nullptr)) {
    if (!holder_)
        throw Refused{"out of memory"};
    holder_->root = name_or(names.root, holder_->root);
    for (size_t i = 0; i < names.xmlpath.size() && i < 2; ++i)
        holder_->xmlpath[i] = name_or(names.xmlpath[i], holder_->xmlpath[i]);
}

void Document::load(const std::string &file) {
    const std::string path = full_path(file);
    char name[MAX_FILENAME_CHARS] = "";
    short folder = 0;
    if (!fs::is_regular_file(path) || path_frompathname(path.c_str(), &folder, name) != 0)
        throw Refused{"can't find " + file};
    if (!jxmlfile_load(holder(), name, folder))
        throw Refused{file + " is not an appropriate xml file"};
    if (!holder()->loaded)
        throw Refused{};
}

void Document::create(const std::string &file) {
    const std::string path = full_path(file);
    if (fs::exists(path))
        throw Refused{file + " is there already"};
    jxmlfile_newdoc(holder(), gensym(path.c_str()));
    if (!fs::exists(path))
        throw Refused{"unable to write " + file};
}

// Beside the target and renamed, so that a failed save leaves what was there.
void Document::save(const std::string &file) const {
    std::error_code error;
    const fs::path target = fs::canonical(file, error); // a link stays a link
    const fs::path path = error ? fs::path(full_path(file)) : target;
    const fs::path beside = path.string() + ".vrk-new";
    const bool written = vrk_save_document(gensym(beside.c_str()), holder()->doc) >= 0;
    if (written && fs::exists(path))
        fs::permissions(beside, fs::status(path).permissions(), error);
    if (written)
        fs::rename(beside, path, error);
    if (!written || error) {
        fs::remove(beside, error);
        throw Refused{"unable to write " + file};
    }
}
