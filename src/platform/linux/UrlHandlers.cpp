#include "platform/linux/UrlHandlers.h"

#include <QFile>
#include <QStandardPaths>
#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// The files that can name an application for a type, without regard to their order.
QStringList associationFiles()
{
    QStringList names = {u"mimeapps.list"_s};
    for (const QString &desktop :
         qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':', Qt::SkipEmptyParts))
        names << desktop.toLower() + u"-mimeapps.list"_s;

    QStringList files;
    for (const QString &name : std::as_const(names)) {
        files << QStandardPaths::locateAll(QStandardPaths::GenericConfigLocation, name)
              << QStandardPaths::locateAll(QStandardPaths::GenericDataLocation,
                                           u"applications/"_s + name);
    }
    return files << QStandardPaths::locateAll(QStandardPaths::GenericDataLocation,
                                              u"applications/mimeinfo.cache"_s);
}

bool isInstalled(const QString &application)
{
    return !QStandardPaths::locate(QStandardPaths::GenericDataLocation,
                                   u"applications/"_s + application)
                .isEmpty();
}

/// The applications that the file names for type. Those that the user took away count as none.
QStringList applicationsIn(const QString &path, const QString &type)
{
    QStringList applications;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return applications;
    bool inRemoved = false;
    for (const QString &line : QString::fromUtf8(file.readAll()).split(u'\n')) {
        if (line.startsWith(u'['))
            inRemoved = line.trimmed() == u"[Removed Associations]";
        else if (!inRemoved && line.startsWith(type + u'='))
            applications << line.mid(type.size() + 1).trimmed().split(u';', Qt::SkipEmptyParts);
    }
    return applications;
}

} // namespace

bool hasUrlHandler(const QString &scheme)
{
    const QString type = u"x-scheme-handler/"_s + scheme;
    const QStringList files = associationFiles();
    return std::any_of(files.cbegin(), files.cend(), [&](const QString &file) {
        const QStringList applications = applicationsIn(file, type);
        return std::any_of(applications.cbegin(), applications.cend(), isInstalled);
    });
}
