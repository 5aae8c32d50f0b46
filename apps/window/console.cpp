// The console.
#include "console.h"

#include <algorithm>

#include <QGuiApplication>
#include <QHeaderView>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

#include "look.h"

using maxhost::ConsoleLine;

namespace {

constexpr size_t most_lines = 10'000;

} // namespace

void ConsoleModel::append(const QList<ConsoleEntry> &entries) {
    const auto count = static_cast<int>(entries.size());
    if (count == 0)
        return;
    beginInsertRows({}, rowCount(), rowCount() + count - 1);
    for (const ConsoleEntry &entry : entries) {
        entries_.push_back(entry);
        errors_ += entry.kind == ConsoleLine::error;
    }
    endInsertRows();
    if (entries_.size() > most_lines) {
        const auto surplus = entries_.size() - most_lines;
        beginRemoveRows({}, 0, static_cast<int>(surplus) - 1);
        entries_.erase(entries_.begin(), entries_.begin() + static_cast<std::ptrdiff_t>(surplus));
        endRemoveRows();
    }
    Q_EMIT counted(errors_);
}

QString ConsoleModel::last_error() const {
    const auto found = std::find_if(entries_.rbegin(), entries_.rend(),
                                    [](const ConsoleEntry &entry) { return entry.kind == ConsoleLine::error; });
    return found == entries_.rend() ? QString() : found->text;
}

void ConsoleModel::clear() {
    beginResetModel();
    entries_.clear();
    errors_ = 0;
    endResetModel();
    Q_EMIT counted(0);
}

int ConsoleModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(entries_.size());
}

int ConsoleModel::columnCount(const QModelIndex &parent) const { return parent.isValid() ? 0 : 2; }

QVariant ConsoleModel::data(const QModelIndex &index, int role) const {
    if (!index.isValid())
        return {};
    const ConsoleEntry &entry = entries_[static_cast<size_t>(index.row())];
    const bool is_error = entry.kind == ConsoleLine::error;
    switch (role) {
    case Qt::DisplayRole:
        return index.column() == 0 ? entry.object : entry.text.trimmed();
    case Qt::ToolTipRole:
        return entry.text;
    case Qt::AccessibleTextRole:
        return (is_error ? tr("error: ") : QString()) + (index.column() == 0 ? entry.object : entry.text.trimmed());
    case Qt::ForegroundRole: {
        const Look look = look_of(QGuiApplication::palette());
        return is_error ? QVariant(look.error) : index.column() == 0 ? QVariant(look.muted) : QVariant();
    }
    default:
        return {};
    }
}

QVariant ConsoleModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal)
        return {};
    return section == 0 ? tr("Object") : tr("Message");
}

QString error_count(int errors) {
    return errors == 0   ? ConsoleModel::tr("no errors")
           : errors == 1 ? ConsoleModel::tr("1 error")
                         : ConsoleModel::tr("%1 errors").arg(errors);
}

ConsoleDock::ConsoleDock(ConsoleModel &model, QWidget *parent) : QDockWidget(tr("Console"), parent) {
    setObjectName("console");
    auto *lines = new QTableView;
    lines->setModel(&model);
    lines->setAccessibleName(tr("console"));
    lines->setShowGrid(false);
    lines->setWordWrap(false);
    lines->setFrameShape(QFrame::NoFrame);
    lines->setSelectionBehavior(QAbstractItemView::SelectRows);
    lines->setTabKeyNavigation(false);
    lines->verticalHeader()->hide();
    lines->verticalHeader()->setDefaultSectionSize(lines->fontMetrics().height() + 4);
    lines->horizontalHeader()->setStretchLastSection(true);
    lines->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    lines->setColumnWidth(0, 140);
    auto *clear = new QPushButton(tr("&Clear"));
    connect(clear, &QPushButton::clicked, &model, &ConsoleModel::clear);
    connect(&model, &ConsoleModel::rowsInserted, lines, &QTableView::scrollToBottom, Qt::QueuedConnection);
    auto *content = new QWidget;
    auto *layout = new QVBoxLayout(content);
    layout->setContentsMargins(0, 0, 0, 4);
    layout->setSpacing(4);
    layout->addWidget(lines);
    layout->addWidget(clear, 0, Qt::AlignRight);
    setWidget(content);
    const auto show_count = [this](int errors) {
        setWindowTitle(tr("Console") + QString::fromUtf8(" · ") + error_count(errors));
    };
    connect(&model, &ConsoleModel::counted, this, show_count);
    show_count(model.errors());
}
