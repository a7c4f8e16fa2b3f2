#pragma once

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <stdexcept>

/// A private server on loopback that lives as long as this object; see servers.py for the kinds and
/// their options.
class TestServer {
public:
    explicit TestServer(const QString &kind, const QStringList &options = {})
    {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(QStringLiteral("/usr/bin/python3"),
                        QStringList{QStringLiteral(TESSERY_TESTS_DIR "/support/servers.py"), kind}
                            + options);
        while (!m_process.canReadLine()) {
            if (!m_process.waitForReadyRead(60000))
                throw std::runtime_error("the server " + kind.toStdString() + " did not start");
        }
        m_facts = QJsonDocument::fromJson(m_process.readLine()).object();
    }
    ~TestServer() { close(); }
    TestServer(const TestServer &) = delete;
    TestServer &operator=(const TestServer &) = delete;

    /// Ends the server and all connections to it.
    void close()
    {
        m_process.closeWriteChannel();
        m_process.waitForFinished();
    }

    /// What the server tells under that name; empty if it tells nothing.
    QString fact(const char *name) const { return m_facts.value(QLatin1String(name)).toString(); }
    /// Whether the server tells under that name that something is so.
    bool tells(const char *name) const { return m_facts.value(QLatin1String(name)).toBool(); }
    int port() const { return m_facts.value(QLatin1String("port")).toInt(); }
    /// Where files arrive, as this process sees it.
    QString folder() const { return fact("folder"); }

private:
    QProcess m_process;
    QJsonObject m_facts;
};
