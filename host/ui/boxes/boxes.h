// The boxes that the host brings along.
#pragma once

namespace maxhost {

// Makes their classes known, once. Before the first patcher.
void register_boxes();

// Families of them, one a source.
void register_button();
void register_comment();
void register_counter();
void register_loadbang();
void register_message();
void register_metro();
void register_numbers();
void register_pack();
void register_prefixes();
void register_print();
void register_remote();
void register_routing();
void register_subpatcher();
void register_textfield();
void register_toggle();
void register_trigger();

} // namespace maxhost
