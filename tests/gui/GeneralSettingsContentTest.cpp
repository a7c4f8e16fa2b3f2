#include "ui/settings/GeneralSettingsContent.h"

#include "gui/SettingsWindow.h"
#include "support/CapturedOutput.h"
#include "support/FakeAppInfo.h"
#include "support/FakeLoginItem.h"
#include "support/FakeSystemSettings.h"
#include "support/TestMain.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QCheckBox>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

class GeneralSettingsContentTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void toggleShowsWhatItIsGivenAndActsOnNothing_data();
    void toggleShowsWhatItIsGivenAndActsOnNothing();
    void switchingOnRegistersAtOnce();
    void switchingOffUnregistersAtOnce();
    void keyboardSwitchesToo();
    void registrationThatFailsIsLoggedAndTheToggleStaysOn();
    void unregistrationThatFailsIsLoggedAndTheToggleStaysOff();
    void systemSettingsAreOpened();
    void systemSettingsThatNothingOpensAreLogged();
    void versionAndBuildAreShown();
    void fallbacksStandForWhatIsMissing();
    void textsAreAllThere();
    void everyControlHasANameAndTakesTheFocus();
    void tabKeyGoesThroughThePageToTheFooter();
    void windowKeepsTheChoiceUntilItIsReopened();
    void windowThatIsShownAgainReadsTheItemAgain();

private:
    void make(bool launchAtLogin);
    QString valueOf(const QString &name) const { return m_page->findChild<QLabel *>(name)->text(); }
    QCheckBox *toggle() const { return m_page->findChild<QCheckBox *>(u"launchAtLogin"_s); }
    QPushButton *button() const
    {
        return m_page->findChild<QPushButton *>(u"openSystemSettings"_s);
    }

    std::unique_ptr<FakeLoginItem> m_loginItem;
    std::unique_ptr<FakeSystemSettings> m_systemSettings;
    std::unique_ptr<FakeAppInfo> m_appInfo;
    std::unique_ptr<GeneralSettingsContent> m_page;
    std::unique_ptr<QSignalSpy> m_changes;
};

void GeneralSettingsContentTest::init()
{
    TestSurroundings::failOnWarnings();
    m_loginItem = std::make_unique<FakeLoginItem>();
    m_systemSettings = std::make_unique<FakeSystemSettings>();
    m_appInfo = std::make_unique<FakeAppInfo>();
}

void GeneralSettingsContentTest::cleanup()
{
    m_changes.reset();
    m_page.reset();
}

void GeneralSettingsContentTest::make(bool launchAtLogin)
{
    m_page = std::make_unique<GeneralSettingsContent>(
        launchAtLogin,
        GeneralSettingsContent::Services{*m_loginItem, *m_systemSettings, *m_appInfo});
    m_changes =
        std::make_unique<QSignalSpy>(m_page.get(), &GeneralSettingsContent::launchAtLoginChanged);
    m_page->resize(480, 400);
    m_page->show();
    QVERIFY(QTest::qWaitForWindowActive(m_page.get()));
}

void GeneralSettingsContentTest::toggleShowsWhatItIsGivenAndActsOnNothing_data()
{
    QTest::addColumn<bool>("isOn");
    QTest::newRow("on") << true;
    QTest::newRow("off") << false;
}

void GeneralSettingsContentTest::toggleShowsWhatItIsGivenAndActsOnNothing()
{
    QFETCH(const bool, isOn);
    make(isOn);
    QCOMPARE(toggle()->isChecked(), isOn);
    QCOMPARE(m_loginItem->registrations + m_loginItem->unregistrations, 0);
    QCOMPARE(m_changes->size(), 0);
}

void GeneralSettingsContentTest::switchingOnRegistersAtOnce()
{
    make(false);
    const CapturedOutput output;
    QTest::mouseClick(toggle(), Qt::LeftButton);
    QVERIFY(toggle()->isChecked());
    QVERIFY(m_loginItem->enabled);
    QCOMPARE(m_loginItem->registrations, 1);
    QCOMPARE(*m_changes, QList<QList<QVariant>>{{true}});
    QCOMPARE(output.lines(), QStringList());
}

void GeneralSettingsContentTest::switchingOffUnregistersAtOnce()
{
    m_loginItem->enabled = true;
    make(true);
    const CapturedOutput output;
    QTest::mouseClick(toggle(), Qt::LeftButton);
    QVERIFY(!toggle()->isChecked());
    QVERIFY(!m_loginItem->enabled);
    QCOMPARE(m_loginItem->unregistrations, 1);
    QCOMPARE(*m_changes, QList<QList<QVariant>>{{false}});
    QCOMPARE(output.lines(), QStringList());
}

void GeneralSettingsContentTest::keyboardSwitchesToo()
{
    make(false);
    toggle()->setFocus();
    QTest::keyClick(m_page->windowHandle(), Qt::Key_Space);
    QVERIFY(m_loginItem->enabled);
}

void GeneralSettingsContentTest::registrationThatFailsIsLoggedAndTheToggleStaysOn()
{
    m_loginItem->error = u"Could not write"_s;
    make(false);
    const CapturedOutput output;
    QTest::mouseClick(toggle(), Qt::LeftButton);
    QCOMPARE(output.lines(), QStringList(u"Failed to enable launch at login: Could not write"_s));
    QVERIFY(toggle()->isChecked());
    QCOMPARE(*m_changes, QList<QList<QVariant>>{{true}});
}

void GeneralSettingsContentTest::unregistrationThatFailsIsLoggedAndTheToggleStaysOff()
{
    m_loginItem->error = u"Could not remove"_s;
    make(true);
    const CapturedOutput output;
    QTest::mouseClick(toggle(), Qt::LeftButton);
    QCOMPARE(output.lines(), QStringList(u"Failed to disable launch at login: Could not remove"_s));
    QVERIFY(!toggle()->isChecked());
}

void GeneralSettingsContentTest::systemSettingsAreOpened()
{
    make(false);
    const CapturedOutput output;
    QTest::mouseClick(button(), Qt::LeftButton);
    QCOMPARE(m_systemSettings->opened,
             QStringList(u"x-apple.systempreferences:com.apple.preference.security?Privacy"_s));
    QCOMPARE(output.lines(), QStringList());
}

void GeneralSettingsContentTest::systemSettingsThatNothingOpensAreLogged()
{
    m_systemSettings->isThere = false;
    make(false);
    const CapturedOutput output;
    button()->setFocus();
    QTest::keyClick(m_page->windowHandle(), Qt::Key_Space);
    QCOMPARE(m_systemSettings->opened.size(), 1);
    QCOMPARE(output.lines(), QStringList(u"⚠️ Nothing on this desktop opens the system settings"_s));
}

void GeneralSettingsContentTest::versionAndBuildAreShown()
{
    make(false);
    QCOMPARE(valueOf(u"version"_s), u"2.3.4"_s);
    QCOMPARE(valueOf(u"build"_s), u"567"_s);
}

void GeneralSettingsContentTest::fallbacksStandForWhatIsMissing()
{
    m_appInfo->versionText.reset();
    m_appInfo->buildText.reset();
    make(false);
    QCOMPARE(valueOf(u"version"_s), u"1.0"_s);
    QCOMPARE(valueOf(u"build"_s), u"1"_s);
}

void GeneralSettingsContentTest::textsAreAllThere()
{
    make(false);
    QStringList texts;
    for (const QLabel *label : m_page->findChildren<QLabel *>())
        texts << label->text();
    texts.sort();
    QStringList expected = {u"Startup"_s,
                            u"Automatically start Tessery when you log in"_s,
                            u"Permissions"_s,
                            u"Accessibility"_s,
                            u"Required for global shortcuts"_s,
                            u"Notifications"_s,
                            u"For upload status alerts"_s,
                            u"About"_s,
                            u"Version"_s,
                            u"2.3.4"_s,
                            u"Build"_s,
                            u"567"_s};
    expected.sort();
    QCOMPARE(texts, expected);
    QCOMPARE(toggle()->text(), u"Launch at Login"_s);
    QCOMPARE(button()->text(), u"Open System Settings"_s);
}

void GeneralSettingsContentTest::everyControlHasANameAndTakesTheFocus()
{
    make(false);
    QCOMPARE(toggle()->accessibleName(), u"Launch at Login"_s);
    QCOMPARE(toggle()->accessibleDescription(), u"Automatically start Tessery when you log in"_s);
    QCOMPARE(button()->accessibleName(), u"Open System Settings"_s);
    toggle()->setFocus();
    QTest::keyClick(m_page->windowHandle(), Qt::Key_Tab);
    QVERIFY(button()->hasFocus());
}

void GeneralSettingsContentTest::tabKeyGoesThroughThePageToTheFooter()
{
    SettingsWindow window;
    window.open();
    window.click(u"tab.general"_s);
    window.find(u"tab.general"_s)->setFocus();
    for (const QString &name : {u"launchAtLogin"_s, u"openSystemSettings"_s, u"save"_s}) {
        QTest::keyClick(window.view->windowHandle(), Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), window.find(name));
    }
}

void GeneralSettingsContentTest::windowKeepsTheChoiceUntilItIsReopened()
{
    SettingsWindow window;
    window.platform.fakeLoginItem->error = u"Read-only file system"_s;
    window.open();
    window.click(u"tab.general"_s);
    const CapturedOutput output;
    window.click(u"launchAtLogin"_s);
    QCOMPARE(output.lines(),
             QStringList(u"Failed to enable launch at login: Read-only file system"_s));
    QVERIFY(window.find<QCheckBox>(u"launchAtLogin"_s)->isChecked());
    window.click(u"tab.server"_s);
    window.click(u"tab.general"_s);
    QVERIFY(window.find<QCheckBox>(u"launchAtLogin"_s)->isChecked());
    window.open();
    window.click(u"tab.general"_s);
    QVERIFY(!window.find<QCheckBox>(u"launchAtLogin"_s)->isChecked());
    QCOMPARE(window.platform.fakeLoginItem->registrations, 1);
    QCOMPARE(window.platform.fakeLoginItem->unregistrations, 0);
}

void GeneralSettingsContentTest::windowThatIsShownAgainReadsTheItemAgain()
{
    SettingsWindow window;
    window.open();
    window.click(u"tab.general"_s);
    QVERIFY(!window.find<QCheckBox>(u"launchAtLogin"_s)->isChecked());
    window.view->hide();
    window.platform.fakeLoginItem->enabled = true; // By somebody else, meanwhile.
    window.view->show();
    QVERIFY(window.find<QCheckBox>(u"launchAtLogin"_s)->isChecked());
    QCOMPARE(window.platform.fakeLoginItem->registrations, 0);
}

TESSERY_TEST_MAIN(QApplication, GeneralSettingsContentTest)

#include "GeneralSettingsContentTest.moc"
