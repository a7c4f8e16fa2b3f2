#pragma once

#include <QAbstractButton>

#include <functional>

/// One tab of the window: a symbol over a title, highlighted when it is the selected one.
class TabButton : public QAbstractButton {
    Q_OBJECT

public:
    /// icon is the name of a symbol; action runs when the button is pressed.
    TabButton(const QString &title, const QString &icon, std::function<void()> action,
              QWidget *parent = nullptr);

    bool isSelected() const { return isChecked(); }

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;

private:
    QString m_icon;
};
