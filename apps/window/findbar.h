// The find bar of an editor.
#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>

class FindBar : public QWidget {
    Q_OBJECT

  public:
    // Finds in a text, which outlives the bar.
    explicit FindBar(QPlainTextEdit &text);

    // Shows the bar, with what is selected as what is looked for.
    void open();

    // Selects the next or previous place, and goes on at the other end; false when there is none.
    bool find_next() { return find(false); }
    bool find_previous() { return find(true); }

  protected:
    void keyPressEvent(QKeyEvent *event) override;

  private:
    bool find(bool backward);
    void find_as_typed();

    QPlainTextEdit &text_;
    QLineEdit *wanted_;
    QLabel *result_;
};
