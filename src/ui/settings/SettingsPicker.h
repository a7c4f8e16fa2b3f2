#pragma once

#include <QComboBox>

/// A choice from a list that drops down.
class SettingsPicker : public QComboBox {
    Q_OBJECT

public:
    explicit SettingsPicker(QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
    /// Turning the wheel scrolls the page and changes nothing by accident.
    void wheelEvent(QWheelEvent *event) override;
};
