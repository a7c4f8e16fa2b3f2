#include "platform/linux/dbus/PortalEventTap.h"

#include "FakePortal.h"
#include "support/CapturedOutput.h"
#include "support/PrivateBus.h"
#include "support/TestMain.h"

#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

constexpr KeyPress kWanted{.keyCode = 32, .modifiers = {.command = true, .shift = true}};
const QString kTrigger = u"LOGO+SHIFT+u"_s;
const QString kId = u"uploadClipboard-LOGO+SHIFT+u"_s;
const QStringList kBinding{u"Register"_s, u"CreateSession"_s, u"BindShortcuts"_s,
                           u"ListShortcuts"_s};

QList<PortalShortcut> wantedShortcuts()
{
    return {{kId,
             {{u"description"_s, u"Upload from Clipboard"_s}, {u"preferred_trigger"_s, kTrigger}}}};
}

} // namespace

class PortalEventTapTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        m_heard.clear();
        m_decisions.clear();
        m_connection = std::make_shared<PortalConnection>();
        m_portal.emplace();
    }

    void cleanup()
    {
        m_tap.reset();
        m_connection.reset();
        m_portal.reset();
    }

    void bindsThePressAndHearsIt()
    {
        makeTap();
        QVERIFY(m_decisions.isEmpty());
        QTRY_COMPARE(m_decisions, QList{true});
        QCOMPARE(m_portal->called(), kBinding);
        QCOMPARE(m_portal->calls[0].interface(), u"org.freedesktop.host.portal.Registry"_s);
        QCOMPARE(m_portal->calls[0].arguments()[0], QVariant(u"org.tessery.Tessery"_s));
        const QVariantMap creating = FakePortal::optionsOf(m_portal->calls[1]);
        QCOMPARE(creating[u"session_handle_token"_s], QVariant(u"tessery"_s));
        QCOMPARE(portalShortcuts(creating[u"shortcuts"_s]), wantedShortcuts());
        const QVariantList binding = m_portal->calls[2].arguments();
        QCOMPARE(binding[0].value<QDBusObjectPath>().path(), m_portal->session);
        QCOMPARE(qdbus_cast<QList<PortalShortcut>>(binding[1]), wantedShortcuts());

        m_portal->activate(m_portal->session, kId);
        QTRY_COMPARE(m_heard, QList{kWanted});
        m_portal->activate(m_portal->session, kId);
        QTRY_COMPARE(m_heard.size(), 2);
    }

    void handleMayBeAPath()
    {
        m_portal->hasPathHandles = true;
        makeTap();
        QTRY_COMPARE(m_decisions, QList{true});
        m_portal->activate(m_portal->session, kId);
        QTRY_COMPARE(m_heard, QList{kWanted});
    }

    void requestsMayBeElsewhere()
    {
        // As portals before version 0.9 do; their answers come after that of the call.
        m_portal->requestPrefix = u"/org/freedesktop/portal/desktop/request/other_"_s;
        m_portal->isAsking = true;
        const auto later = [this](const QString &method) {
            return [this, usual = m_portal->answers[method]](const QDBusMessage &call) {
                const QVariantList handle{QVariant::fromValue(QDBusObjectPath(
                    m_portal->requestPrefix + call.service().mid(1).replace(u'.', u'_') + u'/'
                    + FakePortal::optionsOf(call)[u"handle_token"_s].toString()))};
                QTimer::singleShot(50, this, [usual, call] { usual(call); });
                return std::optional(handle);
            };
        };
        m_portal->answers[u"CreateSession"_s] = later(u"CreateSession"_s);
        m_portal->answers[u"ListShortcuts"_s] = later(u"ListShortcuts"_s);
        makeTap();
        QTRY_VERIFY(m_portal->called().contains(u"BindShortcuts"_s));
        // Heard once the answer of the call has told where.
        QTRY_VERIFY((m_portal->userAnswers(true), !m_decisions.isEmpty()));
        QCOMPARE(m_decisions, QList{true});
    }

    void portalWithoutRegistryWillDo()
    {
        m_portal->answers.erase(u"Register"_s);
        CapturedOutput output;
        makeTap();
        QTRY_COMPARE(m_decisions, QList{true});
        QCOMPARE(output.lines(), QStringList());
    }

    void theListIsTheTruth_data()
    {
        QTest::addColumn<uint>("code");
        QTest::addColumn<bool>("isBound");
        QTest::addColumn<QString>("line");
        QTest::newRow("bound before") << 2U << true << QString();
        QTest::newRow("declined") << 1U << false << u"the user has declined"_s;
        QTest::newRow("ended") << 2U << false << u"the desktop portal does not grant it"_s;
        QTest::newRow("claimed") << 0U << false << u"the desktop portal does not grant it"_s;
    }

    void theListIsTheTruth()
    {
        QFETCH(const uint, code);
        QFETCH(const bool, isBound);
        QFETCH(const QString, line);
        m_portal->bindCode = code;
        m_portal->binds = isBound;
        CapturedOutput output;
        makeTap();
        QTRY_COMPARE(m_decisions, QList{isBound});
        QCOMPARE(output.lines(),
                 isBound ? QStringList() : QStringList{u"⚠️ Global hotkey: "_s + line});
    }

    void otherIdsInTheListDoNotCount()
    {
        m_portal->binds = false;
        m_portal->bound = {{u"uploadClipboard-CTRL+x"_s, {}}};
        makeTap();
        QTRY_COMPARE(m_decisions, QList{false});
        QTRY_COMPARE(m_portal->lastCall(u"Close"_s).path(), m_portal->session);
    }

    void failedCallIsARefusal_data()
    {
        QTest::addColumn<QString>("method");
        QTest::addColumn<QString>("reason");
        QTest::newRow("session") << u"CreateSession"_s << u"no CreateSession"_s;
        QTest::newRow("binding") << u"BindShortcuts"_s << u"no BindShortcuts"_s;
        QTest::newRow("list") << u"ListShortcuts"_s << u"the desktop portal does not grant it"_s;
    }

    void failedCallIsARefusal()
    {
        QFETCH(const QString, method);
        QFETCH(const QString, reason);
        m_portal->answers.erase(method);
        CapturedOutput output;
        makeTap();
        QTRY_COMPARE(m_decisions, QList{false});
        QCOMPARE(output.lines(), QStringList{u"⚠️ Global hotkey: "_s + reason});
    }

    void strangerIsToldOfWhenRefused()
    {
        m_portal->answers.erase(u"Register"_s);
        m_portal->sessionCode = 2;
        CapturedOutput output;
        makeTap();
        QTRY_COMPARE(m_decisions, QList{false});
        QCOMPARE(
            output.lines(),
            (QStringList{
                u"⚠️ Global hotkey: the desktop portal gives no session for shortcuts"_s,
                u"⚠️ Global hotkey: the desktop portal does not know this program: no Register"_s}));
    }

    void userMayTakeAnyTime()
    {
        m_portal->isAsking = true;
        makeTap();
        QTRY_VERIFY(m_portal->called().contains(u"BindShortcuts"_s));
        QTest::qWait(100); // Nothing may happen.
        QVERIFY(m_decisions.isEmpty());
        m_portal->userAnswers(true);
        QTRY_COMPARE(m_decisions, QList{true});
        m_portal->activate(m_portal->session, kId);
        QTRY_COMPARE(m_heard, QList{kWanted});
    }

    void questionGoesWithTheTap()
    {
        m_portal->isAsking = true;
        makeTap();
        QTRY_VERIFY(m_portal->called().contains(u"BindShortcuts"_s));
        m_tap.reset();
        QTRY_COMPARE(m_portal->called().count(u"Close"_s), 2);
        const auto closed = m_portal->calls.mid(m_portal->calls.size() - 2);
        QVERIFY(closed[0].path().contains("/request/"_L1));
        QCOMPARE(closed[1].path(), m_portal->session);
        m_portal->userAnswers(true);
        QTest::qWait(50); // Nothing may happen.
        QVERIFY(m_decisions.isEmpty());
    }

    void othersPressesAreNotOurs()
    {
        makeTap();
        QTRY_COMPARE(m_decisions, QList{true});
        FakeBusService stranger({});
        FakePortal::activateBy(stranger, m_portal->session, kId);
        m_portal->activate(m_portal->session + u'x', kId);
        m_portal->activate(m_portal->session, kId + u'x');
        QTest::qWait(50); // Nothing may happen.
        QCOMPARE(m_heard.size(), 0);
    }

    void sessionIsClosedAtTheEnd()
    {
        makeTap();
        QTRY_COMPARE(m_decisions, QList{true});
        m_tap.reset();
        m_portal->activate(m_portal->session, kId);
        QTRY_COMPARE(m_portal->lastCall(u"Close"_s).path(), m_portal->session);
        QCOMPARE(m_portal->lastCall(u"Close"_s).interface(), u"org.freedesktop.portal.Session"_s);
        QCOMPARE(m_heard.size(), 0);
    }

    void nextSessionWaitsForTheEndOfTheLast()
    {
        m_portal->answers[u"Close"_s] = [](const QDBusMessage &) {
            return std::optional<QVariantList>();
        };
        makeTap();
        QTRY_COMPARE(m_decisions, QList{true});
        makeTap();
        QTRY_VERIFY(m_portal->called().contains(u"Close"_s));
        QTest::qWait(50); // Nothing may happen.
        QCOMPARE(m_portal->called().count(u"CreateSession"_s), 1);
        m_portal->answer(m_portal->lastCall(u"Close"_s));
        QTRY_COMPARE(m_decisions, (QList{true, true}));
        QCOMPARE(m_portal->called(), kBinding + QStringList{u"Close"_s} + kBinding);
    }

    void nextSessionWaitsForOneThatIsBeingMade()
    {
        const FakePortal::Answer make = m_portal->answers[u"CreateSession"_s];
        m_portal->answers[u"CreateSession"_s] = [](const QDBusMessage &) {
            return std::optional<QVariantList>();
        };
        makeTap();
        QTRY_VERIFY(m_portal->called().contains(u"CreateSession"_s));
        m_tap.reset();
        makeTap();
        QTest::qWait(50); // Nothing may happen.
        QCOMPARE(m_portal->called(), (QStringList{u"Register"_s, u"CreateSession"_s}));
        m_portal->answers[u"CreateSession"_s] = make;
        const QDBusMessage call = m_portal->lastCall(u"CreateSession"_s);
        m_portal->answer(call, make(call).value());
        QTRY_COMPARE(m_decisions, QList{true});
        QCOMPARE(m_portal->called(),
                 (QStringList{u"Register"_s, u"CreateSession"_s, u"Close"_s} + kBinding));
        QCOMPARE(m_portal->calls[2].path(), m_portal->session);
    }

    void portalThatEndsWhileItMakesASessionIsAskedAgain()
    {
        m_portal->answers[u"CreateSession"_s] = [](const QDBusMessage &) {
            return QVariantList{QVariant::fromValue(QDBusObjectPath(u"/request"_s))};
        };
        makeTap();
        QTRY_VERIFY(m_portal->called().contains(u"CreateSession"_s));
        m_tap.reset();
        makeTap();
        m_portal.reset();
        m_portal.emplace();
        QTRY_COMPARE(m_decisions, QList{true});
    }

    void portalThatStartsAnewIsAskedAnew()
    {
        makeTap();
        QTRY_COMPARE(m_decisions, QList{true});
        m_portal.reset();
        m_portal.emplace();
        QTRY_COMPARE(m_portal->called(), kBinding);
        // Heard once the answer to the last call has arrived.
        QTRY_VERIFY((m_portal->activate(m_portal->session, kId), !m_heard.isEmpty()));
        QCOMPARE(m_decisions, QList{true}); // Told once.
    }

    void portalThatEndsWhileItAsksIsAskedAgain()
    {
        m_portal->isAsking = true;
        makeTap();
        QTRY_VERIFY(m_portal->called().contains(u"BindShortcuts"_s));
        m_portal.reset();
        m_portal.emplace();
        QTRY_COMPARE(m_decisions, QList{true});
    }

    void sessionThatTheDesktopEndsIsLogged()
    {
        makeTap();
        QTRY_COMPARE(m_decisions, QList{true});
        CapturedOutput output;
        m_portal->emitSignal(m_portal->session, u"org.freedesktop.portal.Session"_s, u"Closed"_s,
                             {QVariantMap()});
        QTRY_COMPARE(output.lines().size(), 1);
        QVERIFY(output.lines()[0].startsWith(u"⚠️ Global hotkey: the desktop has ended it"_s));
        m_portal->activate(m_portal->session, kId);
        QTest::qWait(50); // Nothing may happen.
        QCOMPARE(m_heard.size(), 0);
    }

    void withoutAPortalItIsRefused()
    {
        m_portal.reset();
        makeTap();
        QTRY_COMPARE(m_decisions, QList{false});
    }

    void deciderMayDestroyTheTap()
    {
        m_portal->binds = false;
        m_tap = std::make_unique<PortalEventTap>(
            m_connection, kWanted, [](const KeyPress &) { return true; },
            [this](bool) { m_tap.reset(); });
        QTRY_VERIFY(!m_tap);
    }

    void handlerMayDestroyTheTap()
    {
        m_tap = std::make_unique<PortalEventTap>(
            m_connection, kWanted,
            [this](const KeyPress &) {
                m_tap.reset();
                return true;
            },
            [this](bool isHeard) { m_decisions << isHeard; });
        QTRY_COMPARE(m_decisions, QList{true});
        m_portal->activate(m_portal->session, kId);
        QTRY_VERIFY(!m_tap);
    }

private:
    void makeTap()
    {
        m_tap.reset();
        m_tap = std::make_unique<PortalEventTap>(
            m_connection, kWanted,
            [this](const KeyPress &press) {
                m_heard << press;
                return true;
            },
            [this](bool isHeard) { m_decisions << isHeard; });
    }

    PrivateBus m_bus;
    std::optional<FakePortal> m_portal;
    std::shared_ptr<PortalConnection> m_connection;
    std::unique_ptr<PortalEventTap> m_tap;
    QList<KeyPress> m_heard;
    QList<bool> m_decisions;
};

TESSERY_TEST_MAIN(QCoreApplication, PortalEventTapTest)
#include "PortalEventTapTest.moc"
