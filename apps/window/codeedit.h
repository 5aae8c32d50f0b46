// A text with line numbers.
#pragma once

#include <QPlainTextEdit>

class CodeEdit : public QPlainTextEdit {
    Q_OBJECT

  public:
    explicit CodeEdit(QWidget *parent = nullptr);

    // Puts the cursor at a place, counted from 1, or as near to it as there is text.
    void go_to(int line, int column);

  protected:
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

  private:
    int margin_width() const;
    void place_margin();
    void paint_margin(QPaintEvent *event);
    void mark_current_line();
    bool eventFilter(QObject *watched, QEvent *event) override; // of the margin: painting

    QWidget *margin_;
};
