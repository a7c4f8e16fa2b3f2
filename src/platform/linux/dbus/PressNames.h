#pragma once

#include "platform/EventTap.h"

#include <QList>
#include <QString>

/// A key press as the desktops' shortcut services name it: by what the key types, where this
/// program goes by its place. The press must be of a key that a shortcut can have.
namespace PressNames {

/// As KDE numbers it: Qt's key and modifiers in one number. With Shift, KDE's compositor takes some
/// keys for what they type together with it, and Shift for used up; shifted holds those characters
/// for this key. All numbers together are the press.
QList<int> kdeKeys(const KeyPress &press, const QString &shifted);

/// Whether kdeKeys() needs to know what the key types with Shift.
bool needsShifted(const KeyPress &press);

/// As the portal reads it: "LOGO+SHIFT+u".
QString portalTrigger(const KeyPress &press);

} // namespace PressNames
