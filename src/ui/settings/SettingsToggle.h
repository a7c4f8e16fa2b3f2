#pragma once

#include <QCheckBox>

/// A setting that is on or off.
class SettingsToggle : public QCheckBox {
    Q_OBJECT

public:
    explicit SettingsToggle(const QString &text, QWidget *parent = nullptr);

    /// How far from the left the text begins, for what stands below it.
    static int textIndent();

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;
    bool hitButton(const QPoint &position) const override;
};
