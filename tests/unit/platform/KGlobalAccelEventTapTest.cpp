#include "platform/linux/dbus/KGlobalAccelEventTap.h"

#include "support/CapturedOutput.h"
#include "support/FakeBusService.h"
#include "support/PrivateBus.h"
#include "support/TestMain.h"

#include <QDBusObjectPath>

using namespace Qt::StringLiterals;

namespace {

constexpr KeyPress kWanted{.keyCode = 32, .modifiers = {.command = true, .shift = true}};
constexpr int kKey = static_cast<int>(Qt::META) | static_cast<int>(Qt::SHIFT) | Qt::Key_U;
constexpr int kOtherKey = static_cast<int>(Qt::META) | Qt::Key_Exclam;
const QString kComponent = u"org.tessery.Tessery"_s;
const QString kAction = u"uploadClipboard"_s;
const QString kComponentPath = u"/component/org_tessery_Tessery"_s;
const QStringList kId{kComponent, kAction, u"Tessery"_s, u"Upload from Clipboard"_s};
const QStringList kClaim{u"doRegister"_s, u"getComponent"_s, u"setShortcut"_s};

/// KDE's service, which grants every key but those that somebody else has.
class FakeKGlobalAccel : public FakeBusService {
public:
    FakeKGlobalAccel() : FakeBusService(KGlobalAccelEventTap::kService)
    {
        answers[u"doRegister"_s] = [](const QDBusMessage &) {
            return QVariantList();
        };
        answers[u"setInactive"_s] = answers[u"doRegister"_s];
        answers[u"unregister"_s] = [](const QDBusMessage &) {
            return QVariantList{true};
        };
        answers[u"getComponent"_s] = [](const QDBusMessage &) {
            return QVariantList{QVariant::fromValue(QDBusObjectPath(kComponentPath))};
        };
        answers[u"setShortcut"_s] = [this](const QDBusMessage &call) {
            QList<int> keys = qdbus_cast<QList<int>>(call.arguments().at(1));
            keys.removeIf([this](int key) { return taken.contains(key); });
            return QVariantList{QVariant::fromValue(keys)};
        };
        answers[u"action"_s] = [](const QDBusMessage &) {
            return QVariantList{QStringList{u"kwin"_s, u"Expose"_s, u"KWin"_s, u"Overview"_s}};
        };
    }

    void press(const QString &component = kComponent, const QString &action = kAction)
    {
        pressBy(*this, component, action);
    }

    static void pressBy(FakeBusService &sender, const QString &component = kComponent,
                        const QString &action = kAction)
    {
        sender.emitSignal(kComponentPath, u"org.kde.kglobalaccel.Component"_s,
                          u"globalShortcutPressed"_s, {component, action, qlonglong{0}});
    }

    QList<int> taken;
};

} // namespace

class KGlobalAccelEventTapTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        QGuiApplication::setApplicationDisplayName(u"Tessery"_s);
        m_heard.clear();
        m_decisions.clear();
        m_service.emplace();
    }

    void cleanup()
    {
        m_tap.reset();
        m_service.reset();
    }

    void claimsThePressAndHearsIt()
    {
        makeTap();
        QVERIFY(m_decisions.isEmpty());
        QTRY_COMPARE(m_decisions, QList{true});
        QCOMPARE(m_service->called(), kClaim);
        QCOMPARE(m_service->calls[0].arguments(), QVariantList{kId});
        QCOMPARE(m_service->calls[1].arguments(), QVariantList{kComponent});
        const QVariantList set = m_service->calls[2].arguments();
        QCOMPARE(set[0], QVariant(kId));
        QCOMPARE(qdbus_cast<QList<int>>(set[1]), QList{kKey});
        QCOMPARE(set[2], QVariant(6U)); // In force now, whatever is remembered.

        m_service->press();
        QTRY_COMPARE(m_heard, QList{kWanted});
        m_service->press();
        QTRY_COMPARE(m_heard.size(), 2);
    }

    void keyOfAnotherIsRefusedAndItsOwnerNamed()
    {
        m_service->taken = {kKey};
        CapturedOutput output;
        makeTap();
        QTRY_COMPARE(m_decisions, QList{false});
        QCOMPARE(output.lines(),
                 QStringList{u"⚠️ Global hotkey: the key belongs to Overview of KWin"_s});
        QCOMPARE(m_service->lastCall(u"action"_s).arguments(), QVariantList{kKey});
        QTRY_COMPARE(m_service->lastCall(u"unregister"_s).arguments(),
                     (QVariantList{kComponent, kAction}));
        m_service->press();
        m_tap.reset();
        settle();
        QCOMPARE(m_heard.size(), 0);
        QCOMPARE(m_service->called().last(), u"unregister"_s);
    }

    void allKeysOrNone()
    {
        m_service->taken = {kOtherKey};
        makeTap({kKey, kOtherKey});
        QTRY_COMPARE(m_decisions, QList{false});
        QCOMPARE(m_service->lastCall(u"action"_s).arguments(), QVariantList{kOtherKey});
        QTRY_VERIFY(m_service->called().contains(u"unregister"_s));
    }

    void ownerThatCannotBeAskedForIsNotNamed()
    {
        m_service->taken = {kKey};
        m_service->answers.erase(u"action"_s);
        CapturedOutput output;
        makeTap();
        QTRY_COMPARE(m_decisions, QList{false});
        QCOMPARE(output.lines(), QStringList{u"⚠️ Global hotkey: another program has the key"_s});
    }

    void errorIsARefusal_data()
    {
        QTest::addColumn<QString>("method");
        QTest::newRow("component") << u"getComponent"_s;
        QTest::newRow("keys") << u"setShortcut"_s;
    }

    void errorIsARefusal()
    {
        QFETCH(const QString, method);
        m_service->answers.erase(method);
        CapturedOutput output;
        makeTap();
        QTRY_COMPARE(m_decisions, QList{false});
        QCOMPARE(output.lines(), QStringList{u"⚠️ Global hotkey: no "_s + method});
    }

    void withoutTheServiceItIsRefused()
    {
        m_service.reset();
        makeTap();
        QTRY_COMPARE(m_decisions, QList{false});
    }

    void keysAreGivenBackAtTheEnd()
    {
        makeTap();
        QTRY_COMPARE(m_decisions, QList{true});
        m_tap.reset();
        QTRY_COMPARE(m_service->called().last(), u"setInactive"_s);
        QCOMPARE(m_service->calls.last().arguments(), QVariantList{kId});
        m_service->press();
        settle();
        QCOMPARE(m_heard.size(), 0);
    }

    void endBeforeTheDecisionIsTheLastWord()
    {
        m_service->answers[u"setShortcut"_s] = [](const QDBusMessage &) {
            return std::optional<QVariantList>();
        };
        makeTap();
        QTRY_COMPARE(m_service->called(), kClaim);
        const QDBusMessage call = m_service->calls.last();
        m_tap.reset();
        m_service->answer(call, {QVariant::fromValue(QList{kKey})});
        QTRY_COMPARE(m_service->called(), kClaim + QStringList{u"setInactive"_s});
        settle();
        QVERIFY(m_decisions.isEmpty());
    }

    void nextTapFollowsInOrder()
    {
        makeTap();
        QTRY_COMPARE(m_decisions, QList{true});
        makeTap({kOtherKey});
        QTRY_COMPARE(m_decisions, (QList{true, true}));
        QCOMPARE(m_service->called(), kClaim + QStringList{u"setInactive"_s} + kClaim);
        m_service->press();
        QTRY_COMPARE(m_heard.size(), 1);
    }

    void serviceThatStartsAnewIsAskedAnew()
    {
        makeTap();
        QTRY_COMPARE(m_decisions, QList{true});
        m_service.reset();
        m_service.emplace();
        QTRY_COMPARE(m_service->called(), kClaim);
        // Heard once the answer to the last call has arrived.
        QTRY_VERIFY((m_service->press(), !m_heard.isEmpty()));
        QCOMPARE(m_decisions, QList{true}); // Told once.
    }

    void keyLostMeanwhileIsLogged()
    {
        makeTap();
        QTRY_COMPARE(m_decisions, QList{true});
        m_service.reset();
        m_service.emplace();
        m_service->taken = {kKey};
        CapturedOutput output;
        QTRY_COMPARE(output.lines(),
                     QStringList{u"⚠️ Global hotkey: the key belongs to Overview of KWin"_s});
        m_service->press();
        settle();
        QCOMPARE(m_heard.size(), 0);
        QCOMPARE(m_decisions, QList{true});
    }

    void othersPressesAreNotOurs()
    {
        makeTap();
        QTRY_COMPARE(m_decisions, QList{true});
        FakeBusService stranger({});
        FakeKGlobalAccel::pressBy(stranger);
        m_service->press(u"kwin"_s);
        m_service->press(kComponent, u"another"_s);
        settle();
        QCOMPARE(m_heard.size(), 0);
    }

    void changeInTheDesktopsSettingsIsLogged()
    {
        makeTap();
        QTRY_COMPARE(m_decisions, QList{true});
        CapturedOutput output;
        for (const QStringList &id : {QStringList{u"kwin"_s, u"Expose"_s}, kId})
            m_service->emitSignal(u"/kglobalaccel"_s, u"org.kde.KGlobalAccel"_s,
                                  u"yourShortcutsChanged"_s,
                                  {id, QVariant::fromValue(QList<int>{kOtherKey})});
        QTRY_COMPARE(output.lines().size(), 1);
        QVERIFY(output.lines()[0].startsWith(u"⚠️ Global hotkey: the desktop's settings"_s));
    }

    void handlerMayDestroyTheTap()
    {
        m_tap = std::make_unique<KGlobalAccelEventTap>(
            QDBusConnection::sessionBus(), kWanted, QList{kKey},
            [this](const KeyPress &) {
                m_tap.reset();
                return true;
            },
            [this](bool isHeard) { m_decisions << isHeard; });
        QTRY_COMPARE(m_decisions, QList{true});
        m_service->press();
        QTRY_VERIFY(!m_tap);
    }

    void deciderMayDestroyTheTap()
    {
        m_service->taken = {kKey};
        m_tap = std::make_unique<KGlobalAccelEventTap>(
            QDBusConnection::sessionBus(), kWanted, QList{kKey},
            [](const KeyPress &) { return true; }, [this](bool) { m_tap.reset(); });
        QTRY_VERIFY(!m_tap);
    }

private:
    void makeTap(const QList<int> &keys = {kKey})
    {
        m_tap.reset();
        m_tap = std::make_unique<KGlobalAccelEventTap>(
            QDBusConnection::sessionBus(), kWanted, keys,
            [this](const KeyPress &press) {
                m_heard << press;
                return true;
            },
            [this](bool isHeard) { m_decisions << isHeard; });
    }

    /// Until what is on its way over the bus has come.
    void settle()
    {
        const QDBusMessage call =
            QDBusMessage::createMethodCall(KGlobalAccelEventTap::kService, u"/"_s, {}, u"settle"_s);
        QDBusConnection::sessionBus().asyncCall(call);
        QTRY_VERIFY(m_service->called().contains(u"settle"_s));
        m_service->calls.removeIf(
            [](const QDBusMessage &made) { return made.member() == "settle"_L1; });
        QTest::qWait(20); // Nothing may happen.
    }

    PrivateBus m_bus;
    std::optional<FakeKGlobalAccel> m_service;
    std::unique_ptr<KGlobalAccelEventTap> m_tap;
    QList<KeyPress> m_heard;
    QList<bool> m_decisions;
};

TESSERY_TEST_MAIN(QGuiApplication, KGlobalAccelEventTapTest)
#include "KGlobalAccelEventTapTest.moc"
