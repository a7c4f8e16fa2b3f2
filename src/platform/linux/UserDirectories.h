#pragma once

#include <QByteArray>
#include <QString>

/// The file in which a user's folders are written down, user-dirs.dirs, for the keys that Qt does
/// not know.
namespace UserDirectories {

/// What content, the file's, says of key, such as "XDG_SCREENSHOTS_DIR": an absolute path without a
/// slash at the end. Empty if it says nothing that can be used, or home, which is how a folder is
/// switched off.
QString folder(const QByteArray &content, const QByteArray &key, const QString &home);

} // namespace UserDirectories
