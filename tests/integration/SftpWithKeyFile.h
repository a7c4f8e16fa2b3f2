#pragma once

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <stdexcept>

/// A stand-in for sftp that offers a key file as if it lay in the person's ~/.ssh. As long as it
/// lives it is also the first sftp on the PATH, where expect looks. (ssh takes the home folder from
/// the account, which is not ours to use.)
class SftpWithKeyFile {
public:
    explicit SftpWithKeyFile(const QString &keyFile) : m_searchPath(qgetenv("PATH"))
    {
        QFile script(path());
        const QString text =
            QStringLiteral("#!/bin/sh\nexec /usr/bin/sftp '-oIdentityFile=%1' \"$@\"\n")
                .arg(keyFile);
        if (!script.open(QIODevice::WriteOnly) || script.write(text.toUtf8()) < 0
            || !script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner))
            throw std::runtime_error("no stand-in for sftp");
        qputenv("PATH", QByteArray(QFile::encodeName(m_folder.path()) + ':' + m_searchPath));
    }
    ~SftpWithKeyFile() { qputenv("PATH", m_searchPath); }
    SftpWithKeyFile(const SftpWithKeyFile &) = delete;
    SftpWithKeyFile &operator=(const SftpWithKeyFile &) = delete;

    /// For UploadService::Environment.
    QString path() const { return m_folder.filePath(QStringLiteral("sftp")); }

private:
    QByteArray m_searchPath;
    QTemporaryDir m_folder;
};
