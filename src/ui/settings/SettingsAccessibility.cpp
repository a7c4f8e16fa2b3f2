#include "ui/settings/SettingsAccessibility.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QAccessibleWidget>

using namespace Qt::StringLiterals;

namespace {

/// A tab of the window, which can be pressed and is selected or not.
class TabInterface final : public QAccessibleWidget {
public:
    explicit TabInterface(QAbstractButton *button)
        : QAccessibleWidget(button, QAccessible::PageTab), m_button(button)
    {
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.selectable = true;
        state.selected = m_button->isChecked();
        return state;
    }

    QStringList actionNames() const override { return {pressAction()}; }

    void doAction(const QString &name) override
    {
        if (name == pressAction())
            m_button->click();
    }

private:
    QAbstractButton *m_button;
};

QAccessibleInterface *make(const QString &className, QObject *object)
{
    auto *const widget = qobject_cast<QWidget *>(object);
    if (!widget)
        return nullptr;
    if (className == "TabButton"_L1)
        return new TabInterface(qobject_cast<QAbstractButton *>(object));
    if (className == "SettingsCard"_L1 || className == "SegmentedSelector"_L1)
        return new QAccessibleWidget(widget, QAccessible::Grouping);
    if (className == "StatusBadge"_L1)
        return new QAccessibleWidget(widget, QAccessible::AlertMessage);
    if (className == "ElidedLabel"_L1)
        return new QAccessibleWidget(widget, QAccessible::StaticText);
    if (className == "QWidget"_L1 && object->objectName() == "tabBar"_L1)
        return new QAccessibleWidget(widget, QAccessible::PageTabList);
    return nullptr;
}

} // namespace

void SettingsAccessibility::install()
{
    [[maybe_unused]] static const bool isInstalled = [] {
        QAccessible::installFactory(&make);
        return true;
    }();
}
