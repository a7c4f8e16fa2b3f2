#pragma once

#include <QString>

/// Menu texts in which no character acts as the mark of a mnemonic. A caption, which may be empty,
/// stands beside the text.
namespace MenuLabel {

/// For a menu that we draw.
QString forMenu(const QString &text, const QString &caption);

/// For a menu that a panel draws, over D-Bus.
QString forPanel(const QString &text, const QString &caption);

} // namespace MenuLabel
