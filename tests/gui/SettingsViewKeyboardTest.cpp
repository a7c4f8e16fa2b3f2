#include "gui/SettingsWindow.h"
#include "support/TestMain.h"

#include <QAccessible>
#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QObject>
#include <QScrollArea>
#include <QScrollBar>

using namespace Qt::StringLiterals;

class SettingsViewKeyboardTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        m_window = std::make_unique<SettingsWindow>();
    }

    void cleanup() { m_window.reset(); }

    void keysCloseTheWindow_data()
    {
        QTest::addColumn<Qt::Key>("key");
        QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
        QTest::newRow("Escape") << Qt::Key_Escape << Qt::KeyboardModifiers();
        QTest::newRow("Ctrl+W") << Qt::Key_W << Qt::KeyboardModifiers(Qt::ControlModifier);
    }
    void keysCloseTheWindow()
    {
        QFETCH(const Qt::Key, key);
        QFETCH(const Qt::KeyboardModifiers, modifiers);
        m_window->open();
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
        QVERIFY(!m_window->view->isVisible());
    }

    void escapeClosesTheOpenListOnly()
    {
        m_window->fillIn(UploadSettings::ServerType::ftps);
        m_window->open();
        auto *const picker = m_window->find<QComboBox>(u"tlsVersion"_s);
        picker->setFocus();
        // What a list needs on a screen with other windows.
        QTest::ignoreMessage(QtWarningMsg, "This plugin does not support raise()");
        QTest::ignoreMessage(QtWarningMsg, "This plugin does not support grabbing the keyboard");
        picker->showPopup();
        QVERIFY(picker->view()->isVisible());
        QTest::keyClick(picker->view(), Qt::Key_Escape);
        QTRY_VERIFY(!picker->view()->isVisible());
        QVERIFY(m_window->view->isVisible());
    }

    void keysStepThroughTheTabs_data()
    {
        QTest::addColumn<Qt::Key>("key");
        QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
        QTest::addColumn<QList<int>>("tabs");
        const Qt::KeyboardModifiers control = Qt::ControlModifier;
        const QList<int> onwards = {1, 2, 3, 0};
        const QList<int> backwards = {3, 2, 1, 0};
        QTest::newRow("Ctrl+Tab") << Qt::Key_Tab << control << onwards;
        QTest::newRow("Ctrl+PgDown") << Qt::Key_PageDown << control << onwards;
        QTest::newRow("Ctrl+Shift+Tab")
            << Qt::Key_Backtab << (control | Qt::ShiftModifier) << backwards;
        QTest::newRow("Ctrl+PgUp") << Qt::Key_PageUp << control << backwards;
    }
    void keysStepThroughTheTabs()
    {
        QFETCH(const Qt::Key, key);
        QFETCH(const Qt::KeyboardModifiers, modifiers);
        QFETCH(const QList<int>, tabs);
        m_window->open();
        for (const int tab : tabs) {
            QTest::keyClick(QApplication::focusWidget(), key, modifiers);
            QCOMPARE(m_window->view->selectedTab(), tab);
        }
    }

    void arrowsStepThroughTheTabs()
    {
        m_window->open();
        m_window->find(u"tab.server"_s)->setFocus();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
        QCOMPARE(m_window->view->selectedTab(), 1);
        QCOMPARE(QApplication::focusWidget(), m_window->find(u"tab.filenames"_s));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Left);
        QCOMPARE(m_window->view->selectedTab(), 0);
    }

    void tabKeyGoesInReadingOrder()
    {
        m_window->fillIn(UploadSettings::ServerType::ftps);
        m_window->open();
        m_window->find(u"tab.server"_s)->setFocus();
        const QStringList expected = {u"tab.server"_s,    u"protocol.ftps"_s,
                                      u"hostname"_s,      u"port"_s,
                                      u"passiveMode"_s,   u"username"_s,
                                      u"password"_s,      u"remotePath"_s,
                                      u"publicURLBase"_s, u"allowInsecureCertificates"_s,
                                      u"tlsVersion"_s,    u"test"_s,
                                      u"save"_s};
        QCOMPARE(tabOrder(static_cast<int>(expected.size())), expected);
        // The page was made after the footer when it is shown again.
        m_window->click(u"tab.filenames"_s);
        m_window->click(u"tab.server"_s);
        m_window->find(u"tab.server"_s)->setFocus();
        QCOMPARE(tabOrder(static_cast<int>(expected.size())), expected);
    }

    void pageKeysScroll()
    {
        m_window->fillIn(UploadSettings::ServerType::ftps);
        m_window->open();
        const QScrollBar *const bar = m_window->find<QScrollArea>(u"page"_s)->verticalScrollBar();
        QTRY_VERIFY(bar->maximum() > 0);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_PageDown);
        QVERIFY(bar->value() > 0);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_PageUp);
        QCOMPARE(bar->value(), 0);
    }

    void keyboardBeginsInTheFirstField()
    {
        m_window->open();
        QCOMPARE(QApplication::focusWidget(), m_window->find(u"hostname"_s));
    }

    void returnInAFieldPressesNothing()
    {
        m_window->fillIn();
        m_window->open();
        m_window->retype(u"hostname"_s, u"x.org"_s);
        QTest::keyClick(m_window->find(u"hostname"_s), Qt::Key_Return);
        QCOMPARE(m_window->state->settings().hostname, u"127.0.0.1"_s);
        QCOMPARE(m_window->state->tasks().running(), 0);
        QVERIFY(m_window->view->isVisible());
    }

    void screenReadersAreToldEveryControl()
    {
        m_window->fillIn(UploadSettings::ServerType::ftps);
        m_window->open();
        for (int tab = 0; tab < 4; ++tab) {
            m_window->view->setSelectedTab(tab);
            for (QWidget *control : m_window->view->findChildren<QWidget *>()) {
                if (!control->isVisible() || control->focusPolicy() == Qt::NoFocus)
                    continue;
                QAccessibleInterface *const face = QAccessible::queryAccessibleInterface(control);
                QVERIFY2(!face->text(QAccessible::Name).isEmpty(),
                         qPrintable(control->objectName()));
                QVERIFY2(face->role() != QAccessible::Client, qPrintable(control->objectName()));
            }
        }
    }

    void tabsAreTabsToScreenReaders()
    {
        m_window->open();
        QAccessibleInterface *const tab =
            QAccessible::queryAccessibleInterface(m_window->find(u"tab.general"_s));
        QCOMPARE(tab->role(), QAccessible::PageTab);
        QVERIFY(!tab->state().selected);
        QAccessibleActionInterface *const action = tab->actionInterface();
        QVERIFY(action);
        action->doAction(QAccessibleActionInterface::pressAction());
        QCOMPARE(m_window->view->selectedTab(), 3);
        QVERIFY(tab->state().selected);
    }

private:
    /// The object names from the focus on, as the Tab key steps through them.
    static QStringList tabOrder(int count)
    {
        QStringList names;
        for (int step = 0; step < count; ++step) {
            names << QApplication::focusWidget()->objectName();
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        }
        return names;
    }

    std::unique_ptr<SettingsWindow> m_window;
};

TESSERY_TEST_MAIN(QApplication, SettingsViewKeyboardTest)
#include "SettingsViewKeyboardTest.moc"
