#pragma once

#include <QWidget>

/// A thin line between two rows of a card.
class SettingsDivider : public QWidget {
    Q_OBJECT

public:
    explicit SettingsDivider(QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
};
