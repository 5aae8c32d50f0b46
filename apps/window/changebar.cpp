// A bar at the edge of a window: its file is another one on the disk.
#include "changebar.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QPointer>

#include "embed/host.h"
#include "question.h"

using namespace maxhost;

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

void ChangeBar::offer(const QString &file, Difference difference, bool edited) {
    const QString name = QFileInfo(file).fileName();
    const bool is_there = QFileInfo::exists(file);
    QString text = difference == Difference::changed ? tr("%1 has changed on the disk.")
                                                     : tr("%1 on the disk is not what is shown here.");
    if (!is_there)
        text = tr("%1 is no longer on the disk. Saving makes it again.");
    else if (edited)
        text += " " + tr("Reloading it loses what you have changed.");
    text_->setText(text.arg(name));
    reload_->setVisible(is_there);
    show();
}

bool may_save_over(QString file, QWidget *window) {
    const QPointer<QWidget> asking = window;
    const QString name = QFileInfo(file).fileName();
    const QString text = ChangeBar::tr("%1 on the disk is not as it was opened or saved here. Save over it?").arg(name);
    FileStamp now = stamp_of(file.toStdString()), agreed;
    do {
        agreed = now;
        if (ask(asking, name, text, QMessageBox::Save | QMessageBox::Cancel, QMessageBox::Cancel) != QMessageBox::Save)
            return false;
        now = stamp_of(file.toStdString());
    } while (asking && now.exists && now != agreed);
    return asking;
}
