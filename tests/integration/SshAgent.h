#pragma once

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <stdexcept>

/// A private ssh-agent with one key, offered to the programs that this one starts as long as it
/// lives. (ssh looks for key files in the home folder of the account, which is not ours to use.)
class SshAgent {
public:
    explicit SshAgent(const QString &keyFile)
    {
        const QString socket = m_folder.filePath(QStringLiteral("agent"));
        m_process.start(QStringLiteral("/usr/bin/ssh-agent"),
                        {QStringLiteral("-D"), QStringLiteral("-a"), socket});
        if (!m_process.waitForReadyRead())
            throw std::runtime_error("no ssh-agent");
        qputenv("SSH_AUTH_SOCK", QFile::encodeName(socket));
        QProcess add;
        add.start(QStringLiteral("/usr/bin/ssh-add"), {QStringLiteral("-q"), keyFile});
        if (!add.waitForFinished() || add.exitCode() != 0)
            throw std::runtime_error("the key was not added");
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
    QTemporaryDir m_folder;
    QProcess m_process;
};
