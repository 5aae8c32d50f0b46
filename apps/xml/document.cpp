// A document that is worked on from the shell.
#include "document.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

#include <sys/stat.h>
#include <unistd.h>

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

// A new empty file in a folder; empty when none can be made.
std::string new_file_in(const fs::path &folder) {
    std::string name = (folder / ".vrk-xml-XXXXXX").string();
    const int descriptor = mkstemp(name.data());
    if (descriptor < 0)
        return "";
    close(descriptor);
    return name;
}

// Gives a file the permissions and the owner of the one whose place it takes, or those of any new file.
bool take_over_status(const fs::path &from, const std::string &file) {
    struct stat status;
    if (stat(from.c_str(), &status) != 0) {
        const mode_t mask = umask(0);
        umask(mask);
        return chmod(file.c_str(), 0666 & ~mask) == 0;
    }
    // Only root can give files away; for anybody else the file becomes his own.
    [[maybe_unused]] const int failure = chown(file.c_str(), status.st_uid, status.st_gid);
    return chmod(file.c_str(), status.st_mode & 07777) == 0;
}

bool write_to(const std::string &path, xmlDocPtr doc) { return vrk_save_document(gensym(path.c_str()), doc) >= 0; }

// Writes beside the target and renames, so that a failed save leaves what was there.
bool write_whole(const fs::path &target, xmlDocPtr doc) {
    const std::string beside = new_file_in(target.parent_path());
    if (beside.empty())
        return false;
    if (write_to(beside, doc) && take_over_status(target, beside) && rename(beside.c_str(), target.c_str()) == 0)
        return true;
    unlink(beside.c_str());
    return false;
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
    try {
        save(file); // jxmlfile_newdoc does not tell whether it could write
    } catch (const Refused &) {
        fs::remove(file, error);
        throw;
    }
}

void Document::save(const std::string &file) const {
    std::error_code error;
    fs::path target = fs::canonical(file, error); // a link stays a link
    if (error)
        target = full_path(file);
    const bool is_device = fs::exists(target, error) && !fs::is_regular_file(target, error);
    if (is_device ? !write_to(target.string(), holder()->doc) : !write_whole(target, holder()->doc))
        throw Refused{"unable to write " + file};
}
