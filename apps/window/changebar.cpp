// A bar at the edge of a window: its file has changed on the disk.
#include "changebar.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QMessageBox>

ChangeBar::ChangeBar() : text_(new QLabel), reload_(new QPushButton(tr("Reload"))) {
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::ToolTipBase);
    text_->setForegroundRole(QPalette::ToolTipText);
    text_->setWordWrap(true);
    auto *keep = new QPushButton(tr("Keep"));
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 4, 8, 4);
    layout->addWidget(text_, 1);
    layout->addWidget(keep);
    layout->addWidget(reload_);
    connect(keep, &QPushButton::clicked, this, &QWidget::hide);
    connect(reload_, &QPushButton::clicked, this, &ChangeBar::reload_wanted);
    hide();
}

void ChangeBar::offer(const QString &file, bool edited) {
    const QString name = QFileInfo(file).fileName();
    const bool is_there = QFileInfo::exists(file);
    if (!is_there)
        text_->setText(tr("%1 is no longer on the disk. Saving makes it again.").arg(name));
    else if (edited)
        text_->setText(tr("%1 has changed on the disk. Reloading it loses what you have changed.").arg(name));
    else
        text_->setText(tr("%1 has changed on the disk.").arg(name));
    reload_->setVisible(is_there);
    show();
}

bool may_save_over(const QString &file, QWidget *window) {
    QMessageBox question(QMessageBox::Question, QFileInfo(file).fileName(),
                         ChangeBar::tr("%1 has changed on the disk since it was opened or saved here. Save over it?")
                             .arg(QFileInfo(file).fileName()),
                         QMessageBox::Save | QMessageBox::Cancel, window);
    question.setDefaultButton(QMessageBox::Cancel);
    return question.exec() == QMessageBox::Save;
}
