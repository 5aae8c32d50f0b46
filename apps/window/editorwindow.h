// The window of a text editor: a text with XML colours, line numbers and a find bar.
#pragma once

#include <QMainWindow>

#include "codeedit.h"
#include "embed/host.h"
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

    // Hands the text to the editor's owner. False, and a person is told why, when it is not taken, or something is
    // wrong with it.
    bool save();

  protected:
    void closeEvent(QCloseEvent *event) override;
    void changeEvent(QEvent *event) override;

  private:
    void make_menus();
    bool may_close();

    t_object *editor_; // null when it is gone
    Session &session_;
    CodeEdit *text_;
    FindBar *find_bar_;
    XmlHighlighter *highlighter_;
};
