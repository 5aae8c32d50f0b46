// A document that is worked on from the shell.
#include "document.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

#include "ext.h"
#include "vrk.pathname.h"

namespace fs = std::filesystem;

namespace {

// The folder as the system finds it, where "link/.." is not the folder that the link is in.
std::string full_path(const std::string &file) {
    const fs::path path = fs::absolute(file);
    std::error_code error;
    const fs::path folder = fs::canonical(path.parent_path(), error);
    return (error ? path : folder / path.filename()).string();
}

t_symbol *name_or(const std::string &name, t_symbol *otherwise) {
    return name.empty() ? otherwise : gensym(name.c_str());
}

// Refuses what is no file or cannot be opened, which the layer would not tell from a file of another format.
void expect_readable(const std::string &file) {
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (status.type() == fs::file_type::not_found)
        throw Refused{"can't find " + file};
    if (!error && !fs::is_regular_file(status))
        throw Refused{file + " is no file"};
    errno = 0;
    if (error || !std::ifstream(file))
        throw Refused{"can't read " + file + ": " + (error ? error.message() : std::generic_category().message(errno))};
}

// Where libxml2 has given up on a file; empty when it has not.
std::string parse_error(const std::string &file) {
    const xmlError *error = xmlGetLastError();
    if (!error || !error->message)
        return "";
    std::string_view reason(error->message);
    while (reason.ends_with('\n'))
        reason.remove_suffix(1);
    return file + ":" + std::to_string(error->line) + ": " + std::string(reason);
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
    expect_readable(file);
    loaded_ = full_path(file);
    stamp_ = maxhost::stamp_of(loaded_);
    char name[MAX_FILENAME_CHARS] = "";
    short folder = 0;
    if (path_frompathname(full_path(file).c_str(), &folder, name) != 0)
        throw Refused{"can't find " + file};
    xmlResetLastError();
    if (!jxmlfile_load(holder(), name, folder))
        throw Refused{file + " does not begin with \"<?xml\""};
    if (!holder()->loaded)
        throw Refused{parse_error(file)};
}

void Document::create(const std::string &file) {
    std::error_code error;
    if (fs::exists(fs::symlink_status(file, error)))
        throw Refused{file + " is there already"};
    jxmlfile_newdoc(holder(), gensym(full_path(file).c_str()));
    if (!holder()->doc)
        throw Refused{};
    if (!fs::exists(file, error)) // jxmlfile_newdoc does not tell whether it could write, nor why not
        save(file);
}

bool Document::is_itself(const std::string &file) const {
    std::error_code error;
    return !loaded_.empty() && (full_path(file) == loaded_ || fs::equivalent(file, loaded_, error));
}

void Document::save(const std::string &file) const {
    if (is_itself(file) && maxhost::stamp_of(loaded_) != stamp_)
        throw Refused{file + " has changed since it was read, and is not saved"};
    const int result = vrk_save_document(gensym(full_path(file).c_str()), holder()->doc);
    if (result < 0)
        throw Refused{"unable to write " + file + " (" + std::generic_category().message(-result) + ")"};
}
