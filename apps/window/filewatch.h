// Watches the file that a window shows.
#pragma once

#include <functional>
#include <optional>

#include <QFileSystemWatcher>
#include <QTimer>

#include "embed/host.h"

class FileWatch : public QObject {
    Q_OBJECT

  public:
    // `is_changed` knows whether the file is no longer the one that was read or written last.
    FileWatch(std::function<bool()> is_changed, QObject *parent);

    // Watches a file from now on, given by its full path; an empty path is none.
    void follow(const QString &file);

    // Looks at the file at once.
    void look();

  Q_SIGNALS:
    // The file has become another one: once for each change, a moment after the first that was heard of it.
    void changed();

    // The file is what it was again, or still; heard at every look that finds no change.
    void unchanged();

  private:
    void watch_again();
    void look_soon();

    std::function<bool()> is_changed_;
    QString file_;
    std::optional<maxhost::FileStamp> told_; // the last change, as it was told
    QFileSystemWatcher notices_;
    QTimer pause_;
};
