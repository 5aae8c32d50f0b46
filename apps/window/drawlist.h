// Draw lists on a painter: what a plug-in has drawn is drawn again.
#pragma once

#include <QPainter>

#include "embed/host.h"

// Replays a draw list with its origin at the painter's. Texts that could not be read on the background get a colour
// that can.
void replay(QPainter &painter, const maxhost::DrawList &list, const QColor &background);

// The texts of a draw list, one behind the other.
QString text_of(const maxhost::DrawList &list);
