#include "platform/linux/FileSecretStore.h"

#include "base/SystemError.h"
#include "base/WholeFile.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QUrl>

#include <sys/stat.h>

#include <cerrno>

using namespace Qt::StringLiterals;

namespace {

QString dataFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/tessery"_s;
}

QString secretsFolder()
{
    return dataFolder() + u"/secrets"_s;
}

/// Makes the folder, closed to others from its first instant; closes one that was open to them.
bool makeSecretsFolder()
{
    if (!QDir().mkpath(dataFolder()))
        return false;
    const QByteArray path = QFile::encodeName(secretsFolder());
    return ::mkdir(path.constData(), S_IRWXU) == 0
        || (errno == EEXIST && ::chmod(path.constData(), S_IRWXU) == 0);
}

QString escaped(const QString &text)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(text));
}

} // namespace

std::optional<QByteArray> FileSecretStore::read(const QString &service, const QString &account)
{
    QFile file(filePath(service, account));
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    QByteArray secret = file.readAll();
    return file.error() == QFile::NoError ? std::optional(std::move(secret)) : std::nullopt;
}

bool FileSecretStore::write(const QString &service, const QString &account,
                            const QByteArray &secret)
{
    if (!makeSecretsFolder())
        return false;
    try {
        WholeFile::replace(filePath(service, account), secret, S_IRUSR | S_IWUSR,
                           WholeFile::Outlives::PowerCut);
        return true;
    } catch (const SystemError &) {
        return false; // The caller is told just that.
    }
}

void FileSecretStore::unlock(std::function<void()>)
{
    // Files are never locked, and nobody else changes them.
}

void FileSecretStore::remove(const QString &service, const QString &account)
{
    QFile::remove(filePath(service, account));
}

QString FileSecretStore::filePath(const QString &service, const QString &account) const
{
    return secretsFolder() + u'/' + escaped(service) + u'.' + escaped(account);
}
