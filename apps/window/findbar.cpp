// The find bar of an editor.
#include "findbar.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QTextDocument>
#include <QToolButton>

FindBar::FindBar(QPlainTextEdit &text) : text_(text), wanted_(new QLineEdit), result_(new QLabel) {
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 4, 8, 4);
    auto *label = new QLabel(tr("&Find:"));
    label->setBuddy(wanted_);
    layout->addWidget(label);
    layout->addWidget(wanted_, 1);
    const auto add_button = [&](const QString &text_of_button, const QString &name, auto action) {
        auto *button = new QToolButton;
        button->setText(text_of_button);
        button->setToolTip(name);
        button->setAccessibleName(name);
        button->setAutoRaise(true);
        connect(button, &QToolButton::clicked, this, action);
        layout->addWidget(button);
    };
    add_button(QString::fromUtf8("▲"), tr("Previous"), [this] { find_previous(); });
    add_button(QString::fromUtf8("▼"), tr("Next"), [this] { find_next(); });
    layout->addWidget(result_);
    add_button(QString::fromUtf8("✕"), tr("Close"), [this] {
        hide();
        text_.setFocus();
    });
    connect(wanted_, &QLineEdit::textEdited, this, &FindBar::find_as_typed);
    hide();
}

void FindBar::open() {
    const QString selected = text_.textCursor().selectedText();
    if (!selected.isEmpty() && !selected.contains(QChar::ParagraphSeparator))
        wanted_->setText(selected);
    show();
    wanted_->setFocus();
    wanted_->selectAll();
}

bool FindBar::find(bool backward) {
    const QString wanted = wanted_->text();
    if (wanted.isEmpty())
        return false;
    const QTextDocument::FindFlags flags = backward ? QTextDocument::FindBackward : QTextDocument::FindFlags();
    bool found = text_.find(wanted, flags);
    if (!found) {
        const QTextCursor before = text_.textCursor();
        text_.moveCursor(backward ? QTextCursor::End : QTextCursor::Start);
        found = text_.find(wanted, flags);
        if (!found)
            text_.setTextCursor(before);
    }
    result_->setText(found ? QString() : tr("not found"));
    return found;
}

// Looks from where the selection begins, so that more letters stay at the same place.
void FindBar::find_as_typed() {
    QTextCursor cursor = text_.textCursor();
    cursor.setPosition(cursor.selectionStart());
    text_.setTextCursor(cursor);
    result_->clear();
    find(false);
}

void FindBar::keyPressEvent(QKeyEvent *event) {
    if (event->key() == Qt::Key_Escape) {
        hide();
        text_.setFocus();
    } else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        find(event->modifiers().testFlag(Qt::ShiftModifier));
    } else {
        QWidget::keyPressEvent(event);
    }
}
