// Plug-ins: loading modules.
#include "kernel/plugins.h"

#include <dlfcn.h>

#include <filesystem>
#include <set>

namespace maxhost {
namespace {

std::set<void *> &entered() {
    static auto &handles = *new std::set<void *>;
    return handles;
}

// Calls the entry function of a module; false when it has none.
bool enter(void *handle) {
    if (void *entry = dlsym(handle, "ext_main")) {
        reinterpret_cast<void (*)(void *)>(entry)(handle);
        return true;
    }
    void *entry = dlsym(handle, "main"); // how plug-ins began before ext_main
    if (entry)
        reinterpret_cast<int (*)()>(entry)();
    return entry != nullptr;
}

} // namespace

bool load_plugin(const std::string &file, std::string &reason) {
    // A name without folders is a file of the current one, not of the library path.
    void *handle = dlopen(std::filesystem::absolute(file).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle) {
        reason = dlerror();
        return false;
    }
    if (entered().contains(handle))
        return true;
    if (enter(handle)) {
        entered().insert(handle);
        return true;
    }
    reason = file + ": neither ext_main nor main is exported";
    return false;
}

} // namespace maxhost
