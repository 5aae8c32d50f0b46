// The view of a list: rows of equal height, of which those that are seen are painted. Mouse and keys select as the data
// view has it.
#pragma once

#include <QTableView>

#include "celldelegate.h"
#include "listmodel.h"

class ListView : public QTableView {
    Q_OBJECT

  public:
    // Box and patcher view outlive the view.
    ListView(t_object *box, t_object *patcher_view, QWidget *parent);

    // Takes over rows, heights and selection from the host, and scrolls to a row that has become selected.
    void refresh(double zoom);

    // The palette around it is another one now.
    void take_colors();

  protected:
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *) override {} // rows are not dragged
    void mouseReleaseEvent(QMouseEvent *) override {}
    void mouseDoubleClickEvent(QMouseEvent *event) override { mousePressEvent(event); }
    void keyPressEvent(QKeyEvent *event) override;

  private:
    void fit_column();
    int rows_in_a_page() const;
    int row_after(int key, int row, int last) const;

    ListModel model_;
    CellDelegate delegate_;
    double zoom_ = 1;
    int column_width_ = 1; // as it is shown
    long selected_ = 0;    // position, as the view was told last
};
