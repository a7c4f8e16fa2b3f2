#include "app/MenuWindow.h"

#include "app/AppState.h"
#include "app/MenuBarView.h"
#include "app/MenuEntry.h"
#include "app/MenuText.h"
#include "base/Clock.h"
#include "base/SecureRandom.h"
#include "support/FakePlatform.h"
#include "support/TestMain.h"
#include "support/ValidSettings.h"

#include <QAccessible>
#include <QApplication>
#include <QCoro/QCoroTask>
#include <QDir>
#include <QFile>
#include <QObject>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <algorithm>

using namespace Qt::StringLiterals;

class MenuWindowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(QDir(m_folder->path()).mkpath(u"Desktop"_s));
        m_platform = std::make_unique<FakePlatform>();
        m_platform->fakeFolders->homePath = m_folder->path();
        // A tool that takes its time.
        QFile tool(m_folder->filePath(u"curl"_s));
        QVERIFY(tool.open(QIODevice::WriteOnly));
        tool.write("#!/bin/sh\nexec sleep 60\n");
        tool.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
        tool.close();
        m_state = std::make_unique<AppState>(
            *m_platform,
            UploadService::Environment{.homeFolder = m_folder->path(),
                                       .temporaryFolder = m_folder->path(),
                                       .curl = tool.fileName()},
            Clock::system(), SecureRandom::system());
        m_done.clear();
        m_menu = std::make_unique<MenuBarView>(
            *m_state, *m_platform->menuBarExtra,
            MenuBarView::Actions{.openSettings = [this] { m_done << u"settings"_s; },
                                 .quit =
                                     [this] {
                                         m_done << u"quit"_s;
                                     }});
    }

    void cleanup()
    {
        m_window.reset();
        m_menu.reset();
        m_state->tasks().requestStop();
        QCoro::waitFor(m_state->tasks().drained());
        m_state.reset();
        m_platform.reset();
    }

    void hasTheMenusLinesInItsOrder()
    {
        open();
        QCOMPARE(lines(),
                 QStringList({u"Monitoring Inactive"_s, u"Ready"_s, u"Start Monitoring"_s,
                              u"Upload from Clipboard"_s, u"Settings..."_s, u"Quit"_s}));
        QList<int> tops;
        for (const QWidget *row : rows())
            tops << row->mapTo(m_window.get(), QPoint()).y();
        QVERIFY(std::ranges::is_sorted(tops));
        QCOMPARE(m_window->windowTitle(), u"Screenshot Uploader"_s);
    }

    void showsTheMenusKeys()
    {
        open();
        QCOMPARE(entry(u"Upload from Clipboard"_s)->accessibleDescription(), u"⌘⇧U"_s);
        QCOMPARE(entry(u"Settings..."_s)->accessibleDescription(), u"⌘,"_s);
        QCOMPARE(entry(u"Quit"_s)->accessibleDescription(), u"⌘Q"_s);
    }

    void enablesWhatTheMenuEnables()
    {
        open();
        QCOMPARE(enabledTexts(), QStringList({u"Settings..."_s, u"Quit"_s}));
        makeValid();
        QTRY_COMPARE(enabledTexts(),
                     QStringList({u"Start Monitoring"_s, u"Upload from Clipboard"_s,
                                  u"Settings..."_s, u"Quit"_s}));
    }

    void followsTheState()
    {
        makeValid();
        open();
        m_state->startMonitoring();
        QTRY_COMPARE(lines().first(3),
                     QStringList({u"Monitoring Active"_s, u"Monitoring for screenshots..."_s,
                                  u"Stop Monitoring"_s}));
        m_state->stopMonitoring();
        QTRY_COMPARE(lines().first(3),
                     QStringList({u"Monitoring Inactive"_s, u"Monitoring stopped"_s,
                                  u"Start Monitoring"_s}));
    }

    void keyboardStaysWhereItIsWhileTheStateChanges()
    {
        makeValid();
        open();
        QTest::keyClick(focus(), Qt::Key_Down);
        QCOMPARE(focusedText(), u"Upload from Clipboard"_s);
        m_state->startMonitoring();
        QTRY_COMPARE(lines().at(2), u"Stop Monitoring"_s);
        QCOMPARE(focusedText(), u"Upload from Clipboard"_s);
    }

    void activatedItSeesAPasswordStoredSince()
    {
        m_state->setSettings(validSettings());
        open();
        QVERIFY(!entry(u"Start Monitoring"_s)->isEnabled());
        m_platform->storePassword("x");
        QEvent activation(QEvent::WindowActivate);
        QCoreApplication::sendEvent(m_window.get(), &activation);
        QVERIFY(entry(u"Start Monitoring"_s)->isEnabled());
    }

    void arrowsAndTabGoRound_data()
    {
        QTest::addColumn<int>("forwards");
        QTest::addColumn<int>("backwards");
        QTest::newRow("arrows") << int{Qt::Key_Down} << int{Qt::Key_Up};
        QTest::newRow("tab") << int{Qt::Key_Tab} << int{Qt::Key_Backtab};
    }
    void arrowsAndTabGoRound()
    {
        QFETCH(const int, forwards);
        QFETCH(const int, backwards);
        makeValid();
        open();
        const QStringList all = {u"Start Monitoring"_s, u"Upload from Clipboard"_s,
                                 u"Settings..."_s, u"Quit"_s};
        for (const QString &text : all) {
            QCOMPARE(focusedText(), text);
            QTest::keyClick(focus(), static_cast<Qt::Key>(forwards));
        }
        QCOMPARE(focusedText(), all.first());
        QTest::keyClick(focus(), static_cast<Qt::Key>(backwards));
        QCOMPARE(focusedText(), all.last());
        QTest::keyClick(focus(), Qt::Key_Home);
        QCOMPARE(focusedText(), all.first());
        QTest::keyClick(focus(), Qt::Key_End);
        QCOMPARE(focusedText(), all.last());
    }

    void keyboardPassesOverDisabledEntries()
    {
        open();
        QCOMPARE(focusedText(), u"Settings..."_s);
        QTest::keyClick(focus(), Qt::Key_Down);
        QTest::keyClick(focus(), Qt::Key_Down);
        QCOMPARE(focusedText(), u"Settings..."_s);
    }

    void choosingClosesTheWindowAndActs_data()
    {
        QTest::addColumn<int>("key");
        QTest::newRow("return") << int{Qt::Key_Return};
        QTest::newRow("enter") << int{Qt::Key_Enter};
        QTest::newRow("space") << int{Qt::Key_Space};
    }
    void choosingClosesTheWindowAndActs()
    {
        QFETCH(const int, key);
        open();
        const QSignalSpy closed(m_window.get(), &MenuWindow::closed);
        QTest::keyClick(focus(), static_cast<Qt::Key>(key));
        QCOMPARE(m_done, QStringList(u"settings"_s));
        QCOMPARE(closed.size(), 1);
        QVERIFY(!m_window->isVisible());
    }

    void everyEntryDoesWhatItSays()
    {
        makeValid();
        const auto click = [this](const QString &text) {
            open();
            QTest::mouseClick(entry(text), Qt::LeftButton);
        };
        click(u"Start Monitoring"_s);
        QVERIFY(m_state->isMonitoring());
        click(u"Stop Monitoring"_s);
        QVERIFY(!m_state->isMonitoring());
        click(u"Upload from Clipboard"_s);
        QTRY_COMPARE(m_platform->fakeNotifications->delivered.back().title,
                     u"❌ Clipboard Empty"_s);
        click(u"Settings..."_s);
        click(u"Quit"_s);
        QCOMPARE(m_done, QStringList({u"settings"_s, u"quit"_s}));
    }

    void keysOfTheMenuWorkInTheWindow()
    {
        open();
        QTest::keyClick(m_window.get(), Qt::Key_Comma, Qt::MetaModifier);
        QTRY_COMPARE(m_done, QStringList(u"settings"_s));
        open();
        QTest::keyClick(m_window.get(), Qt::Key_Q, Qt::MetaModifier);
        QTRY_COMPARE(m_done, QStringList({u"settings"_s, u"quit"_s}));
    }

    void disabledEntryDoesNothing()
    {
        open();
        QTest::mouseClick(entry(u"Start Monitoring"_s), Qt::LeftButton);
        QVERIFY(!m_state->isMonitoring());
        QVERIFY(m_window->isVisible());
    }

    void escapeAndControlWClose()
    {
        open();
        QTest::keyClick(focus(), Qt::Key_Escape);
        QVERIFY(!m_window->isVisible());
        open();
        QTest::keyClick(m_window.get(), Qt::Key_W, Qt::ControlModifier);
        QVERIFY(!m_window->isVisible());
        QCOMPARE(m_done, QStringList());
    }

    void mouseThatMovesTakesTheKeyboardAlong()
    {
        open();
        QTest::mouseMove(entry(u"Quit"_s), QPoint(5, 5));
        QTest::mouseMove(entry(u"Quit"_s), QPoint(6, 6));
        QTRY_COMPARE(focusedText(), u"Quit"_s);
    }

    void mouseThatLiesStillChangesNothing()
    {
        open();
        QEnterEvent enter({1, 1}, {1, 1}, {1, 1});
        QCoreApplication::sendEvent(entry(u"Quit"_s), &enter);
        QCOMPARE(focusedText(), u"Settings..."_s);
    }

    void screenReadersAreToldEverything()
    {
        open();
        for (QWidget *const row : rows()) {
            const QAccessibleInterface *const told = QAccessible::queryAccessibleInterface(row);
            QVERIFY(told);
            const bool isEntry = qobject_cast<MenuEntry *>(row);
            QCOMPARE(told->role(), isEntry ? QAccessible::PushButton : QAccessible::StaticText);
            QCOMPARE(told->text(QAccessible::Name), row->accessibleName());
            QCOMPARE(!told->state().disabled, row->isEnabled());
        }
    }

    void longStatusIsShownInFull()
    {
        makeValid();
        open();
        const int before = m_window->height();
        const QString name = u"Screenshot-"_s + QString(300, u'x') + u".png"_s;
        m_platform->fakePasteboard->addresses = {QUrl::fromLocalFile(m_folder->filePath(name))};
        m_state->uploadClipboard();
        QTRY_VERIFY(lines().at(1).contains(name));
        const auto *const text = m_window->findChildren<MenuText *>().at(1);
        QVERIFY(m_window->height() > before + 2 * text->fontMetrics().height());
        QVERIFY(text->height() >= text->heightForWidth(text->width()));
        QVERIFY(m_window->width() <= 420);
    }

private:
    void open()
    {
        m_window = std::make_unique<MenuWindow>(*m_menu);
        m_window->show();
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    }

    /// The lines that are no separators, from top to bottom.
    QList<QWidget *> rows() const
    {
        QList<QWidget *> found;
        for (QWidget *const child : m_window->findChildren<QWidget *>()) {
            if (qobject_cast<MenuEntry *>(child) || qobject_cast<MenuText *>(child))
                found << child;
        }
        return found;
    }

    QStringList lines() const
    {
        QStringList texts;
        for (const QWidget *row : rows())
            texts << row->accessibleName();
        return texts;
    }

    QStringList enabledTexts() const
    {
        QStringList texts;
        for (const MenuEntry *const button : m_window->findChildren<MenuEntry *>()) {
            if (button->isEnabled())
                texts << button->text();
        }
        return texts;
    }

    MenuEntry *entry(const QString &text) const
    {
        for (MenuEntry *const button : m_window->findChildren<MenuEntry *>()) {
            if (button->text() == text)
                return button;
        }
        qFatal("there is no such entry");
        return nullptr;
    }

    QWidget *focus() const { return m_window->focusWidget(); }
    QString focusedText() const { return focus()->accessibleName(); }

    void makeValid()
    {
        m_platform->storePassword("x");
        m_state->setSettings(validSettings());
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<FakePlatform> m_platform;
    std::unique_ptr<AppState> m_state;
    std::unique_ptr<MenuBarView> m_menu;
    std::unique_ptr<MenuWindow> m_window;
    QStringList m_done;
};

TESSERY_TEST_MAIN(QApplication, MenuWindowTest)
#include "MenuWindowTest.moc"
