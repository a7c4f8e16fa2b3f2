#pragma once

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <stdexcept>

/// A private ssh-agent with one key, offered to the programs that this one starts as long as it
/// lives; others that no server knows may be offered before it. (ssh looks for key files in the
/// home folder of the account, which is not ours to use.)
class SshAgent {
public:
    explicit SshAgent(const QString &keyFile, int unknownKeys = 0)
    {
        const QString socket = m_folder.filePath(QStringLiteral("agent"));
        m_process.start(QStringLiteral("/usr/bin/ssh-agent"),
                        {QStringLiteral("-D"), QStringLiteral("-a"), socket});
        if (!m_process.waitForReadyRead())
            throw std::runtime_error("no ssh-agent");
        qputenv("SSH_AUTH_SOCK", QFile::encodeName(socket));
        for (int i = 0; i < unknownKeys; ++i) {
            const QString unknown = m_folder.filePath(QString::number(i));
            run(QStringLiteral("/usr/bin/ssh-keygen"),
                {QStringLiteral("-q"), QStringLiteral("-N"), QString(), QStringLiteral("-f"),
                 unknown});
            add(unknown);
        }
        add(keyFile);
    }
    ~SshAgent()
    {
        qunsetenv("SSH_AUTH_SOCK");
        m_process.terminate();
        m_process.waitForFinished();
    }
    SshAgent(const SshAgent &) = delete;
    SshAgent &operator=(const SshAgent &) = delete;

private:
    static void add(const QString &keyFile)
    {
        run(QStringLiteral("/usr/bin/ssh-add"), {QStringLiteral("-q"), keyFile});
    }

    static void run(const QString &tool, const QStringList &arguments)
    {
        QProcess process;
        process.start(tool, arguments);
        if (!process.waitForFinished() || process.exitCode() != 0)
            throw std::runtime_error(tool.toStdString() + " failed");
    }

    QTemporaryDir m_folder;
    QProcess m_process;
};
