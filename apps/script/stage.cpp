// The stage of a script.
#include "stage.h"

Stage::~Stage() { Stage::close(); }

bool Stage::open(const std::string &file, std::string &reason) {
    Stage::close();
    patcher_ = maxhost::open_patcher(file, reason);
    return patcher_ != nullptr;
}

void Stage::make_untitled() {
    Stage::close();
    patcher_ = maxhost::new_patcher();
}

bool Stage::save(const std::string &file, std::string &reason) { return maxhost::save_patcher(patcher_, file, reason); }

void Stage::close() {
    if (patcher_)
        maxhost::free_patcher(patcher_);
    patcher_ = nullptr;
}
