#pragma once

#include "base/AppIdentifier.h"
#include "base/SystemError.h"
#include "base/TemporaryFile.h"
#include "support/FakePlatform.h"
#include "upload/UploadError.h"
#include "upload/UploadService.h"

#include <QCoro/QCoroTask>
#include <QDir>
#include <QTemporaryDir>

#include <memory>
#include <vector>

/// An upload service with shell programs in the place of the tools. Those tell what they have seen
/// by writing into the folder $SEEN.
class StandInTools {
public:
    StandInTools()
    {
        using namespace Qt::StringLiterals;
        setPassword("sesame");
        settings.hostname = u"my.host"_s;
        settings.username = u"me"_s;
        for (const QString &name : {u"home"_s, u"tmp"_s, u"bin"_s, u"seen"_s})
            QDir(m_folder.path()).mkdir(name);
        environment.homeFolder = path(u"home"_s);
        environment.temporaryFolder = path(u"tmp"_s);
        environment.curl = path(u"bin/curl"_s);
        environment.sftp = path(u"bin/sftp"_s);
        qputenv("PATH", QByteArray(QFile::encodeName(path(u"bin"_s)) + ':' + m_pathBefore));
        qputenv("SEEN", QFile::encodeName(path(u"seen"_s)));
        qputenv("TMP_SEEN", QFile::encodeName(path(u"tmp"_s)));
    }
    ~StandInTools() { qputenv("PATH", m_pathBefore); }
    StandInTools(const StandInTools &) = delete;
    StandInTools &operator=(const StandInTools &) = delete;

    /// A path in the test's folder, in which "home", "tmp", "bin" and "seen" are.
    QString path(const QString &name) const { return m_folder.filePath(name); }

    QStringList namesIn(const QString &folder) const
    {
        return QDir(path(folder)).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    /// The contents of a file in the folder $SEEN.
    QByteArray seen(const QString &name) const
    {
        QFile written(path(QLatin1String("seen/") + name));
        return written.open(QIODevice::ReadOnly) ? written.readAll() : QByteArray("unreadable");
    }

    void setPassword(const QByteArray &password)
    {
        platform.fakeSecrets->items[{kAppIdentifier, QStringLiteral("serverPassword")}] = password;
    }

    void makeKeysFolder() { QDir(path(QStringLiteral("home"))).mkdir(QStringLiteral(".ssh")); }

    void makeTool(const QString &name, const QByteArray &body)
    {
        m_tools.push_back(std::make_unique<TemporaryFile>(path(QLatin1String("bin/") + name),
                                                          "#!/bin/sh\n" + body + '\n',
                                                          TemporaryFile::Mode::ReadWriteExecute));
    }

    /// What the user would be told; empty for success. (Waiting for a task that throws would never
    /// end in QCoro 0.8.)
    static QCoro::Task<QString> resultOf(QCoro::Task<> task)
    {
        try {
            co_await task;
        } catch (const UploadError &error) {
            co_return error.errorDescription();
        } catch (const SystemError &error) {
            co_return error.description();
        }
        co_return QString();
    }

    QString upload(UploadSettings::ServerType type)
    {
        UploadService service(environment);
        settings.serverType = type;
        return QCoro::waitFor(resultOf(service.upload(file, settings, QStringLiteral("a b.png"))));
    }

    FakePlatform platform;
    UploadSettings settings;
    UploadService::Environment environment;
    QUrl file = QUrl::fromLocalFile(QStringLiteral("/tmp/my [shot].png"));

private:
    QTemporaryDir m_folder;
    std::vector<std::unique_ptr<TemporaryFile>> m_tools;
    QByteArray m_pathBefore = qgetenv("PATH");
};
