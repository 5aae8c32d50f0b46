// Pictures of windows, as a person would see them.
#pragma once

#include <QString>
#include <QWidget>

// Writes a picture of a window to a PNG file, whole or not at all; the window is shown for it, on whatever Qt's
// platform is. False with the reason when that fails.
bool write_picture(QWidget &window, const QString &file, QString &reason);
