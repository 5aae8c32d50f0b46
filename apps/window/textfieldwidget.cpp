// The text field on the canvas.
#include "textfieldwidget.h"

#include <QKeyEvent>
#include <QTextDocument>

using namespace maxhost;

TextFieldWidget::TextFieldWidget(t_object *box, QWidget *canvas)
    : BoxWidget(box, canvas),
      return_enters_(described_number(box, "keymode") != 0 || described_number(box, "lines") == 1),
      field_(new QPlainTextEdit(this)) {
    field_->setFrameShape(QFrame::NoFrame);
    field_->setTabChangesFocus(true);
    field_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    if (return_enters_) {
        field_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        field_->setLineWrapMode(QPlainTextEdit::NoWrap);
    }
    field_->document()->setDocumentMargin(2);
    field_->setAccessibleName(described_text(box, "varname", tr("text")));
    field_->installEventFilter(this);
    field_->setPlainText(shown_text(box));
    setFocusProxy(field_);
}

// What the box has got does not disturb a person who types.
void TextFieldWidget::refresh() {
    const bool is_typing = field_->hasFocus() && field_->document()->isModified();
    if (!is_typing && field_->toPlainText() != shown_text(box()))
        field_->setPlainText(shown_text(box()));
    update();
}

void TextFieldWidget::enter() {
    field_->document()->setModified(false);
    enter_value(box(), text_atoms(field_->toPlainText()));
}

bool TextFieldWidget::eventFilter(QObject *watched, QEvent *event) {
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut)
        update();
    if (event->type() == QEvent::FocusOut && !return_enters_ && field_->document()->isModified())
        enter();
    if (event->type() == QEvent::KeyPress && return_enters_) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            enter();
            return true;
        }
    }
    return BoxWidget::eventFilter(watched, event);
}

void TextFieldWidget::place_content() {
    field_->setFont(font_of_box());
    const QRectF inside = box_rect().adjusted(2, 1.5, -2, -1.5);
    const double line = QFontMetricsF(field_->font()).height() + 2 * field_->document()->documentMargin();
    const double above = return_enters_ ? std::max(0.0, (inside.height() - line) / 2) : 0;
    field_->setGeometry(inside.adjusted(0, above, 0, 0).toRect());
}

void TextFieldWidget::paint_box(QPainter &painter, const QRectF &rect) {
    const Look look = this->look();
    paint_rounded(painter, rect, 3 * zoom(), look.paper, look.paper_border);
}
