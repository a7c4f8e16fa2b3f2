#include "app/TesseryApp.h"

#include "app/MenuWindow.h"
#include "base/AppIdentifier.h"
#include "support/CapturedOutput.h"
#include "support/FakePlatform.h"
#include "support/TestMain.h"
#include "ui/settings/SettingsView.h"

#include <QApplication>
#include <QCloseEvent>
#include <QLineEdit>
#include <QObject>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class TesseryAppTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        makeApp();
    }

    void cleanup()
    {
        m_app.reset();
        m_platform.reset();
    }

    void noSettingsWindowUntilItIsAskedFor() { QCOMPARE(windows().size(), 0); }

    void menuOpensTheSettingsWindowOnce()
    {
        openSettings();
        QCOMPARE(windows().size(), 1);
        QVERIFY(windows().constFirst()->isVisible());
        openSettings();
        QCOMPARE(windows().size(), 1);
    }

    void openingAgainKeepsWhatIsBeingEdited()
    {
        openSettings();
        QTest::keyClicks(field(u"hostname"_s), u"x.org"_s);
        openSettings();
        QCOMPARE(field(u"hostname"_s)->text(), u"x.org"_s);
    }

    void closedWindowIsGivenBack()
    {
        openSettings();
        windows().constFirst()->close();
        QTRY_COMPARE(windows().size(), 0);
    }

    void windowThatIsClosedTwiceAtOnceIsGivenBackOnce_data()
    {
        QTest::addColumn<bool>("hasTray");
        QTest::newRow("settings") << true;
        QTest::newRow("menu") << false;
    }
    void windowThatIsClosedTwiceAtOnceIsGivenBackOnce()
    {
        QFETCH(const bool, hasTray);
        m_platform->fakeMenuBarExtra->setShown(hasTray);
        activate();
        QWidget *const window = (windows() + windowsOf<MenuWindow>()).constFirst();
        // As two clicks on the frame's button do that arrive together.
        window->close();
        QCloseEvent again;
        QApplication::sendEvent(window, &again);
        QTRY_COMPARE((windows() + windowsOf<MenuWindow>()).size(), 0);
    }

    void windowOpenedAfterClosingBeginsAfresh()
    {
        openSettings();
        QTest::keyClicks(field(u"hostname"_s), u"x.org"_s);
        windows().constFirst()->close();
        openSettings();
        QTRY_COMPARE(windows().size(), 1);
        QCOMPARE(field(u"hostname"_s)->text(), QString());
    }

    void quittingWithTheWindowOpenStoresThePassword()
    {
        openSettings();
        QTest::keyClicks(field(u"password"_s), u"sesame"_s);
        m_app.reset();
        QCOMPARE((m_platform->fakeSecrets->items[{kAppIdentifier, u"serverPassword"_s}]), "sesame");
        QCOMPARE(windows().size(), 0);
    }

    void startedAgainWithATrayOpensTheSettings()
    {
        activate(u"token"_s);
        QCOMPARE(windows().size(), 1);
        QCOMPARE(windowsOf<MenuWindow>().size(), 0);
        activate(u"other"_s);
        QCOMPARE(windows().size(), 1);
        QCOMPARE(m_platform->fakeRemoteControl->tokens, QStringList({u"token"_s, u"other"_s}));
    }

    void startedAgainItShowsAMinimisedWindow()
    {
        activate();
        windows().constFirst()->showMinimized();
        activate();
        QVERIFY(!windows().constFirst()->isMinimized());
        QVERIFY(windows().constFirst()->isVisible());
    }

    void startedAgainWithoutATrayOpensTheMenu()
    {
        m_platform->fakeMenuBarExtra->setShown(false);
        activate(u"token"_s);
        QCOMPARE(windowsOf<MenuWindow>().size(), 1);
        QCOMPARE(windows().size(), 0);
        activate();
        QCOMPARE(windowsOf<MenuWindow>().size(), 1);
        QCOMPARE(m_platform->fakeRemoteControl->tokens, QStringList({u"token"_s, QString()}));
        windowsOf<MenuWindow>().constFirst()->close();
        QTRY_COMPARE(windowsOf<MenuWindow>().size(), 0);
    }

    void trayThatLeavesTheMenuToUsOpensTheMenu()
    {
        m_platform->fakeMenuBarExtra->setShown(true);
        QTest::ignoreMessage(QtWarningMsg, kNoRaise);
        m_platform->fakeMenuBarExtra->openMenuWindow();
        QCOMPARE(windowsOf<MenuWindow>().size(), 1);
    }

    void trayThatComesLaterIsSeenAtTheNextStart()
    {
        m_platform->fakeMenuBarExtra->setShown(false);
        activate();
        m_platform->fakeMenuBarExtra->setShown(true);
        QCOMPARE(windowsOf<MenuWindow>().size(), 1); // It stays until it is closed.
        activate();
        QCOMPARE(windows().size(), 1);
    }

    void startedAgainAtOnceItWaitsForTheTrayToBeKnown_data()
    {
        QTest::addColumn<bool>("hasTray");
        QTest::newRow("tray") << true;
        QTest::newRow("no tray") << false;
    }
    void startedAgainAtOnceItWaitsForTheTrayToBeKnown()
    {
        QFETCH(const bool, hasTray);
        makeApp(std::nullopt);
        activate();
        QCOMPARE(windows().size() + windowsOf<MenuWindow>().size(), 0);
        QTest::ignoreMessage(QtWarningMsg, kNoRaise);
        m_platform->fakeMenuBarExtra->setShown(hasTray);
        QCOMPARE(windows().size(), hasTray ? 1 : 0);
        QCOMPARE(windowsOf<MenuWindow>().size(), hasTray ? 0 : 1);
    }

    void desktopThatNeverSaysHasNoTray()
    {
        makeApp(std::nullopt, 1ms);
        activate();
        QTest::ignoreMessage(QtWarningMsg, kNoRaise);
        QTRY_COMPARE(windowsOf<MenuWindow>().size(), 1);
    }

    void missingTrayIsOneLineAndNoWindow()
    {
        const CapturedOutput output;
        makeApp(false, 1ms);
        const QString line =
            u"⚠️ No tray to show the menu in: start Tessery again to see it in a window"_s;
        QTRY_COMPARE(output.lines().count(line), 1);
        QTest::qWait(20); // Nothing may happen.
        QCOMPARE(output.lines().count(line), 1);
        QCOMPARE(windowsOf<MenuWindow>().size(), 0);
    }

    void trayThatIsThereIsNoLine()
    {
        const CapturedOutput output;
        makeApp(true, 1ms);
        QTest::qWait(20); // Nothing may happen.
        QVERIFY(!output.bytes().contains("No tray"));
    }

    void actionsWithoutSettingsTellWhatIsMissing_data()
    {
        QTest::addColumn<QString>("action");
        QTest::addColumn<QStringList>("lines");
        QTest::newRow("start") << u"start-monitoring"_s
                               << QStringList(
                                      u"⚠️ Ignored start-monitoring: the settings are not valid"_s);
        QTest::newRow("upload") << u"upload-clipboard"_s
                                << QStringList({u"📋 Upload clipboard triggered"_s,
                                                u"❌ Settings not valid"_s});
    }
    void actionsWithoutSettingsTellWhatIsMissing()
    {
        QFETCH(const QString, action);
        const CapturedOutput output;
        perform(*RemoteActions::named(action));
        QTEST(output.lines(), "lines");
        const auto &told = m_platform->fakeNotifications->delivered;
        QCOMPARE(told.size(), 1U);
        QCOMPARE(told.at(0).title, u"Upload Error"_s);
        QCOMPARE(told.at(0).body, u"Please configure server settings first"_s);
        QCOMPARE(told.at(0).sound, UserNotification::Sound::Critical);
        QCOMPARE(m_platform->watchersMade, 0);
    }

    void nothingToStopIsALineAlone()
    {
        const CapturedOutput output;
        perform(RemoteAction::StopMonitoring);
        QCOMPARE(output.lines(), QStringList(u"⚠️ Ignored stop-monitoring: not monitoring"_s));
        QVERIFY(m_platform->fakeNotifications->delivered.empty());
    }

    void settingsActionOpensTheWindowWithItsToken()
    {
        QTest::ignoreMessage(QtWarningMsg, kNoRaise);
        perform(RemoteAction::Settings, u"token"_s);
        QCOMPARE(windows().size(), 1);
        QCOMPARE(m_platform->fakeRemoteControl->tokens, QStringList(u"token"_s));
    }

    void quitActionEndsTheProgramAndItsAnswers()
    {
        QTimer::singleShot(0, this, [this] { perform(RemoteAction::Quit); });
        QCOMPARE(m_app->run(), 0);
        QVERIFY(m_platform->fakeRemoteControl->isClosed);
    }

private:
    static constexpr const char *kNoRaise = "This plugin does not support raise()";

    void makeApp(std::optional<bool> hasTray = true, std::chrono::milliseconds patience = 5s)
    {
        m_app.reset();
        m_platform.reset(); // One at a time.
        m_platform = std::make_unique<FakePlatform>();
        m_platform->fakeMenuBarExtra->shown = hasTray;
        m_app = std::make_unique<TesseryApp>(*m_platform, patience);
    }

    void activate(const QString &token = {}) const
    {
        if (m_platform->fakeMenuBarExtra->shown)
            QTest::ignoreMessage(QtWarningMsg, kNoRaise);
        m_platform->fakeRemoteControl->handlers.activate(token);
    }

    void perform(RemoteAction action, const QString &token = {}) const
    {
        m_platform->fakeRemoteControl->handlers.perform(action, token);
    }

    static QList<QWidget *> windows() { return windowsOf<SettingsView>(); }

    template <typename Window>
    static QList<QWidget *> windowsOf()
    {
        QList<QWidget *> found;
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (qobject_cast<Window *>(widget))
                found << widget;
        }
        return found;
    }

    static QLineEdit *field(const QString &name)
    {
        return windows().constFirst()->findChild<QLineEdit *>(name);
    }

    void openSettings() const
    {
        // There is no other window on this screen that it could be raised above.
        QTest::ignoreMessage(QtWarningMsg, kNoRaise);
        for (const MenuItem &item : m_platform->fakeMenuBarExtra->items) {
            if (item.text == u"Settings..."_s) {
                item.action();
                return;
            }
        }
        QFAIL("the menu has no settings");
    }

    std::unique_ptr<FakePlatform> m_platform;
    std::unique_ptr<TesseryApp> m_app;
};

TESSERY_TEST_MAIN(QApplication, TesseryAppTest)
#include "TesseryAppTest.moc"
