#pragma once

#include <QIcon>
#include <QString>

/// The drawings that the menu and the windows share, drawn anew at every size.
namespace Symbol {

enum class Tint {
    Neutral, ///< Legible on light and dark alike: a panel draws menus in colours of its own.
    Green,
};

/// The drawing of that name. Null if there is none.
QIcon icon(const QString &name, Tint tint = Tint::Neutral);

/// The application's own icon, in colour, for the tray.
QIcon menuBarIcon();

} // namespace Symbol
