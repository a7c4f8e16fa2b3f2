#pragma once

#include <QCheckBox>

/// A class of characters that is used or not: a button that stays down.
class CharacterToggle : public QCheckBox {
    Q_OBJECT

public:
    /// name is what a screen reader calls it: label may be of symbols alone.
    CharacterToggle(const QString &label, const QString &name, QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;
    bool hitButton(const QPoint &position) const override;
};
