#pragma once

#include <QSlider>

/// A number to choose by sliding.
class SettingsSlider : public QSlider {
    Q_OBJECT

public:
    SettingsSlider(int minimum, int maximum, QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
    /// Turning the wheel scrolls the page and changes nothing by accident.
    void wheelEvent(QWheelEvent *event) override;
};
