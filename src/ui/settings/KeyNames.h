#pragma once

#include <QString>
#include <QStringList>

/// How keys are shown and said. A key is what a key cap stands for: the symbol of a modifier, or
/// the character that the key types.
namespace KeyNames {

/// The key as it is drawn: in upper case, and a sign for keys that type nothing visible.
QString drawn(const QString &key);

/// The key as it is said on a PC keyboard: "Super" for ⌘, "Space" for a blank, "U" for u.
QString said(const QString &key);

/// The keys of a combination as they are said: "Super+Shift+U".
QString said(const QStringList &keys);

/// Says which key each modifier among the keys is: "⌘ Super, ⇧ Shift". May be empty.
QString explanation(const QStringList &keys);

} // namespace KeyNames
