#include "platform/linux/dbus/SessionBusEventTap.h"

#include "platform/linux/dbus/KGlobalAccelEventTap.h"
#include "platform/linux/dbus/PortalConnection.h"
#include "platform/linux/dbus/PortalNames.h"
#include "support/CapturedOutput.h"
#include "support/FakeBusService.h"
#include "support/PrivateBus.h"
#include "support/TestMain.h"

#include <QGuiApplication>

using namespace Qt::StringLiterals;

namespace {

using Service = SessionBusEventTap::Service;

constexpr KeyPress kWanted{.keyCode = 32, .modifiers = {.command = true, .shift = true}};

} // namespace

class SessionBusEventTapTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        m_decisions.clear();
        m_portal = std::make_shared<PortalConnection>();
    }

    void cleanup()
    {
        m_tap.reset();
        m_portal.reset();
        m_bus.setActivation(PortalNames::kService, {});
        m_bus.setActivation(KGlobalAccelEventTap::kService, {});
    }

    void kdesOwnServiceComesFirst()
    {
        QCOMPARE(SessionBusEventTap::choose({}), Service::None);
        QCOMPARE(SessionBusEventTap::choose({.portal = true}), Service::Portal);
        QCOMPARE(SessionBusEventTap::choose({.kGlobalAccel = true, .kdeCompositor = true}),
                 Service::KGlobalAccel);
        QCOMPARE(SessionBusEventTap::choose(
                     {.kGlobalAccel = true, .kdeCompositor = true, .portal = true}),
                 Service::KGlobalAccel);
    }

    void runningKdeServiceIsAsked()
    {
        FakeBusService service(KGlobalAccelEventTap::kService);
        FakeBusService compositor(u"org.kde.KWin"_s);
        FakeBusService portal(PortalNames::kService);
        makeTap();
        QTRY_COMPARE(m_decisions, QList{false}); // It knows no method.
        QCOMPARE(service.called().value(0), u"doRegister"_s);
        QCOMPARE(portal.called(), QStringList());
    }

    void kdeServiceApartFromItsCompositorHearsNothing()
    {
        QCOMPARE(SessionBusEventTap::choose({.kGlobalAccel = true}), Service::None);
        FakeBusService service(KGlobalAccelEventTap::kService);
        FakeBusService portal(PortalNames::kService);
        makeTap();
        QTRY_COMPARE(m_decisions, QList{false});
        QCOMPARE(service.called(), QStringList());
        QCOMPARE(portal.called().value(0), u"Register"_s);
    }

    void runningPortalIsAsked()
    {
        FakeBusService portal(PortalNames::kService);
        makeTap();
        QTRY_COMPARE(m_decisions, QList{false});
        QCOMPARE(portal.called().value(0), u"Register"_s);
    }

    void portalIsStarted()
    {
        m_bus.setActivation(PortalNames::kService, "/bin/false");
        CapturedOutput output;
        makeTap();
        QTRY_COMPARE(m_decisions, QList{false});
        QVERIFY2(output.lines().join(u'\n').contains("exited with status 1"_L1),
                 qPrintable(output.lines().join(u'\n')));
    }

    void kdeServiceIsNeverStarted()
    {
        m_bus.setActivation(KGlobalAccelEventTap::kService, "/bin/false");
        CapturedOutput output;
        makeTap();
        QTRY_COMPARE(m_decisions, QList{false});
        QCOMPARE(
            output.lines(),
            QStringList{u"⚠️ Global hotkey: this desktop offers programs no global shortcuts"_s});
    }

    void pressThatNoKeyMakesIsNeverRefused_data()
    {
        QTest::addColumn<bool>("isAbsent");
        QTest::newRow("absent") << true;
        QTest::newRow("of no key") << false;
    }

    void pressThatNoKeyMakesIsNeverRefused()
    {
        QFETCH(const bool, isAbsent);
        FakeBusService service(KGlobalAccelEventTap::kService);
        makeTap(isAbsent ? std::nullopt : std::optional(KeyPress{.keyCode = 10, .modifiers = {}}));
        QCOMPARE(m_decisions, QList{true});
        QTest::qWait(20); // Nothing may happen.
        QCOMPARE(service.called(), QStringList());
    }

    void nothingIsDecidedOnceTheTapIsGone()
    {
        makeTap();
        m_tap.reset();
        QTest::qWait(50); // Nothing may happen.
        QVERIFY(m_decisions.isEmpty());
    }

    void deciderMayDestroyTheTap()
    {
        m_tap = SessionBusEventTap::make(
            m_portal, kWanted, [](const KeyPress &) { return true; },
            [this](bool) { m_tap.reset(); });
        QTRY_VERIFY(!m_tap);
    }

private:
    void makeTap(const std::optional<KeyPress> &wanted = kWanted)
    {
        m_tap = SessionBusEventTap::make(
            m_portal, wanted, [](const KeyPress &) { return true; },
            [this](bool isHeard) { m_decisions << isHeard; });
    }

    PrivateBus m_bus;
    std::shared_ptr<PortalConnection> m_portal;
    std::unique_ptr<EventTap> m_tap;
    QList<bool> m_decisions;
};

TESSERY_TEST_MAIN(QGuiApplication, SessionBusEventTapTest)
#include "SessionBusEventTapTest.moc"
