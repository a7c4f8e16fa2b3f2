#pragma once

#include <QProcess>

#include <sys/prctl.h>

#include <csignal>
#include <optional>

/// A child process that is ended with its object.
class TestChild {
public:
    TestChild(const QString &program, const QStringList &arguments, const QByteArray &input = {})
    {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        // Even if the test crashes.
        m_process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
        m_process.start(program, arguments);
        m_process.write(input);
        m_process.closeWriteChannel();
    }
    ~TestChild()
    {
        m_process.kill();
        m_process.waitForFinished();
    }
    TestChild(const TestChild &) = delete;
    TestChild &operator=(const TestChild &) = delete;

    void send(int signal) const { ::kill(static_cast<pid_t>(m_process.processId()), signal); }

    QByteArray firstLine()
    {
        while (!m_process.canReadLine() && m_process.waitForReadyRead(10000)) { }
        return m_process.readLine().trimmed();
    }

private:
    QProcess m_process;
};

/// The output of a program that ends by itself; nothing if it fails.
inline std::optional<QByteArray> outputOf(const QString &program, const QStringList &arguments,
                                          const QByteArray &input = {})
{
    QProcess process;
    process.start(program, arguments);
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(10000) || process.exitCode() != 0)
        return std::nullopt;
    return process.readAllStandardOutput();
}
