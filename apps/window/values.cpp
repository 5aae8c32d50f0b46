// The host's values as Qt's.
#include "values.h"

#include "ext_proto.h"

using namespace maxhost;

QString text_of(const t_symbol *symbol) { return symbol ? QString::fromUtf8(symbol->s_name) : QString(); }

QRectF rect_of(const t_rect &rect) { return {rect.x, rect.y, rect.width, rect.height}; }

QColor color_of(const t_jrgba &color) {
    const auto part = [](double value) { return static_cast<float>(std::clamp(value, 0.0, 1.0)); };
    return QColor::fromRgbF(part(color.red), part(color.green), part(color.blue), part(color.alpha));
}

long described_number(t_object *object, const char *key, long otherwise) {
    const std::vector<t_atom> atoms = described(object, key);
    return atoms.empty() ? otherwise : static_cast<long>(atom_getlong(atoms.data()));
}

double described_size(t_object *object, const char *key, double otherwise) {
    const std::vector<t_atom> atoms = described(object, key);
    const double size = atoms.empty() ? otherwise : atom_getfloat(atoms.data());
    return size >= 1 && size <= 1000 ? size : otherwise;
}

QString described_text(t_object *object, const char *key, const QString &otherwise) {
    const std::vector<t_atom> atoms = described(object, key);
    return atoms.size() == 1 && atom_gettype(atoms.data()) == A_SYM ? text_of(atom_getsym(atoms.data())) : otherwise;
}

QRectF described_rect(t_object *object, const char *key) {
    const std::vector<t_atom> atoms = described(object, key);
    if (atoms.size() != 4)
        return {};
    const auto part = [&](size_t at, double least) { return std::clamp(atom_getfloat(&atoms[at]), least, 1e6); };
    return {part(0, -1e6), part(1, -1e6), part(2, 0), part(3, 0)};
}

QColor described_color(t_object *object, const char *key) {
    const std::vector<t_atom> atoms = described(object, key);
    if (atoms.size() != 4)
        return {};
    return color_of(
        {atom_getfloat(&atoms[0]), atom_getfloat(&atoms[1]), atom_getfloat(&atoms[2]), atom_getfloat(&atoms[3])});
}

QString shown_text(t_object *box) {
    const std::vector<t_atom> value = shown_value(box);
    if (value.empty())
        return {};
    return atom_gettype(value.data()) == A_SYM ? text_of(atom_getsym(value.data()))
                                               : QString::fromStdString(print_atom(value.front()));
}

std::vector<t_atom> number_atoms(double number, bool is_float) {
    std::vector<t_atom> atoms(1);
    if (is_float)
        atom_setfloat(atoms.data(), number);
    else
        atom_setlong(atoms.data(), static_cast<t_atom_long>(number));
    return atoms;
}

std::vector<t_atom> text_atoms(const QString &text) {
    std::vector<t_atom> atoms(1);
    atom_setsym(atoms.data(), gensym(text.toUtf8().constData()));
    return atoms;
}
