// The boxes that the host brings along.
#include "ui/boxes/boxes.h"

#include <initializer_list>

namespace maxhost {

void register_boxes() {
    static const bool registered = [] {
        for (void (*family)() :
             {register_button, register_comment, register_counter, register_loadbang, register_message, register_metro,
              register_numbers, register_pack, register_prefixes, register_print, register_remote, register_routing,
              register_subpatcher, register_textfield, register_toggle, register_trigger})
            family();
        return true;
    }();
    static_cast<void>(registered);
}

} // namespace maxhost
