#include "ui/settings/StatusBadge.h"

#include "ui/settings/Spinner.h"
#include "ui/settings/SymbolView.h"

#include <QAccessible>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>

using namespace Qt::StringLiterals;
using SettingsTheme::Tint;

namespace {

constexpr int kSymbolSize = 13;

Tint tintOf(StatusBadge::Status status)
{
    switch (status) {
    case StatusBadge::Status::success:
        return Tint::Green;
    case StatusBadge::Status::error:
        return Tint::Red;
    case StatusBadge::Status::loading:
        return Tint::Secondary;
    case StatusBadge::Status::warning:
        return Tint::Orange;
    }
    Q_UNREACHABLE();
}

QString symbolOf(StatusBadge::Status status)
{
    switch (status) {
    case StatusBadge::Status::success:
        return u"checkmark.circle.fill"_s;
    case StatusBadge::Status::error:
        return u"xmark.circle.fill"_s;
    case StatusBadge::Status::loading:
        return QString();
    case StatusBadge::Status::warning:
        return u"exclamationmark.triangle.fill"_s;
    }
    Q_UNREACHABLE();
}

} // namespace

StatusBadge::StatusBadge(QWidget *parent)
    : QWidget(parent)
    , m_symbol(new SymbolView(symbolOf(m_status), kSymbolSize, tintOf(m_status), this))
    , m_spinner(new Spinner(kSymbolSize, Tint::Secondary, this))
    , m_message(new QLabel(this))
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 5, 10, 5);
    layout->setSpacing(6);
    layout->addWidget(m_symbol);
    layout->addWidget(m_spinner);
    layout->addWidget(m_message);
    m_spinner->hide();
    m_message->setFont(SettingsTheme::font(12));
    m_message->setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
}

QString StatusBadge::message() const
{
    return m_message->text();
}

void StatusBadge::setMessage(Status status, const QString &message)
{
    const bool isNew = isHidden() || message != m_message->text();
    m_status = status;
    m_symbol->setVisible(status != Status::loading);
    m_symbol->setSymbol(symbolOf(status), tintOf(status));
    m_spinner->setVisible(status == Status::loading);
    m_message->setText(message);
    colorMessage();
    setAccessibleName(message);
    setVisible(true);
    update();
    if (isNew) {
        QAccessibleEvent event(this, QAccessible::Alert);
        QAccessible::updateAccessibility(&event);
    }
}

void StatusBadge::colorMessage()
{
    QPalette colors;
    if (m_status == Status::error)
        colors.setColor(QPalette::WindowText, SettingsTheme::color(Tint::Red, palette()));
    m_message->setPalette(colors);
}

void StatusBadge::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange)
        colorMessage();
    QWidget::changeEvent(event);
}

void StatusBadge::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    QColor fill = SettingsTheme::color(tintOf(m_status), palette());
    fill.setAlphaF(0.1F);
    SettingsTheme::drawPlate(painter, rect(), 6, fill, Qt::transparent, 0);
}

StatusBadge::Status statusOfMessage(const QString &message)
{
    if (message.contains("Saved"_L1) || message.contains("OK"_L1))
        return StatusBadge::Status::success;
    return StatusBadge::Status::warning;
}
