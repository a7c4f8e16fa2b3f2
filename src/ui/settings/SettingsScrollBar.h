#pragma once

#include <QScrollBar>

/// A slim vertical scroll bar that shows nothing while there is nothing to scroll.
class SettingsScrollBar : public QScrollBar {
    Q_OBJECT

public:
    explicit SettingsScrollBar(QWidget *parent = nullptr);

    static constexpr int kWidth = 10;

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
};
