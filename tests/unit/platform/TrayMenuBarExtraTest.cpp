#include "platform/linux/TrayMenuBarExtra.h"

#include "support/FakeBusService.h"
#include "support/PrivateBus.h"
#include "support/TestMain.h"

#include <QApplication>
#include <QDBusVariant>
#include <QIcon>

#include <optional>

using namespace Qt::StringLiterals;

namespace {

const QString kWatcher = u"org.kde.StatusNotifierWatcher"_s;
const QString kRegister = u"RegisterStatusNotifierItem"_s;

/// The service that knows the items and the panels.
class FakeWatcher : public FakeBusService {
public:
    FakeWatcher() : FakeBusService(kWatcher) { }

    void answerWith(bool hasHost)
    {
        answers[kRegister] = [](const QDBusMessage &) {
            return QVariantList();
        };
        answers[u"Get"_s] = [hasHost](const QDBusMessage &) {
            return QVariantList{QVariant::fromValue(QDBusVariant(hasHost))};
        };
    }

    void tellOfHost()
    {
        emitSignal(u"/StatusNotifierWatcher"_s, kWatcher, u"StatusNotifierHostRegistered"_s, {});
    }
};

} // namespace

class TrayMenuBarExtraTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        m_watcher.emplace();
    }

    void cleanup()
    {
        m_extra.reset();
        m_watcher.reset();
    }

    void panelIsThere()
    {
        m_watcher->answerWith(true);
        show();
        QTRY_COMPARE(m_extra->isShown(), true);
        QCOMPARE(m_watcher->called().count(kRegister), 1);
    }

    void panelComesAfterTheWatcher()
    {
        m_watcher->answerWith(false);
        show();
        QTRY_COMPARE(m_extra->isShown(), false);
        m_watcher->tellOfHost();
        QTRY_COMPARE(m_extra->isShown(), true);
        QCOMPARE(m_watcher->called().count(kRegister), 1);
    }

    void watcherThatCouldNotBeAskedYetIsAskedAgain()
    {
        // It has its name before it has its object.
        show();
        QTRY_COMPARE(m_extra->isShown(), false);
        m_watcher->answerWith(true);
        m_watcher->tellOfHost();
        QTRY_COMPARE(m_extra->isShown(), true);
        QCOMPARE(m_watcher->called(), QStringList({kRegister, kRegister, u"Get"_s}));
    }

private:
    void show()
    {
        m_extra.emplace();
        m_extra->show(u"Tessery"_s, QIcon(), [] {});
    }

    PrivateBus m_bus;
    std::optional<FakeWatcher> m_watcher;
    std::optional<TrayMenuBarExtra> m_extra;
};

TESSERY_TEST_MAIN(QApplication, TrayMenuBarExtraTest)
#include "TrayMenuBarExtraTest.moc"
