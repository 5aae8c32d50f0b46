// Boxes for assistive programs.
#include "boxaccess.h"

#include <QAccessibleWidget>

#include "boxwidget.h"

namespace {

class AccessibleBox : public QAccessibleWidget {
  public:
    explicit AccessibleBox(BoxWidget *widget) : QAccessibleWidget(widget, widget->role()) {}

    QString text(QAccessible::Text kind) const override {
        if (kind == QAccessible::Name)
            return box().spoken();
        return kind == QAccessible::Value && role() == QAccessible::SpinBox ? box().spoken()
                                                                            : QAccessibleWidget::text(kind);
    }

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.checkable = role() == QAccessible::CheckBox;
        state.checked = state.checkable && box().is_on();
        return state;
    }

    QStringList actionNames() const override {
        QStringList names = QAccessibleWidget::actionNames();
        if (can_be_pressed())
            names.prepend(pressAction());
        return names;
    }

    void doAction(const QString &name) override {
        if (name == pressAction() && can_be_pressed())
            box().activate();
        else
            QAccessibleWidget::doAction(name);
    }

  private:
    BoxWidget &box() const { return *static_cast<BoxWidget *>(object()); }
    bool can_be_pressed() const { return role() == QAccessible::Button || role() == QAccessible::CheckBox; }
};

QAccessibleInterface *make_interface(const QString &, QObject *object) {
    auto *box = qobject_cast<BoxWidget *>(object);
    return box ? new AccessibleBox(box) : nullptr;
}

} // namespace

void make_boxes_accessible() { QAccessible::installFactory(make_interface); }
