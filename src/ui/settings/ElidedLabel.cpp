#include "ui/settings/ElidedLabel.h"

#include "ui/settings/SettingsTheme.h"

#include <QPainter>
#include <QTextDocument>

using namespace Qt::StringLiterals;

ElidedLabel::ElidedLabel(QWidget *parent) : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void ElidedLabel::setText(const QString &text)
{
    m_text = text;
    setAccessibleName(text);
    updateToolTip();
    updateGeometry();
    update();
}

QSize ElidedLabel::sizeHint() const
{
    return {fontMetrics().horizontalAdvance(m_text) + 1, fontMetrics().height()};
}

QSize ElidedLabel::minimumSizeHint() const
{
    return {0, fontMetrics().height()};
}

void ElidedLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setPen(SettingsTheme::color(SettingsTheme::Tint::Text, palette()));
    painter.drawText(rect(), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                     fontMetrics().elidedText(m_text, Qt::ElideMiddle, width()));
}

void ElidedLabel::resizeEvent(QResizeEvent *event)
{
    updateToolTip();
    QWidget::resizeEvent(event);
}

void ElidedLabel::updateToolTip()
{
    const bool fits = fontMetrics().horizontalAdvance(m_text) <= width();
    const bool looksLikeMarkup = Qt::mightBeRichText(m_text);
    const QString whole =
        looksLikeMarkup ? QString(u"<p>"_s + m_text.toHtmlEscaped() + u"</p>"_s) : m_text;
    setToolTip(fits ? QString() : whole);
}
