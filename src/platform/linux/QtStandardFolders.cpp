#include "platform/linux/QtStandardFolders.h"

#include "platform/linux/UserDirectories.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <libintl.h>

using namespace Qt::StringLiterals;

namespace {

QString configuredFolder()
{
    const QString path = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + u"/user-dirs.dirs"_s;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return UserDirectories::folder(file.readAll(), "XDG_SCREENSHOTS_DIR", QDir::homePath());
}

/// What the tool that has the catalogue domain calls message in the user's language; message itself
/// where the tool is not there.
QString translated(const char *domain, const char *message)
{
    ::bind_textdomain_codeset(domain, "UTF-8");
    return QString::fromUtf8(::dgettext(domain, message));
}

/// The names that desktops give the folder, asked of them, since each translates it in its own way
/// and anew now and then.
QStringList folderNames()
{
    const QString name = u"Screenshots"_s;
    // GNOME Shell, screenshot.js: _('Screenshots').
    const QString gnome = translated("gnome-shell", "Screenshots");
    // Spectacle 6: i18nc("translatable folder name", "Screenshots"). A catalogue puts the
    // context before the message.
    constexpr QLatin1StringView kContext("translatable folder name\x04");
    QString kde = translated("spectacle", "translatable folder name\x04Screenshots");
    if (kde.startsWith(kContext))
        kde = name;
    return {name, gnome, kde};
}

} // namespace

QString QtStandardFolders::home() const
{
    return QDir::homePath();
}

QString QtStandardFolders::desktop() const
{
    return QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);
}

QStringList QtStandardFolders::screenshots() const
{
    QStringList folders = {configuredFolder()};
    const QDir pictures(QStandardPaths::writableLocation(QStandardPaths::PicturesLocation));
    for (const QString &name : folderNames())
        folders.append(QDir::cleanPath(pictures.filePath(name)));
    folders.removeIf([](const QString &path) { return !QFileInfo(path).isDir(); });
    folders.removeDuplicates();
    return folders;
}
