// Pictures of windows.
#include "picture.h"

#include <QCoreApplication>
#include <QImage>
#include <QPixmap>

bool write_picture(QWidget &window, const QString &file) {
    window.show();
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
    return window.grab().toImage().convertToFormat(QImage::Format_RGB888).save(file, "PNG", 0);
}
