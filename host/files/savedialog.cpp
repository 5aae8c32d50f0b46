// The save dialog.
#include <cstring>
#include <filesystem>
#include <string>
#include <utility>

#include "ext_path.h"
#include "files/paths.h"
#include "kernel/door.h"
#include "kernel/frontend.h"

namespace {

std::string &prompt() {
    static auto &the_prompt = *new std::string;
    return the_prompt;
}

short choose(char *name, short *vol, t_fourcc *type, t_fourcc offered) {
    using namespace maxhost;
    const std::string asked = std::exchange(prompt(), "");
    const std::string answer = front_end().save_dialog ? front_end().save_dialog(asked, name) : "";
    if (answer.empty())
        return err_cancelled;
    const std::filesystem::path chosen = std::filesystem::path(default_folder()) / answer;
    const std::string file = chosen.filename().string();
    const short folder = folder_id(chosen.parent_path().string());
    if (folder == 0 || file.empty() || file.size() >= MAX_FILENAME_CHARS)
        return err_bad_name;
    std::memcpy(name, file.c_str(), file.size() + 1);
    *vol = folder;
    *type = offered;
    return 0;
}

} // namespace

void saveas_promptset(const char *s) {
    maxhost::guarded("saveas_promptset", [&] { prompt() = s ? s : ""; });
}

short saveasdialog_extended(char *name, short *vol, t_fourcc *type, t_fourcc *typelist, short numtypes) {
    using namespace maxhost;
    if (!at_door(name && vol && type, "saveasdialog_extended", "null argument"))
        return err_bad_name;
    return guarded("saveasdialog_extended", short{err_io},
                   [&] { return choose(name, vol, type, typelist && numtypes > 0 ? typelist[0] : 0); });
}
