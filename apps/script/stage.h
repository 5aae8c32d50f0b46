// The stage of a script: the one patcher that it works on.
#pragma once

#include <string>

#include "embed/host.h"

// Where a script's patchers come from and go to. This one shows them to nobody.
class Stage {
  public:
    Stage() = default;
    virtual ~Stage();
    Stage(const Stage &) = delete;
    Stage &operator=(const Stage &) = delete;

    // The patcher that is open; null when none is.
    virtual t_object *patcher() { return patcher_; }

    // Each takes the place of the patcher that is open. Opening is false when the file cannot be opened, and then none
    // is; `reason` says why, without the name of the file.
    virtual bool open(const std::string &file, std::string &reason);
    virtual void make_untitled();

    // Saves the patcher that is open, as save_patcher does.
    virtual bool save(const std::string &file, std::string &reason);

    // Frees the patcher that is open, if one is.
    virtual void close();

  private:
    t_object *patcher_ = nullptr;
};
