#include "ui/settings/SymbolView.h"

#include "ui/Symbol.h"

#include <QPainter>

namespace {

constexpr int kPlateMargin = 4;
constexpr double kPlateOpacity = 0.14;

} // namespace

SymbolView::SymbolView(const QString &name, int size, SettingsTheme::Tint tint, QWidget *parent)
    : QWidget(parent), m_name(name), m_size(size), m_tint(tint)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void SymbolView::setSymbol(const QString &name, SettingsTheme::Tint tint)
{
    m_name = name;
    m_tint = tint;
    update();
}

void SymbolView::setPlate(bool hasPlate)
{
    m_hasPlate = hasPlate;
    updateGeometry();
}

QSize SymbolView::sizeHint() const
{
    const int side = m_size + (m_hasPlate ? 2 * kPlateMargin : 0);
    return {side, side};
}

void SymbolView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QColor color = SettingsTheme::color(m_tint, palette());
    if (m_hasPlate) {
        QColor plate = color;
        plate.setAlphaF(kPlateOpacity);
        SettingsTheme::drawPlate(painter, rect(), 5, plate, Qt::transparent, 0);
    }
    const QRectF place((width() - m_size) / 2.0, (height() - m_size) / 2.0, m_size, m_size);
    Symbol::draw(painter, m_name, place, color);
}
