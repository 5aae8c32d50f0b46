// The console: what boxes say, the newest line last.
#pragma once

#include <deque>

#include <QAbstractTableModel>
#include <QDockWidget>

#include "hostbridge.h"

class ConsoleModel : public QAbstractTableModel {
    Q_OBJECT

  public:
    // Columns: the object, and what it says. The oldest lines go when there are more than anybody reads.
    void append(const QList<ConsoleEntry> &entries);
    void clear();

    const std::deque<ConsoleEntry> &entries() const { return entries_; }
    int errors() const { return errors_; } // since it was cleared last
    QString last_error() const;            // empty when there is none

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  Q_SIGNALS:
    void counted(int errors);

  private:
    std::deque<ConsoleEntry> entries_;
    int errors_ = 0;
};

// A dock that shows the model, which outlives it.
class ConsoleDock : public QDockWidget {
    Q_OBJECT

  public:
    ConsoleDock(ConsoleModel &model, QWidget *parent);
};

// "no errors", "1 error", "2 errors".
QString error_count(int errors);
