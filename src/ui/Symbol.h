#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

class QPainter;
class QRectF;

/// The drawings that the menu and the windows share, drawn anew at every size.
namespace Symbol {

enum class Tint {
    Neutral, ///< Legible on light and dark alike: a panel draws menus in colours of its own.
    Green,
};

/// The drawing of that name. Null if there is none.
QIcon icon(const QString &name, Tint tint = Tint::Neutral);

/// Draws the drawing of that name into rect, in one colour. Nothing if there is none.
void draw(QPainter &painter, const QString &name, const QRectF &rect, const QColor &color);

/// The application's own icon, in colour, for the tray.
QIcon menuBarIcon();

} // namespace Symbol
