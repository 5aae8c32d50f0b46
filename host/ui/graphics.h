// Drawing contexts: what is drawn becomes a list of plain records, to be printed, compared or replayed.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "jgraphics.h"
#include "kernel/export.h"

namespace maxhost {

// Gives a reference to an image back.
struct SurfaceReleaser {
    MAXHOST_EMBED void operator()(t_jsurface *surface) const;
};

// One thing drawn, in the coordinates of the cell.
struct DrawRecord {
    enum class Kind { fill, text, image };
    Kind kind;
    t_rect rect; // of a text: x and y of its baseline's start
    t_jrgba color;
    std::string text;
    t_symbol *font_name;
    double font_size;
    std::shared_ptr<t_jsurface> image; // as long as the record is there, so is the image
    t_rect source;                     // the part of the image
};

using DrawList = std::vector<DrawRecord>;

} // namespace maxhost

struct _jgraphics {
    maxhost::DrawList drawn;
    std::vector<t_rect> path;
    t_jrgba color{0, 0, 0, 1};
    t_symbol *font_name = nullptr;
    double font_size = 12;
    double x = 0, y = 0;
};
