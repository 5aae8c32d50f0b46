// Drawing contexts, colours and fonts.
#include "ui/graphics.h"

#include <array>
#include <cstring>
#include <utility>

#include "ext_proto.h"
#include "kernel/attributes.h"
#include "kernel/objects.h"
#include "ui/surface.h"

using namespace maxhost;

namespace {

DrawRecord record(const t_jgraphics &g, DrawRecord::Kind kind, t_rect rect) {
    return {kind, rect, g.color, {}, g.font_name, g.font_size, nullptr, {}};
}

// The context at the door.
t_jgraphics *context(t_jgraphics *g, const char *function) {
    return at_door(g, function, "no drawing context: nothing is being painted") ? g : nullptr;
}

} // namespace

void maxhost::SurfaceReleaser::operator()(t_jsurface *surface) const { jgraphics_surface_destroy(surface); }

void jrgba_set(t_jrgba *prgba, double r, double g, double b, double a) { *prgba = {r, g, b, a}; }

void jrgba_to_atoms(t_jrgba *c, t_atom *argv) {
    const std::array parts{c->red, c->green, c->blue, c->alpha};
    for (size_t i = 0; i < parts.size(); ++i)
        atom_setfloat(argv + i, parts[i]);
}

t_max_err jgraphics_attr_setrgba(t_object *x, t_object *attr, long argc, t_atom *argv) {
    const auto *attribute = expect<Attribute>(attr, "jgraphics_attr_setrgba");
    if (!attribute || !at_door(attribute->count == 4 && attribute->offset >= static_cast<long>(sizeof(t_object)),
                               "jgraphics_attr_setrgba", "an attribute without room for a colour"))
        return MAX_ERR_INVALID_PTR;
    if (argc < 4)
        return MAX_ERR_GENERIC;
    std::array<double, 4> parts;
    for (size_t i = 0; i < parts.size(); ++i)
        parts[i] = atom_getfloat(argv + i);
    std::memcpy(reinterpret_cast<char *>(x) + attribute->offset, parts.data(), sizeof parts);
    return MAX_ERR_NONE;
}

void jgraphics_rectangle(t_jgraphics *g, double x, double y, double width, double height) {
    if (context(g, "jgraphics_rectangle"))
        guarded("jgraphics_rectangle", [&] { g->path.push_back({x, y, width, height}); });
}

void jgraphics_set_source_jrgba(t_jgraphics *g, t_jrgba *rgba) {
    if (context(g, "jgraphics_set_source_jrgba"))
        g->color = *rgba;
}

void jgraphics_fill(t_jgraphics *g) {
    if (!context(g, "jgraphics_fill"))
        return;
    guarded("jgraphics_fill", [&] {
        for (const t_rect &rect : std::exchange(g->path, {}))
            g->drawn.push_back(record(*g, DrawRecord::Kind::fill, rect));
    });
}

void jgraphics_select_font_face(t_jgraphics *g, const char *family, t_jgraphics_font_slant, t_jgraphics_font_weight) {
    if (context(g, "jgraphics_select_font_face"))
        g->font_name = gensym(family);
}

void jgraphics_set_font_size(t_jgraphics *g, double size) {
    if (context(g, "jgraphics_set_font_size"))
        g->font_size = size;
}

void jgraphics_move_to(t_jgraphics *g, double x, double y) {
    if (!context(g, "jgraphics_move_to"))
        return;
    g->x = x;
    g->y = y;
}

void jgraphics_show_text(t_jgraphics *g, const char *utf8) {
    if (!context(g, "jgraphics_show_text"))
        return;
    guarded("jgraphics_show_text", [&] {
        DrawRecord shown = record(*g, DrawRecord::Kind::text, {g->x, g->y, 0, 0});
        shown.text = utf8;
        g->drawn.push_back(std::move(shown));
    });
}

void jgraphics_image_surface_draw(t_jgraphics *g, t_jsurface *s, t_rect srcRect, t_rect destRect) {
    auto *surface = expect<t_jsurface>(s, "jgraphics_image_surface_draw");
    if (!surface || !context(g, "jgraphics_image_surface_draw"))
        return;
    guarded("jgraphics_image_surface_draw", [&] {
        DrawRecord drawn = record(*g, DrawRecord::Kind::image, destRect);
        drawn.image = std::shared_ptr<t_jsurface>(jgraphics_surface_reference(surface), SurfaceReleaser());
        drawn.source = srcRect;
        g->drawn.push_back(std::move(drawn));
    });
}

// The fonts that had numbers; any other number is the default font.
t_symbol *fontinfo_getname(short number) {
    switch (number) {
    case 0:
        return gensym("Chicago");
    case 1:
    case 3:
        return gensym("Geneva");
    case 2:
        return gensym("New York");
    case 4:
        return gensym("Monaco");
    case 20:
        return gensym("Times");
    case 21:
        return gensym("Helvetica");
    case 22:
        return gensym("Courier");
    default:
        return gensym("Arial");
    }
}
