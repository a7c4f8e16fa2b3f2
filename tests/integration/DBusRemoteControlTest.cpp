#include "platform/linux/dbus/DBusRemoteControl.h"

#include "base/AppIdentifier.h"
#include "platform/linux/dbus/ApplicationInterface.h"
#include "platform/linux/dbus/RunningInstance.h"
#include "support/CapturedOutput.h"
#include "support/TestChild.h"
#include "support/TestMain.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusPendingCall>
#include <QGuiApplication>
#include <QObject>
#include <QThread>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Answer = RunningInstance::Answer;

// What two processes do is in the end-to-end tests; here one thread is on both sides, so that
// nothing may wait for an answer.
class DBusRemoteControlTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_daemon = std::make_unique<TestChild>(
            u"dbus-daemon"_s,
            QStringList{u"--session"_s, u"--nofork"_s, u"--print-address=1"_s,
                        u"--address=unix:tmpdir="_s + qEnvironmentVariable("TMPDIR")});
        const QByteArray address = m_daemon->firstLine().trimmed();
        qputenv("DBUS_SESSION_BUS_ADDRESS", address);
        QVERIFY(QDBusConnection::sessionBus().isConnected());
        QVERIFY(QDBusConnection::connectToBus(QString::fromUtf8(address), kOther).isConnected());
    }

    void cleanupTestCase()
    {
        QDBusConnection::disconnectFromBus(kOther);
        QDBusConnection::disconnectFromBus(u"qt_default_session_bus"_s);
        m_daemon.reset();
    }

    void init()
    {
        TestSurroundings::failOnWarnings();
        m_asked.clear();
    }

    void cleanup()
    {
        m_control.reset();
        QDBusConnection::sessionBus().unregisterService(kAppIdentifier);
        QDBusConnection(kOther).unregisterService(kAppIdentifier);
    }

    void firstStartHasTheName()
    {
        QVERIFY(!begin());
        QCOMPARE(QDBusConnection(kOther).interface()->serviceOwner(kAppIdentifier).value(),
                 QDBusConnection::sessionBus().baseService());
    }

    void requestsReachTheHandlersWithTheirToken()
    {
        QVERIFY(!begin());
        listen();
        const QDBusPendingCall one = call(u"Activate"_s, {data(u"one"_s)});
        const QDBusPendingCall two =
            call(u"ActivateAction"_s, {u"settings"_s, QVariantList(), data(u"two"_s)});
        QTRY_VERIFY(one.isFinished() && two.isFinished());
        QVERIFY(!one.isError() && !two.isError());
        QCOMPARE(m_asked, QStringList({u"activate one"_s, u"settings two"_s}));
    }

    void requestsBeforeThereAreHandlersAreKept()
    {
        QVERIFY(!begin());
        const QDBusPendingCall one = call(u"Activate"_s, {data(u"one"_s)});
        QTRY_VERIFY(one.isFinished());
        QCOMPARE(m_asked, QStringList());
        listen();
        QTRY_COMPARE(m_asked, QStringList(u"activate one"_s));
    }

    void actionOfTheFirstStartIsDoneFirst()
    {
        QVERIFY(!begin(RemoteAction::StartMonitoring));
        const QDBusPendingCall one = call(u"Activate"_s, {QVariantMap()});
        QTRY_VERIFY(one.isFinished());
        listen();
        QCOMPARE(m_asked, QStringList()); // From the event loop, not from within.
        QTRY_COMPARE(m_asked, QStringList({u"start-monitoring token"_s, u"activate "_s}));
    }

    void unknownActionIsAnErrorAndALine()
    {
        QVERIFY(!begin());
        listen();
        const CapturedOutput output;
        const QDBusPendingCall one =
            call(u"ActivateAction"_s, {u"format\ndisk"_s, QVariantList(), QVariantMap()});
        QTRY_VERIFY(one.isFinished());
        QCOMPARE(one.error().type(), QDBusError::InvalidArgs);
        QCOMPARE(output.lines(), QStringList(u"⚠️ Unknown action: format?disk"_s));
        QCOMPARE(m_asked, QStringList());
    }

    void filesAreRefused()
    {
        QVERIFY(!begin());
        listen();
        const QDBusPendingCall one = call(u"Open"_s, {QStringList(u"file:///x"_s), QVariantMap()});
        QTRY_VERIFY(one.isFinished());
        QCOMPARE(one.error().type(), QDBusError::NotSupported);
    }

    void closedItAnswersNobody()
    {
        QVERIFY(!begin());
        listen();
        m_control->close();
        const QDBusPendingCall one = call(u"Activate"_s, {QVariantMap()});
        const QDBusPendingCall two =
            call(u"ActivateAction"_s, {u"quit"_s, QVariantList(), QVariantMap()});
        // What comes later is answered, as nobody is there.
        const QDBusPendingCall later =
            QDBusConnection(kOther).asyncCall(QDBusMessage::createMethodCall(
                kAppIdentifier, u"/elsewhere"_s, ApplicationInterface::kName, u"Activate"_s));
        QTRY_VERIFY(later.isFinished());
        QVERIFY(!one.isFinished() && !two.isFinished());
        QCOMPARE(m_asked, QStringList());
    }

    void startByTheBusIsNoRequest()
    {
        // As the bus does: what it has started the program for comes with the name.
        QVERIFY(!begin({}, {.isStartedByBus = true}));
        listen();
        const QDBusPendingCall one = call(u"Activate"_s, {data(u"later"_s)});
        QTRY_VERIFY(one.isFinished());
        // It had no reason to wait, so this one is a person's.
        QCOMPARE(m_asked, QStringList(u"activate later"_s));
    }

    void nobodyThere() { QCOMPARE(ask(100ms), Answer::NotThere); }

    void whoDoesNotAnswerIsSilent()
    {
        QVERIFY(QDBusConnection(kOther).registerService(kAppIdentifier));
        QObject object;
        new ApplicationInterface(&object, [](auto, const auto &) {});
        // This thread waits for itself.
        QVERIFY(QDBusConnection(kOther).registerObject(ApplicationInterface::kPath, &object,
                                                       QDBusConnection::ExportAdaptors));
        QCOMPARE(ask(200ms), Answer::Silent);
        QDBusConnection(kOther).unregisterObject(ApplicationInterface::kPath);
    }

    void whoHasNoObjectIsAboutToEnd()
    {
        QVERIFY(QDBusConnection(kOther).registerService(kAppIdentifier));
        QCOMPARE(ask(5s), Answer::NotThere);
    }

    void whoIsAnotherProgramRefuses()
    {
        QVERIFY(QDBusConnection(kOther).registerService(kAppIdentifier));
        QObject object;
        QVERIFY(QDBusConnection(kOther).registerObject(ApplicationInterface::kPath, &object));
        // This thread will be waiting for the answer.
        QThread thread;
        object.moveToThread(&thread);
        thread.start();
        QString problem;
        QCOMPARE(ask(5s, &problem), Answer::Refused);
        QVERIFY(!problem.isEmpty());
        thread.quit();
        QVERIFY(thread.wait());
        QDBusConnection(kOther).unregisterObject(ApplicationInterface::kPath);
    }

    void nothingToStopOrToQuitIsNothingToDo()
    {
        for (const RemoteAction action : {RemoteAction::StopMonitoring, RemoteAction::Quit}) {
            QCOMPARE(begin(action), std::optional(0));
            QVERIFY(!QDBusConnection(kOther).interface()->isServiceRegistered(kAppIdentifier));
        }
    }

    void environmentIsTakenAway()
    {
        for (const char *name : kVariables)
            qputenv(name, name);
        const StartEnvironment taken = StartEnvironment::take();
        QCOMPARE(taken.activationToken, u"XDG_ACTIVATION_TOKEN"_s);
        QCOMPARE(taken.startupId, u"DESKTOP_STARTUP_ID"_s);
        QVERIFY(taken.isStartedByBus);
        for (const char *name : kVariables)
            QVERIFY(!qEnvironmentVariableIsSet(name));
        QVERIFY(!StartEnvironment::take().isStartedByBus);
        QCOMPARE(StartEnvironment::tokenIn(taken.platformData()), u"XDG_ACTIVATION_TOKEN"_s);
        QCOMPARE(StartEnvironment::tokenIn({{u"desktop-startup-id"_s, u"id"_s}}), u"id"_s);
        QCOMPARE(StartEnvironment().platformData(), QVariantMap());
    }

private:
    static inline const QString kOther = u"other"_s;
    static constexpr const char *kVariables[] = {"XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID",
                                                 "DBUS_STARTER_ADDRESS", "DBUS_STARTER_BUS_TYPE"};

    static QVariantMap data(const QString &token) { return {{u"activation-token"_s, token}}; }

    static QDBusPendingCall call(const QString &method, const QVariantList &arguments)
    {
        QDBusMessage message = QDBusMessage::createMethodCall(
            kAppIdentifier, ApplicationInterface::kPath, ApplicationInterface::kName, method);
        message.setArguments(arguments);
        return QDBusConnection(kOther).asyncCall(message);
    }

    static Answer ask(std::chrono::milliseconds limit, QString *problem = nullptr)
    {
        return RunningInstance::ask(QDBusConnection::sessionBus(), RemoteAction::Settings, {},
                                    limit, problem);
    }

    std::optional<int> begin(std::optional<RemoteAction> action = {},
                             StartEnvironment environment = {.activationToken = u"token"_s})
    {
        m_control = std::make_unique<DBusRemoteControl>(std::move(environment));
        return m_control->begin(action, 200ms);
    }

    void listen()
    {
        m_control->setHandlers(
            {.activate = [this](const QString &token) { m_asked << u"activate "_s + token; },
             .perform =
                 [this](RemoteAction action, const QString &token) {
                     m_asked << RemoteActions::nameOf(action) + u' ' + token;
                 }});
    }

    std::unique_ptr<TestChild> m_daemon;
    std::unique_ptr<DBusRemoteControl> m_control;
    QStringList m_asked;
};

TESSERY_TEST_MAIN(QGuiApplication, DBusRemoteControlTest)
#include "DBusRemoteControlTest.moc"
