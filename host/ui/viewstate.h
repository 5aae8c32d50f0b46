// What shows of a data view beside its rows' content.
#pragma once

#include "ext_mess.h"

namespace maxhost {

struct ViewState {
    long rows;
    long selected; // position of the selected row, 0 for none
    long row_height;
    long column_width;
    t_symbol *font_name;
    double font_size;
    long border;
    bool vertical_bar, horizontal_bar; // whether they are shown
};

} // namespace maxhost
