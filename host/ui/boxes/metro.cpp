// metro: bangs at regular times.
#include <algorithm>
#include <cmath>

#include "ui/boxes/boxes.h"
#include "ui/boxes/hostbox.h"

namespace maxhost {
namespace {

constexpr double usual_interval = 5; // milliseconds
constexpr double shortest_interval = 1;
constexpr double longest_interval = 1e9;

struct MetroParts {
    double interval = usual_interval; // from the next bang on
    bool running = false;
    void *clock = nullptr;
    void *outlet = nullptr;
};
using Metro = HostBox<MetroParts>;

t_class *metro_class;

void metro_tick(Metro *x) {
    {
        const HeldRegion hold;
        if (x->parts->running)
            clock_fdelay(x->parts->clock, x->parts->interval);
    }
    send_bang(x->parts->outlet);
}

void metro_run(Metro *x, bool on) {
    {
        const HeldRegion hold;
        x->parts->running = on;
        clock_unset(x->parts->clock);
    }
    if (on)
        metro_tick(x);
}

void set_interval(MetroParts &parts, const t_atom &atom) {
    const double interval = atom_getfloat(&atom);
    if (!std::isnan(interval))
        parts.interval = std::clamp(interval, shortest_interval, longest_interval);
}

void metro_bang(Metro *x) { metro_run(x, true); }

void metro_stop(Metro *x) { metro_run(x, false); }

// A number: at the left inlet on or off, at the right one the interval.
void metro_number(Metro *x, t_symbol *, long argc, t_atom *argv) {
    if (argc < 1)
        return;
    if (current_inlet() == 0)
        return metro_run(x, atom_getfloat(argv) != 0);
    const HeldRegion hold;
    set_interval(*x->parts, argv[0]);
}

void metro_assist(Metro *, void *, long kind, long index, char *text) {
    assist_with(text, kind, index, {"1 or bang to start, 0 to stop", "Milliseconds between bangs"}, {"Bangs"});
}

void *metro_new(t_symbol *, long argc, t_atom *argv) {
    auto *x = begin_box<MetroParts>(metro_class, argc, argv);
    if (!x)
        return nullptr;
    if (const std::span<const t_atom> typed = typed_arguments(argc, argv); !typed.empty())
        set_interval(*x->parts, typed[0]);
    set_inlet_count(&x->box.b_ob, 2);
    x->parts->clock = clock_new(x, reinterpret_cast<method>(metro_tick));
    x->parts->outlet = outlet_new(x, "bang");
    return finish_box(x, argc, argv);
}

void metro_free(Metro *x) {
    object_free(x->parts->clock);
    free_host_box(x);
}

} // namespace

void register_metro() {
    metro_class = new_box_class<MetroParts>("metro", metro_new, BoxKind::typed);
    static_cast<Class *>(metro_class)->destroy = reinterpret_cast<method>(metro_free);
    class_addmethod(metro_class, reinterpret_cast<method>(metro_bang), "bang", 0);
    class_addmethod(metro_class, reinterpret_cast<method>(metro_stop), "stop", 0);
    add_method(metro_class, metro_number, "int");
    add_method(metro_class, metro_number, "float");
    add_private(metro_class, metro_assist, "assist");
    class_register(CLASS_BOX, metro_class);
}

} // namespace maxhost
