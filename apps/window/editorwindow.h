// The window of a text editor: a text with XML colours, line numbers and a find bar.
#pragma once

#include <QMainWindow>

#include "changebar.h"
#include "codeedit.h"
#include "embed/host.h"
#include "filewatch.h"
#include "findbar.h"
#include "xmlhighlighter.h"

class Session;

class EditorWindow : public QMainWindow {
    Q_OBJECT

  public:
    // Shows itself when control is back in the event loop; by then the editor has its text. The session outlives the
    // window.
    EditorWindow(t_object *editor, Session &session);

    // What has become of the editor.
    void refresh(maxhost::EditorEvent event);

    // The host has freed the editor: the window goes, with whatever is in it.
    void editor_is_gone();

    CodeEdit &text() { return *text_; }
    FindBar &find_bar() { return *find_bar_; }

    // Hands the text to the editor's owner, after a question when its file on the disk is not the one that is shown.
    // False, and the user is told why, when it is not taken, or something is wrong with it; then the cursor stands at
    // the place, if one is known. The window may be gone afterwards: what the text does in its owner may free that.
    bool save();

  protected:
    void closeEvent(QCloseEvent *event) override;
    void changeEvent(QEvent *event) override;

  private:
    void make_menus();
    bool may_close();
    bool hand_over(QString &reason);
    QString name() const { return windowTitle().remove("[*]"); }
    void reload();
    void take_path(const QString &path);
    void compare_with_file();
    void hold(const maxhost::FileStamp &stamp);
    void offer_reload();

    t_object *editor_; // null when it is gone
    Session &session_;
    QString file_;               // full path; empty without one
    maxhost::FileStamp as_held_; // the file as it was when it held what is shown; that of no file when it never did
    ChangeBar *change_bar_;
    FileWatch *watch_;
    CodeEdit *text_;
    FindBar *find_bar_;
    XmlHighlighter *highlighter_;
};
