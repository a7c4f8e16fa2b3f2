#pragma once

#include "base/AppIdentifier.h"
#include "base/SystemError.h"
#include "support/FakePlatform.h"
#include "support/TestServer.h"
#include "upload/UploadError.h"
#include "upload/UploadService.h"

#include <QCoro/QCoroTask>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <sys/prctl.h>
#include <sys/wait.h>

#include <functional>
#include <set>
#include <vector>

/// An upload service with the real tools, its folders, and the means to tell what uploads left
/// behind.
class UploadSurroundings {
public:
    UploadSurroundings()
    {
        using namespace Qt::StringLiterals;
        // Orphans come to us, so that none is overlooked.
        ::prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0);
        for (const QString &name : {u"home"_s, u"tmp"_s, u"files"_s})
            QDir(m_folder.path()).mkdir(name);
        // The digits 530 in the speed that curl's progress meter tells would read as a refused
        // login.
        configureCurl(QStringLiteral("no-progress-meter\n"), QFile::Truncate);
        environment.homeFolder = m_folder.filePath(u"home"_s);
        environment.temporaryFolder = m_folder.filePath(u"tmp"_s);
        m_childrenBefore = children();
        m_descriptorsBefore = descriptors();
    }
    UploadSurroundings(const UploadSurroundings &) = delete;
    UploadSurroundings &operator=(const UploadSurroundings &) = delete;

    void makeKeysFolder() { QDir(environment.homeFolder).mkdir(QStringLiteral(".ssh")); }

    /// Turns to the server, as its account and with its password, into its folder.
    void use(const TestServer &server)
    {
        settings.hostname = server.fact("host");
        settings.port = server.port();
        settings.username = server.fact("user");
        settings.remotePath = server.fact("remotePath");
        setPassword(server.fact("password"));
    }

    /// Whether loopback has the address ::1, which many containers are without.
    static bool hasVersion6()
    {
        return contentsOf(QStringLiteral("/proc/net/if_inet6"))
            .contains("00000000000000000000000000000001 ");
    }

    /// Has curl take ports without the digits 530 on its own side, which version 8 tells of a
    /// connection that is refused.
    static void chooseClientPorts() { configureCurl(QStringLiteral("local-port = 61600-62499\n")); }

    /// Adds a line to curl's settings.
    static void configureCurl(const QString &line, QFile::OpenModeFlag mode = QFile::Append)
    {
        QFile settings(QDir::homePath() + QStringLiteral("/.curlrc"));
        if (!settings.open(QIODevice::WriteOnly | mode) || settings.write(line.toUtf8()) < 0)
            qFatal("no settings for curl");
    }

    /// What curl takes a host's name for: tried in this order, version 6 in brackets.
    void nameAddresses(const QString &name, int port, const QStringList &addresses)
    {
        chooseClientPorts();
        configureCurl(QStringLiteral("resolve = \"%1:%2:%3\"\n")
                          .arg(name, QString::number(port), addresses.join(u',')));
    }

    void setPassword(const QString &password)
    {
        platform.fakeSecrets->items[{kAppIdentifier, QStringLiteral("serverPassword")}] =
            password.toUtf8();
    }

    /// Makes a local file.
    QUrl makeFile(const QString &name, const QByteArray &contents)
    {
        QFile file(m_folder.filePath(QLatin1String("files/") + name));
        if (!file.open(QIODevice::WriteOnly) || file.write(contents) != contents.size())
            throw std::runtime_error("no local file");
        return QUrl::fromLocalFile(file.fileName());
    }

    /// Uploads and gives what the user would be told; empty for success.
    QString upload(const QUrl &file, const QString &remoteName)
    {
        UploadService service(environment);
        return QCoro::waitFor(resultOf(service.upload(file, settings, remoteName)));
    }
    QString upload() { return upload(makeFile(QStringLiteral("a.png"), small()), kName); }

    /// As upload() several times at once.
    QStringList uploadAtOnce(int count, const QUrl &file)
    {
        UploadService service(environment);
        std::vector<QCoro::Task<QString>> tasks;
        for (int i = 0; i < count; ++i)
            tasks.push_back(resultOf(service.upload(file, settings, kName)));
        QStringList told;
        for (QCoro::Task<QString> &task : tasks)
            told << QCoro::waitFor(task);
        return told;
    }

    /// As upload() again and again with one service, however long each takes; the names on the
    /// server are numbers.
    QStringList uploadEvery(std::chrono::milliseconds interval, int count)
    {
        UploadService service(environment);
        const QUrl file = makeFile(QStringLiteral("a.png"), small());
        std::vector<QCoro::Task<QString>> tasks;
        const auto start = [&] {
            const QString name = QString::number(tasks.size());
            tasks.push_back(resultOf(service.upload(file, settings, name)));
        };
        QTimer clock;
        clock.callOnTimeout(start);
        clock.start(interval);
        start();
        while (static_cast<int>(tasks.size()) < count)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        clock.stop();
        QStringList told;
        for (QCoro::Task<QString> &task : tasks)
            told << QCoro::waitFor(task);
        return told;
    }

    /// As upload() with a large file, and calls midway once a part of it is in that folder.
    QString uploadLarge(const QString &folder, const std::function<void()> &midway)
    {
        const QUrl file = makeFile(QStringLiteral("large.png"), large());
        const QString arriving = folder + QLatin1Char('/') + kName;
        QTimer watch;
        watch.callOnTimeout([&watch, &arriving, &midway] {
            if (QFileInfo(arriving).size() > 0) {
                watch.stop();
                midway();
            }
        });
        watch.start(std::chrono::milliseconds(5));
        return upload(file, kName);
    }

    static QByteArray small() { return QByteArrayLiteral("\x89PNG\r\n\x1a\n and the rest"); }
    static QByteArray large() { return QByteArray(1024 * 1024, 'x'); }
    static inline const QString kName = QStringLiteral("shot.png");

    static QByteArray contentsOf(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
    }

    /// Fails the running test if uploads left a file, a process or a descriptor behind.
    void checkLeftovers()
    {
        QCOMPARE(QDir(environment.temporaryFolder)
                     .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                 QStringList());
        QTRY_COMPARE(children(), m_childrenBefore);
        QCOMPARE(descriptors(), m_descriptorsBefore);
    }

    FakePlatform platform;
    UploadSettings settings;
    UploadService::Environment environment;

private:
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

    std::set<pid_t> children() const
    {
        const pid_t self = ::getpid();
        QFile file(QStringLiteral("/proc/self/task/%1/children").arg(self));
        std::set<pid_t> found;
        if (!file.open(QIODevice::ReadOnly))
            return {self};
        for (const QByteArray &word : file.readAll().simplified().split(' ')) {
            const pid_t pid = word.toInt();
            // Orphans that have ended wait for us to notice.
            const bool isOurs = m_childrenBefore.count(pid) > 0;
            if (pid > 0 && (isOurs || ::waitpid(pid, nullptr, WNOHANG) != pid))
                found.insert(pid);
        }
        return found;
    }

    static QStringList descriptors()
    {
        const QDir folder(QStringLiteral("/proc/self/fd"));
        QStringList open = folder.entryList(QDir::Files | QDir::System | QDir::NoDotAndDotDot);
        open.removeIf([&folder](const QString &name) {
            return !QFileInfo(folder.filePath(name)).isSymLink();
        });
        return open;
    }

    QTemporaryDir m_folder;
    std::set<pid_t> m_childrenBefore;
    QStringList m_descriptorsBefore;
};
