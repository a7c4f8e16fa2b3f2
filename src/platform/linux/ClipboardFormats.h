#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>

/// The forms in which programs of the Linux desktop offer what was copied.
namespace ClipboardFormats {

/// Set by password managers; saysSecret() tells what it means. From KeePassXC and KDE's Klipper.
inline constexpr QLatin1String kSecretHint("x-kde-passwordManagerHint");

/// Whether the content of kSecretHint marks the clipboard as secret.
bool saysSecret(const QByteArray &hint);

/// The type that holds addresses, the best on offer; empty if there is none.
QString addressType(const QStringList &offered);

/// The addresses in data of that type, in order. What is no address is left out.
QList<QUrl> addresses(const QString &type, const QByteArray &data);

/// The type that holds plain text, the best on offer; empty if there is none.
QString textType(const QStringList &offered);

/// The text in data of that type, exactly as it is.
QString text(const QString &type, const QByteArray &data);

/// The type that holds an image that can be read, PNG before those without loss before the others;
/// empty if there is none.
QString imageType(const QStringList &offered, const QList<QByteArray> &readable);

} // namespace ClipboardFormats
