#include "gui/SettingsWindow.h"
#include "support/TestMain.h"
#include "ui/settings/SettingsPage.h"
#include "ui/settings/StatusBadge.h"
#include "ui/settings/TabButton.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QObject>
#include <QPointer>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Status = StatusBadge::Status;

class SettingsViewTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        m_window = std::make_unique<SettingsWindow>();
    }

    void cleanup() { m_window.reset(); }

    void contentHasItsFixedSize()
    {
        m_window->open();
        QCOMPARE(m_window->view->size(), QSize(480, 520));
        QCOMPARE(m_window->view->minimumSize(), m_window->view->maximumSize());
    }

    void eachTabShowsItsPage_data()
    {
        QTest::addColumn<QString>("tab");
        QTest::addColumn<QString>("title");
        QTest::addColumn<int>("index");
        QTest::addColumn<QByteArray>("page");
        QTest::newRow("server") << u"tab.server"_s << u"Server"_s << 0
                                << QByteArray("ServerSettingsContent");
        QTest::newRow("filenames")
            << u"tab.filenames"_s << u"Filenames"_s << 1 << QByteArray("FilenameSettingsContent");
        QTest::newRow("shortcuts")
            << u"tab.shortcuts"_s << u"Shortcuts"_s << 2 << QByteArray("ShortcutsSettingsContent");
        QTest::newRow("general") << u"tab.general"_s << u"General"_s << 3
                                 << QByteArray("GeneralSettingsContent");
    }
    void eachTabShowsItsPage()
    {
        QFETCH(const QString, tab);
        m_window->open();
        m_window->click(tab);
        QTEST(pageName(), "page");
        QTEST(m_window->view->selectedTab(), "index");
        QTEST(m_window->find<TabButton>(tab)->text(), "title");
        for (const TabButton *button : m_window->view->findChildren<TabButton *>())
            QCOMPARE(button->isSelected(), button->objectName() == tab);
    }

    void indexWithoutATabIsIgnored()
    {
        m_window->open();
        m_window->view->setSelectedTab(4);
        m_window->view->setSelectedTab(-1);
        QCOMPARE(m_window->view->selectedTab(), 0);
        QCOMPARE(pageName(), QByteArray("ServerSettingsContent"));
    }

    void pageIsMadeAnewWhenItsTabIsShownAgain()
    {
        m_window->open();
        const QPointer<SettingsPage> page = currentPage();
        m_window->click(u"tab.server"_s);
        QVERIFY(page);
        m_window->click(u"tab.general"_s);
        QVERIFY(!page);
    }

    void noPageScrollsSideways()
    {
        m_window->open();
        for (int tab = 0; tab < 4; ++tab) {
            m_window->view->setSelectedTab(tab);
            auto *const area = m_window->find<QScrollArea>(u"page"_s);
            QCOMPARE(area->horizontalScrollBar()->maximum(), 0);
            QVERIFY(area->widget()->minimumSizeHint().width() <= area->viewport()->width());
        }
    }

    void messageIsClassifiedByItsWords_data()
    {
        QTest::addColumn<QString>("message");
        QTest::addColumn<Status>("status");
        QTest::newRow("saved") << u"Saved!"_s << Status::success;
        QTest::newRow("OK") << u"Connection OK!"_s << Status::success;
        QTest::newRow("neither is a warning") << u"Connection failed"_s << Status::warning;
        QTest::newRow("other case") << u"saved ok"_s << Status::warning;
        QTest::newRow("both") << u"OK, Saved"_s << Status::success;
        QTest::newRow("empty") << QString() << Status::warning;
    }
    void messageIsClassifiedByItsWords()
    {
        QFETCH(const QString, message);
        QTEST(statusOfMessage(message), "status");
    }

    void invalidSettingsShowTheWarningAndDisableTesting()
    {
        m_window->open();
        QCOMPARE(badge()->message(), u"Fill required fields"_s);
        QCOMPARE(badge()->status(), Status::warning);
        QVERIFY(badge()->isVisible());
        QVERIFY(!m_window->find(u"test"_s)->isEnabled());
        QVERIFY(m_window->find(u"save"_s)->isEnabled());
    }

    void validSettingsShowNoBadgeAndEnableTesting()
    {
        m_window->fillIn();
        m_window->open();
        QVERIFY(!badge()->isVisible());
        QVERIFY(m_window->find(u"test"_s)->isEnabled());
    }

    void eachRequiredFieldIsRequired_data()
    {
        QTest::addColumn<QString>("field");
        for (const char *field : {"hostname", "username", "password", "publicURLBase"})
            QTest::newRow(field) << QString::fromLatin1(field);
    }
    void eachRequiredFieldIsRequired()
    {
        QFETCH(const QString, field);
        m_window->fillIn();
        m_window->open();
        m_window->retype(field, QString());
        QVERIFY(badge()->isVisible());
        QVERIFY(!m_window->find(u"test"_s)->isEnabled());
        m_window->retype(field, u"x"_s);
        QVERIFY(!badge()->isVisible());
        QVERIFY(m_window->find(u"test"_s)->isEnabled());
    }

    void typingInOtherFieldsDoesNotAskTheKeyring()
    {
        m_window->fillIn();
        m_window->open();
        const int reads = m_window->platform.fakeSecrets->reads;
        m_window->retype(u"hostname"_s, u"files.example.org"_s);
        QCOMPARE(m_window->platform.fakeSecrets->reads, reads);
    }

    void saveHandsTheSettingsOverAndStoresThem()
    {
        m_window->open();
        m_window->retype(u"hostname"_s, u"x.org"_s);
        QCOMPARE(m_window->state->settings().hostname, QString());
        m_window->click(u"save"_s);
        QCOMPARE(m_window->state->settings().hostname, u"x.org"_s);
        QCOMPARE(UploadSettings::load(), m_window->state->settings());
        QCOMPARE(badge()->message(), u"Saved!"_s);
        QCOMPARE(badge()->status(), Status::success);
    }

    void messageHidesTheWarningOfAnInvalidRecord()
    {
        m_window->savedMessageTime = 50ms;
        m_window->open();
        m_window->click(u"save"_s);
        QCOMPARE(badge()->message(), u"Saved!"_s);
        QTRY_COMPARE(badge()->message(), u"Fill required fields"_s);
        QVERIFY(badge()->isVisible());
    }

    void messagesStayTheirTimes()
    {
        const SettingsView::Services services{
            m_window->platform, {}, Clock::system(), SecureRandom::system()};
        QCOMPARE(services.savedMessageTime, 2s);
        QCOMPARE(services.testMessageTime, 3s);
    }

    void savedMessageGoesAfterItsTime()
    {
        m_window->savedMessageTime = 300ms;
        m_window->fillIn();
        m_window->open();
        QElapsedTimer timer;
        timer.start();
        m_window->click(u"save"_s);
        QVERIFY(badge()->isVisible());
        QTRY_VERIFY(!badge()->isVisible());
        QVERIFY(timer.elapsed() >= 285);
        QVERIFY(timer.elapsed() < 3000);
    }

    void earlierTimerClearsANewerMessage()
    {
        m_window->savedMessageTime = 1500ms;
        m_window->fillIn();
        m_window->open();
        m_window->click(u"save"_s);
        QElapsedTimer timer;
        timer.start();
        QTRY_VERIFY(timer.elapsed() >= 600);
        timer.start();
        m_window->click(u"save"_s);
        QTRY_VERIFY(!badge()->isVisible());
        QVERIFY(timer.elapsed() < 1450);
    }

    void closingWithoutSavingDropsTheEdits()
    {
        m_window->fillIn();
        m_window->open();
        m_window->retype(u"hostname"_s, u"elsewhere"_s);
        m_window->view->close();
        m_window->view->show();
        QCOMPARE(m_window->find<QLineEdit>(u"hostname"_s)->text(), u"127.0.0.1"_s);
        QCOMPARE(m_window->state->settings().hostname, u"127.0.0.1"_s);
    }

    void loginItemIsReadEachTimeTheWindowIsShown()
    {
        m_window->open();
        m_window->click(u"tab.general"_s);
        QVERIFY(!m_window->find<QAbstractButton>(u"launchAtLogin"_s)->isChecked());
        m_window->view->close();
        m_window->platform.fakeLoginItem->enabled = true;
        m_window->view->show();
        QVERIFY(m_window->find<QAbstractButton>(u"launchAtLogin"_s)->isChecked());
    }

    void keyringThatUnlocksLaterMakesTheSettingsValid()
    {
        m_window->fillIn();
        m_window->platform.fakeSecrets->items.clear();
        m_window->open();
        QVERIFY(badge()->isVisible());
        m_window->storePassword("sesame");
        m_window->platform.fakeSecrets->onChanged();
        QTRY_VERIFY(!badge()->isVisible());
        QCOMPARE(m_window->find<QLineEdit>(u"password"_s)->text(), u"sesame"_s);
    }

    void closingStoresThePassword()
    {
        m_window->open();
        const QSignalSpy closed(m_window->view.get(), &SettingsView::closed);
        m_window->retype(u"password"_s, u"sesame"_s);
        m_window->view->close();
        QCOMPARE(m_window->storedPassword(), "sesame");
        QCOMPARE(closed.size(), 1);
    }

    void destroyingStoresThePassword()
    {
        m_window->open();
        m_window->retype(u"password"_s, u"sesame"_s);
        m_window->view.reset();
        QCOMPARE(m_window->storedPassword(), "sesame");
    }

    void coloursFollowTheDesktop()
    {
        m_window->open();
        const QPalette before = QApplication::palette();
        const QImage light = m_window->view->grab().toImage();
        QApplication::setPalette(QPalette(QColor(0x20, 0x20, 0x20)));
        QTRY_VERIFY(m_window->view->palette().color(QPalette::Window) == QColor(0x20, 0x20, 0x20));
        const QImage dark = m_window->view->grab().toImage();
        QApplication::setPalette(before);
        QVERIFY(light.pixelColor(30, 100).lightness() > 200);
        QVERIFY(dark.pixelColor(30, 100).lightness() < 80);
    }

private:
    StatusBadge *badge() const { return m_window->find<StatusBadge>(u"badge"_s); }

    SettingsPage *currentPage() const
    {
        return qobject_cast<SettingsPage *>(m_window->find<QScrollArea>(u"page"_s)->widget());
    }
    QByteArray pageName() const { return currentPage()->metaObject()->className(); }

    std::unique_ptr<SettingsWindow> m_window;
};

TESSERY_TEST_MAIN(QApplication, SettingsViewTest)
#include "SettingsViewTest.moc"
