// Pictures of windows.
#include "picture.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QImage>
#include <QPixmap>

#include "embed/host.h"

bool write_picture(QWidget &window, const QString &file, QString &reason) {
    window.show();
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
    QBuffer png;
    if (!window.grab().toImage().convertToFormat(QImage::Format_RGB888).save(&png, "PNG", 0)) {
        reason = QCoreApplication::translate("picture", "no picture of the window can be made");
        return false;
    }
    std::string why;
    const bool is_written = maxhost::replace_whole_file(file.toStdString(), png.data().toStdString(), why);
    reason = QString::fromStdString(why);
    return is_written;
}
