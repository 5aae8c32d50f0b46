// Pictures of windows, as a person would see them.
#pragma once

#include <QString>
#include <QWidget>

// Writes a picture of a window to a PNG file; the window is shown for it, on whatever Qt's platform is. False when the
// file cannot be written.
bool write_picture(QWidget &window, const QString &file);
