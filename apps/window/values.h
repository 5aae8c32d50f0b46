// The host's values as Qt's: texts, numbers, rectangles and colours that stand under the keys of patchers and boxes.
#pragma once

#include <QColor>
#include <QRectF>
#include <QString>

#include "embed/host.h"

QString text_of(const t_symbol *symbol);
QRectF rect_of(const t_rect &rect);
QColor color_of(const t_jrgba &color);

// What is described of a patcher or box under a key; `otherwise` when nothing of the kind is.
long described_number(t_object *object, const char *key, long otherwise = 0);
double described_size(t_object *object, const char *key, double otherwise);
QString described_text(t_object *object, const char *key, const QString &otherwise = QString());
QRectF described_rect(t_object *object, const char *key);  // null when there are no four numbers
QColor described_color(t_object *object, const char *key); // invalid when there are no four numbers

// What a box shows, as text.
QString shown_text(t_object *box);

// A message to a box: a selector or number and what follows.
std::vector<t_atom> number_atoms(double number, bool is_float);
std::vector<t_atom> text_atoms(const QString &text); // one symbol
