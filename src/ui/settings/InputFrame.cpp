#include "ui/settings/InputFrame.h"

#include "ui/settings/SettingsTheme.h"
#include "ui/settings/SymbolView.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QPainter>

using namespace Qt::StringLiterals;
using SettingsTheme::Tint;

InputFrame::InputFrame(QLineEdit *field, QWidget *parent)
    : QWidget(parent)
    , m_field(field)
    , m_errorSymbol(new SymbolView(u"exclamationmark.triangle.fill"_s, 12, Tint::Red, this))
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(6, 3, 6, 3);
    layout->setSpacing(4);
    layout->addWidget(field);
    // Without an alignment its height would be the limit of the field's.
    layout->addWidget(m_errorSymbol, 0, Qt::AlignVCenter);
    m_errorSymbol->hide();
    field->setFrame(false);
    field->setFont(SettingsTheme::font(13));
    field->setMinimumHeight(field->fontMetrics().height() + 2);
    field->installEventFilter(this);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setCursor(Qt::IBeamCursor);
}

void InputFrame::setError(const QString &error)
{
    if (error == m_error)
        return;
    m_error = error;
    m_errorSymbol->setVisible(!error.isEmpty());
    setToolTip(error);
    m_field->setToolTip(error);
    m_field->setAccessibleDescription(error);
    update();
}

void InputFrame::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QColor fill = SettingsTheme::inputBackground(palette());
    const bool hasError = !m_error.isEmpty();
    if (m_field->hasFocus() || hasError) {
        const Tint tint = hasError ? Tint::Red : Tint::Accent;
        SettingsTheme::drawPlate(painter, rect(), 6, fill, SettingsTheme::color(tint, palette()),
                                 m_field->hasFocus() ? 2 : 1);
    } else {
        SettingsTheme::drawPlate(painter, rect(), 6, fill, SettingsTheme::borderColor(palette()));
    }
}

void InputFrame::mousePressEvent(QMouseEvent *)
{
    m_field->setFocus(Qt::MouseFocusReason);
}

bool InputFrame::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut)
        update();
    return QWidget::eventFilter(watched, event);
}
