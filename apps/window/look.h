// The look of a patcher: its colours, from Qt's palette, and its fonts.
#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>

struct Look {
    QColor canvas;
    QColor box, box_border, text, muted; // of an object box
    QColor message, message_border;
    QColor paper, paper_border; // of lists and of what is typed into
    QColor accent, pressed;
    QColor cord, port;
    QColor error;
};

// The look for a light or a dark palette.
Look look_of(const QPalette &palette);
bool is_dark(const QPalette &palette);

// A style sheet for a bar of tabs: flat, with a line under the one that is shown.
QString tab_style(const Look &look);

// A palette of either kind, whatever the desktop has.
QPalette light_palette();
QPalette dark_palette();

// The colour, or, where it could not be read on the background, the one with its lightness turned round. What plug-ins
// and patchers draw in black is white on a dark palette.
QColor readable_on(const QColor &color, const QColor &background);

// A font of a box. Sizes in patchers are pixels, at any density of the screen.
QFont box_font(const QString &family, double size);
