#include "ui/settings/Spinner.h"

#include <QPainter>

namespace {

constexpr int kSteps = 12;
constexpr int kStepMilliseconds = 80;

} // namespace

Spinner::Spinner(int size, SettingsTheme::Tint tint, QWidget *parent)
    : QWidget(parent), m_size(size), m_tint(tint)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void Spinner::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(width() / 2.0, height() / 2.0);
    painter.rotate(360.0 / kSteps * m_step);
    QColor color = SettingsTheme::color(m_tint, palette());
    const double outer = m_size / 2.0 - 1;
    for (int spoke = 0; spoke < kSteps; ++spoke) {
        color.setAlphaF(static_cast<float>(spoke + 1) / kSteps);
        painter.setPen(QPen(color, m_size / 9.0, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(QPointF(0, -outer * 0.55), QPointF(0, -outer));
        painter.rotate(360.0 / kSteps);
    }
}

void Spinner::showEvent(QShowEvent *event)
{
    m_timer.start(kStepMilliseconds, this);
    QWidget::showEvent(event);
}

void Spinner::hideEvent(QHideEvent *event)
{
    m_timer.stop();
    QWidget::hideEvent(event);
}

void Spinner::timerEvent(QTimerEvent *)
{
    m_step = (m_step + 1) % kSteps;
    update();
}
