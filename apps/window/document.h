// A document: a patcher with its file, and the windows that show it and the patchers in it.
#pragma once

#include <QList>
#include <QString>

#include "embed/host.h"

class PatcherWindow;

class Document {
  public:
    // The document frees the patcher.
    explicit Document(t_object *patcher) : patcher_(patcher) {}

    // Closes the windows and frees the patcher.
    ~Document();
    Document(const Document &) = delete;
    Document &operator=(const Document &) = delete;

    t_object *patcher() const { return patcher_; }
    QString file() const { return QString::fromStdString(maxhost::file_of_patcher(patcher_)); } // empty: untitled
    QString name() const; // as a window's title has it
    bool is_changed() const { return maxhost::is_dirty(patcher_); }

    // Whether there is a file now that is not the one that was opened or saved last.
    bool would_overwrite() const {
        return maxhost::changed_on_disk(patcher_) && maxhost::stamp_of(maxhost::file_of_patcher(patcher_)).exists;
    }

    // False with the reason when that fails. Saving takes the file as the document's own; reverting closes the windows
    // of patchers in boxes, and leaves everything as it is when the file cannot be opened.
    bool save(const QString &file, QString &reason);
    bool save_as_named(const std::string &file, std::string &reason); // as the host takes names (save_patcher)
    bool revert(QString &reason);

    // The window of the whole patcher is the first one. The document owns all of them.
    void add_window(PatcherWindow *window) { windows_.append(window); }
    const QList<PatcherWindow *> &windows() const { return windows_; }
    PatcherWindow *window_of(t_object *patcher) const;
    void remove_window(PatcherWindow *window) { windows_.removeOne(window); }

    // Makes the document's folder the one in which the host looks for files.
    void take_folder() const;

  private:
    t_object *patcher_;
    QList<PatcherWindow *> windows_;
};
