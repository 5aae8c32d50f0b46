// The box part of an instance: rectangle, font, name, and the data views in it.
#pragma once

#include <atomic>
#include <list>
#include <memory>
#include <vector>

#include "jpatcher_api.h"

namespace maxhost {

struct DataView;
struct KeptBox;
struct Patcher;

struct KeptBoxReleaser {
    void operator()(KeptBox *kept) const;
};

// What the host keeps for a box, behind t_jbox.obex.
struct BoxState {
    std::atomic<t_symbol *> font_name; // set and read on both threads, like the size
    std::atomic<double> font_size;
    long flags;                                     // of jbox_new
    std::vector<DataView *> views;                  // whose client the box is
    Patcher *inner = nullptr;                       // the patcher in the box; its class frees it
    std::unique_ptr<KeptBox, KeptBoxReleaser> kept; // what a file said of the box
    std::list<t_jbox *>::iterator place;            // in the boxes of its patcher, when it is in one
};

// The state of a living box; null for anything else.
BoxState *box_state(const void *box);

// Has the front end show a box again. Any thread.
void show_again(t_jbox *box);

} // namespace maxhost
