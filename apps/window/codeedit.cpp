// A text with line numbers.
#include "codeedit.h"

#include <QFontDatabase>
#include <QPaintEvent>
#include <QPainter>
#include <QTextBlock>

#include "look.h"

namespace {

constexpr int gap = 8; // beside the numbers

} // namespace

CodeEdit::CodeEdit(QWidget *parent) : QPlainTextEdit(parent), margin_(new QWidget(this)) {
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPixelSize(13);
    setFont(font);
    setTabStopDistance(4 * fontMetrics().horizontalAdvance(' '));
    setLineWrapMode(NoWrap);
    setFrameShape(QFrame::NoFrame);
    margin_->setFont(font);
    margin_->installEventFilter(this);
    connect(this, &QPlainTextEdit::blockCountChanged, this, &CodeEdit::place_margin);
    connect(this, &QPlainTextEdit::updateRequest, margin_, qOverload<>(&QWidget::update));
    connect(this, &QPlainTextEdit::cursorPositionChanged, this, &CodeEdit::mark_current_line);
    place_margin();
    mark_current_line();
}

void CodeEdit::go_to(int line, int column) {
    const QTextBlock block = document()->findBlockByNumber(std::clamp(line, 1, blockCount()) - 1);
    QTextCursor cursor(block);
    cursor.movePosition(QTextCursor::NextCharacter, QTextCursor::MoveAnchor, std::clamp(column, 1, block.length()) - 1);
    setTextCursor(cursor);
    ensureCursorVisible();
}

int CodeEdit::margin_width() const {
    const auto digits = QString::number(std::max(1, blockCount())).size();
    return static_cast<int>(std::max<qsizetype>(digits, 3)) * fontMetrics().horizontalAdvance('9') + 2 * gap;
}

void CodeEdit::place_margin() {
    setViewportMargins(margin_width(), 0, 0, 0);
    const QRect inside = contentsRect();
    margin_->setGeometry(inside.left(), inside.top(), margin_width(), inside.height());
    margin_->update();
}

void CodeEdit::resizeEvent(QResizeEvent *event) {
    QPlainTextEdit::resizeEvent(event);
    place_margin();
}

void CodeEdit::changeEvent(QEvent *event) {
    QPlainTextEdit::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        mark_current_line();
}

bool CodeEdit::eventFilter(QObject *watched, QEvent *event) {
    if (watched != margin_ || event->type() != QEvent::Paint)
        return QPlainTextEdit::eventFilter(watched, event);
    paint_margin(static_cast<QPaintEvent *>(event));
    return true;
}

void CodeEdit::paint_margin(QPaintEvent *event) {
    const Look look = look_of(palette());
    QPainter painter(margin_);
    painter.fillRect(event->rect(), look.canvas);
    QTextBlock block = firstVisibleBlock();
    double top = blockBoundingGeometry(block).translated(contentOffset()).top();
    for (; block.isValid() && top <= event->rect().bottom(); block = block.next()) {
        const double height = blockBoundingRect(block).height();
        painter.setPen(block == textCursor().block() ? look.text : look.muted);
        painter.drawText(QRectF(0, top, margin_->width() - gap, height), static_cast<int>(Qt::AlignRight),
                         QString::number(block.blockNumber() + 1));
        top += height;
    }
}

void CodeEdit::mark_current_line() {
    QTextEdit::ExtraSelection line;
    QColor color = look_of(palette()).accent;
    color.setAlphaF(0.08F);
    line.format.setBackground(color);
    line.format.setProperty(QTextFormat::FullWidthSelection, true);
    line.cursor = textCursor();
    line.cursor.clearSelection();
    setExtraSelections({line});
    margin_->update();
}
