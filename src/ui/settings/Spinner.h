#pragma once

#include "ui/settings/SettingsTheme.h"

#include <QBasicTimer>
#include <QWidget>

/// Shows, as long as it is seen, that something is under way.
class Spinner : public QWidget {
    Q_OBJECT

public:
    /// size in pixels, of both sides.
    explicit Spinner(int size, SettingsTheme::Tint tint, QWidget *parent = nullptr);

    QSize sizeHint() const override { return {m_size, m_size}; }

protected:
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

private:
    int m_size;
    SettingsTheme::Tint m_tint;
    int m_step = 0;
    QBasicTimer m_timer; ///< Runs only while it is seen, so that it costs nothing at rest.
};
