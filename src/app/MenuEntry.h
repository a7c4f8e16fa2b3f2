#pragma once

#include <QPushButton>

struct MenuItem;

/// A line of the menu window that does something when it is chosen. The one with the keyboard is
/// highlighted, and the mouse takes the keyboard along when it moves, as in a menu.
class MenuEntry : public QPushButton {
    Q_OBJECT

public:
    explicit MenuEntry(QWidget *parent = nullptr);

    /// Shows item; its action is none of the entry's business.
    void setItem(const MenuItem &item);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;

private:
    QString m_text;
    QString m_aside; ///< At the right: the caption or the keys. May be empty.
};
