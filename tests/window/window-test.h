// A test with windows: a session on the host, an empty folder, and what a person does there.
#pragma once

#include <functional>

#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

#include "canvas.h"
#include "editorwindow.h"
#include "listview.h"
#include "patcherwindow.h"
#include "session.h"

// Fails at the end when anything is left: a block, an object, or a window.
class WindowTest : public QObject {
    Q_OBJECT

  protected:
    // A patcher file of boxes and cords, and the window that it is opened in.
    QString write_patcher(const QString &boxes, const QString &lines = {}, const QString &keys = {});
    PatcherWindow *open(const QString &file);
    PatcherWindow *open_boxes(const QString &boxes, const QString &lines = {}, const QString &keys = {});

    t_object *box(const char *name) const; // of the first document
    BoxWidget *widget(const char *name) const;
    ListView *list(const char *name = "list") const;

    // Messages to a box, as a script has them; what they defer stays queued.
    void queue(const char *name, const QString &message);

    // The same, and everything that comes of it.
    void send(const char *name, const QString &message);
    void settle();

    QString value(const char *name) const { return shown_text(box(name)); }
    maxhost::ViewState view(const char *name = "list") const;

    // What came out of outlets since it was asked last, a line each: "list:0 2".
    const QStringList &outputs() const { return outputs_; }
    QStringList take_outputs() { return std::exchange(outputs_, {}); }

    // Once the next modal dialog is open.
    void when_asked(std::function<void(QDialog &)> answer);
    void press(QDialog &dialog, QMessageBox::StandardButton button);

    // The button with that text.
    QPushButton *button_of(const QWidget &bar, const QString &text) const;

    QString path_of(const QString &name) const { return folder_->filePath(name); }
    Session &session() { return *session_; }

  protected Q_SLOTS:
    void init();
    void cleanup();

  private:
    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<Session> session_;
    QStringList outputs_;
    QString folder_before_;
};

// The JSON of a box, and of a cord from an outlet to an inlet.
QString box_json(const QString &id, const QString &maxclass, const QString &rect, const QString &more = {});
QString cord_json(const QString &from, int outlet, const QString &to, int inlet);

// Queues tasks that count themselves when they are done. Each takes longer than half of the time that the window gives
// to the queue at once.
void queue_slow_tasks(int tasks, long &done);

QString read_text(const QString &file);
