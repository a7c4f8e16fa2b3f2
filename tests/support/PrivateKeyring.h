#pragma once

#include "support/PrivateDisplay.h"
#include "support/TestChild.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <memory>

/// A real keyring on a session bus of its own, whose real prompter shows itself on a display of its
/// own. Both are there from the first need on.
class PrivateKeyring {
public:
    static inline const QString kSecretsName = QStringLiteral("org.freedesktop.secrets");
    static inline const QString kPassword = QStringLiteral("open sesame");

    PrivateKeyring() = default;
    ~PrivateKeyring()
    {
        stop();
        QDBusConnection::disconnectFromBus(QStringLiteral("qt_default_session_bus"));
    }
    PrivateKeyring(const PrivateKeyring &) = delete;
    PrivateKeyring &operator=(const PrivateKeyring &) = delete;

    /// A bus without a keyring.
    void startBus()
    {
        if (m_bus)
            return;
        startDisplay();
        QVERIFY(QDir().mkpath(servicesFolder()));
        setActivation(kPrompterName, "/usr/libexec/gcr-prompter");
        const QString config = m_folder.filePath(QStringLiteral("bus.conf"));
        const QByteArray folder = QFile::encodeName(m_folder.path());
        writeFile(config,
                  "<busconfig><type>session</type><listen>unix:path=" + folder
                      + "/bus</listen><auth>EXTERNAL</auth><servicedir>" + folder
                      + "/services</servicedir><policy context=\"default\">"
                        "<allow send_destination=\"*\"/><allow receive_sender=\"*\"/>"
                        "<allow own=\"*\"/></policy></busconfig>");
        m_bus = std::make_unique<TestChild>(QStringLiteral("dbus-daemon"),
                                            QStringList{QStringLiteral("--config-file=") + config,
                                                        QStringLiteral("--nofork"),
                                                        QStringLiteral("--print-address=1")});
        qputenv("DBUS_SESSION_BUS_ADDRESS", m_bus->firstLine());
        QVERIFY(QDBusConnection::sessionBus().isConnected());
    }

    /// A keyring that has an unlocked default collection, or none at all.
    void start(bool withCollection = true)
    {
        startBus();
        QStringList arguments{QStringLiteral("--foreground"),
                              QStringLiteral("--components=secrets")};
        if (withCollection)
            arguments << QStringLiteral("--unlock");
        m_daemon = std::make_unique<TestChild>(QStringLiteral("gnome-keyring-daemon"), arguments,
                                               kPassword.toUtf8());
        QTRY_VERIFY(isRegistered(kSecretsName));
    }

    /// Ends the keyring and its prompter, if they run.
    void stop()
    {
        m_daemon.reset();
        if (!m_bus)
            return;
        const auto prompter = QDBusConnection::sessionBus().interface()->servicePid(kPrompterName);
        if (prompter.isValid())
            ::kill(static_cast<pid_t>(prompter.value()), SIGKILL);
        QTRY_VERIFY(!isRegistered(kSecretsName) && !isRegistered(kPrompterName));
    }

    void send(int signal) const { m_daemon->send(signal); }

    void lock() const
    {
        const QList<QDBusObjectPath> paths{
            QDBusObjectPath(QStringLiteral("/org/freedesktop/secrets/collection/login"))};
        QDBusMessage message = QDBusMessage::createMethodCall(
            kSecretsName, QStringLiteral("/org/freedesktop/secrets"),
            QStringLiteral("org.freedesktop.Secret.Service"), QStringLiteral("Lock"));
        message << QVariant::fromValue(paths);
        QCOMPARE(QDBusConnection::sessionBus().call(message).type(), QDBusMessage::ReplyMessage);
    }

    /// Lets the bus start program, an absolute path, for whoever asks for the name; empty: no more.
    void setActivation(const QString &name, const QByteArray &program) const
    {
        const QString path = servicesFolder() + u'/' + name + QLatin1String(".service");
        if (program.isEmpty())
            QFile::remove(path);
        else
            writeFile(path, "[D-BUS Service]\nName=" + name.toUtf8() + "\nExec=" + program + '\n');
        if (m_bus)
            QDBusConnection::sessionBus().call(QDBusMessage::createMethodCall(
                QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/"),
                QStringLiteral("org.freedesktop.DBus"), QStringLiteral("ReloadConfig")));
    }

    /// Whether the user has been asked anything since the last stop().
    bool hasPrompted() const { return isRegistered(kPrompterName); }

    /// The number of prompts on the display.
    int prompts() const
    {
        const auto found = outputOf(QStringLiteral("xdotool"),
                                    {QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                                     QStringLiteral("--class"), QStringLiteral("gcr-prompter")});
        return found ? static_cast<int>(found->count('\n')) : 0;
    }

    /// Types texts into the fields of the prompt, and confirms it.
    void answerPrompt(const QStringList &texts) const
    {
        for (const QString &text : texts) {
            QVERIFY(outputOf(QStringLiteral("xdotool"), {QStringLiteral("type"), text}));
            if (&text != &texts.last())
                pressKey(QStringLiteral("Tab"));
        }
        pressKey(QStringLiteral("Return"));
    }

    void declinePrompt() const { pressKey(QStringLiteral("Escape")); }

private:
    static inline const QString kPrompterName = QStringLiteral("org.gnome.keyring.SystemPrompter");

    void startDisplay()
    {
        m_display = std::make_unique<PrivateDisplay>();
        qputenv("NO_AT_BRIDGE", "1");
        // There is no window manager, so keys go where the pointer is.
        QVERIFY(
            outputOf(QStringLiteral("xdotool"),
                     {QStringLiteral("mousemove"), QStringLiteral("100"), QStringLiteral("80")}));
    }

    static bool isRegistered(const QString &name)
    {
        return QDBusConnection::sessionBus().interface()->isServiceRegistered(name);
    }

    static void pressKey(const QString &key)
    {
        QVERIFY(outputOf(QStringLiteral("xdotool"), {QStringLiteral("key"), key}));
    }

    QString servicesFolder() const { return m_folder.filePath(QStringLiteral("services")); }

    static void writeFile(const QString &path, const QByteArray &text)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(text), text.size());
    }

    QTemporaryDir m_folder;
    std::unique_ptr<PrivateDisplay> m_display;
    std::unique_ptr<TestChild> m_bus;
    std::unique_ptr<TestChild> m_daemon;
};
