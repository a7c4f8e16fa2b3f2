#pragma once

#include "support/TestChild.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

/// A session bus of the test's own, which DBUS_SESSION_BUS_ADDRESS names until it goes; there can
/// be one in a program. It starts no service but those that it is told of.
class PrivateBus {
public:
    PrivateBus() : m_daemon(QStringLiteral("dbus-daemon"), arguments())
    {
        qputenv("DBUS_SESSION_BUS_ADDRESS", m_daemon.firstLine());
    }
    ~PrivateBus() { QDBusConnection::disconnectFromBus(QStringLiteral("qt_default_session_bus")); }
    PrivateBus(const PrivateBus &) = delete;
    PrivateBus &operator=(const PrivateBus &) = delete;

    /// Lets the bus start program, an absolute path, for whoever calls the name; empty: no more.
    void setActivation(const QString &name, const QByteArray &program) const
    {
        const QString path = m_folder.filePath(name + QLatin1String(".service"));
        if (program.isEmpty())
            QFile::remove(path);
        else
            writeFile(path, "[D-BUS Service]\nName=" + name.toUtf8() + "\nExec=" + program + '\n');
        QDBusConnection::sessionBus().call(QDBusMessage::createMethodCall(
            QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/"),
            QStringLiteral("org.freedesktop.DBus"), QStringLiteral("ReloadConfig")));
    }

private:
    QStringList arguments() const
    {
        const QByteArray folder = QFile::encodeName(m_folder.path());
        const QString config = m_folder.filePath(QStringLiteral("bus.conf"));
        writeFile(config,
                  "<busconfig><type>session</type><listen>unix:path=" + folder
                      + "/bus</listen><auth>EXTERNAL</auth><servicedir>" + folder
                      + "</servicedir><policy context=\"default\">"
                        "<allow send_destination=\"*\"/><allow receive_sender=\"*\"/>"
                        "<allow own=\"*\"/></policy></busconfig>");
        return {QStringLiteral("--config-file=") + config, QStringLiteral("--nofork"),
                QStringLiteral("--print-address=1")};
    }

    static void writeFile(const QString &path, const QByteArray &text)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(text), text.size());
    }

    QTemporaryDir m_folder;
    TestChild m_daemon;
};
