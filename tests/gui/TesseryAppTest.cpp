#include "app/TesseryApp.h"

#include "base/AppIdentifier.h"
#include "support/FakePlatform.h"
#include "support/TestMain.h"
#include "ui/settings/SettingsView.h"

#include <QApplication>
#include <QLineEdit>
#include <QObject>

using namespace Qt::StringLiterals;

class TesseryAppTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        m_platform = std::make_unique<FakePlatform>();
        m_app = std::make_unique<TesseryApp>(*m_platform);
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

private:
    static QList<QWidget *> windows()
    {
        QList<QWidget *> found;
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (qobject_cast<SettingsView *>(widget))
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
        QTest::ignoreMessage(QtWarningMsg, "This plugin does not support raise()");
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
