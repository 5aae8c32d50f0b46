// Watches the file that a window shows.
#include "filewatch.h"

#include <QFileInfo>

namespace {

constexpr int a_moment = 100; // milliseconds: files are written in pieces, and taken away before they are replaced

} // namespace

FileWatch::FileWatch(std::function<bool()> is_changed, QObject *parent)
    : QObject(parent), is_changed_(std::move(is_changed)) {
    pause_.setSingleShot(true);
    pause_.setInterval(a_moment);
    connect(&notices_, &QFileSystemWatcher::fileChanged, this, &FileWatch::look_soon);
    connect(&notices_, &QFileSystemWatcher::directoryChanged, this, &FileWatch::look_soon);
    connect(&pause_, &QTimer::timeout, this, &FileWatch::look);
}

void FileWatch::follow(const QString &file) {
    file_ = file;
    told_.reset();
    watch_again();
}

// The folders are watched as well: a file that is replaced is another one, and its name is all that stays.
void FileWatch::watch_again() {
    QStringList paths;
    for (const QString &path : {file_, QFileInfo(file_).canonicalFilePath()})
        if (!path.isEmpty())
            paths << path << QFileInfo(path).path();
    const QStringList before = notices_.files() + notices_.directories();
    for (const QString &path : before)
        if (!paths.contains(path))
            notices_.removePath(path);
    for (const QString &path : paths)
        if (!before.contains(path) && QFileInfo::exists(path))
            notices_.addPath(path);
}

// Notices that come meanwhile do not put the look off: in a busy folder they may never end.
void FileWatch::look_soon() {
    if (!pause_.isActive())
        pause_.start();
}

void FileWatch::look() {
    if (file_.isEmpty())
        return;
    watch_again();
    const maxhost::FileStamp now = maxhost::stamp_of(file_.toStdString());
    if (!is_changed_()) {
        told_.reset();
        Q_EMIT unchanged();
        return;
    }
    if (told_ == now)
        return;
    told_ = now;
    Q_EMIT changed();
}
