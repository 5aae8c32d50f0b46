// The window of a patcher: its canvas, or one for each of its tabs, with menus, console and status bar.
#pragma once

#include <QLabel>
#include <QMainWindow>
#include <QTabWidget>
#include <QToolButton>

#include "canvas.h"
#include "changebar.h"
#include "console.h"
#include "filewatch.h"

class Document;
class Session;

class PatcherWindow : public QMainWindow {
    Q_OBJECT

  public:
    // Shows a patcher of the document, which is the whole of it or one in a box. Document and session outlive the
    // window.
    PatcherWindow(t_object *patcher, Document &document, Session &session);

    t_object *patcher() const { return patcher_; }
    Document &document() const { return document_; }

    // Shows another patcher in place of the one before, which is still alive.
    void show_patcher(t_object *patcher);

    QList<Canvas *> canvases() const;
    Canvas *current_canvas() const;

    // Brings a tab to the front; false when none has that title.
    bool show_tab(const QString &title);

    // The document has been saved, perhaps to another file than before.
    void show_saved();

    // The file could not be opened, saved or read again: a message at the window's edge.
    void complain(const QString &text);

  protected:
    void closeEvent(QCloseEvent *event) override;
    void changeEvent(QEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

  private:
    void make_menus();
    void make_status_bar();
    void fill_recent(QMenu *menu);
    void add_page(t_object *patcher, const QString &title);
    void fit_to_patcher();
    void show_title();
    void follow_file();

    void open_file();
    bool write_to(const QString &file, QString &reason);
    bool save();
    bool save_as();
    void revert();
    void finish_queued();
    bool may_close();
    void set_zoom(double zoom);
    void open_inner(t_object *patcher);

    bool is_whole() const; // the patcher is in no box

    t_object *patcher_;
    Document &document_;
    Session &session_;
    QTabWidget *tabs_;
    ChangeBar *change_bar_;
    FileWatch *watch_;
    ConsoleDock *console_;
    QToolButton *errors_;
    QLabel *zoom_shown_;
    QAction *presentation_;
    double zoom_ = 1;
};
