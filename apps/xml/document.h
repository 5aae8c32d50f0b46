// A document that is worked on from the shell: a holder, the file it came from, and whether it was changed.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "vrk.jxmlfile.h"

#include "embed/host.h"

// A refused operation. Nearly always the layer has told why on the console; `what` is what else there is to say.
struct Refused {
    std::string what;
};

class Document {
  public:
    // Names of the root element, the group and the type; empty ones keep the holder's.
    struct Names {
        std::string root;
        std::vector<std::string> xmlpath;
    };

    explicit Document(const Names &names);

    void load(const std::string &file);   // throws Refused
    void create(const std::string &file); // an empty resource file, written at once; throws Refused

    // Whole or not at all; throws Refused with the reason. The file that was loaded is saved only while it is as it was
    // then.
    void save(const std::string &file) const;

    // Whether a path leads to the file that was loaded.
    bool is_itself(const std::string &file) const;

    t_jxmlfile *holder() const { return holder_.get(); }
    bool changed = false;

  private:
    struct HolderReleaser {
        void operator()(t_jxmlfile *holder) const { jxmlfile_free(holder); }
    };
    std::unique_ptr<t_jxmlfile, HolderReleaser> holder_;
    std::string loaded_;       // full path
    maxhost::FileStamp stamp_; // of that file before it was read
};
