#include "gui/SettingsWindow.h"
#include "support/TestMain.h"
#include "ui/settings/SettingsCard.h"
#include "ui/settings/StyledTextField.h"

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QObject>

using namespace Qt::StringLiterals;
using ServerType = UploadSettings::ServerType;

class ServerSettingsContentTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        m_window = std::make_unique<SettingsWindow>();
    }

    void cleanup() { m_window.reset(); }

    void protocolDecidesWhatIsShown_data()
    {
        QTest::addColumn<QString>("protocol");
        QTest::addColumn<QStringList>("cards");
        QTest::addColumn<bool>("hasPassiveMode");
        const QStringList always = {u"Connection"_s, u"Authentication"_s, u"Paths"_s};
        QTest::newRow("ftp") << u"protocol.ftp"_s << always << true;
        QTest::newRow("ftps") << u"protocol.ftps"_s << (always + QStringList(u"TLS Options"_s))
                              << true;
        QTest::newRow("sftp") << u"protocol.sftp"_s << always << false;
    }
    void protocolDecidesWhatIsShown()
    {
        QFETCH(const QString, protocol);
        m_window->open();
        m_window->click(u"protocol.ftps"_s);
        m_window->click(protocol);
        QTEST(visibleCards(), "cards");
        QTEST(m_window->find(u"passiveMode"_s)->isVisible(), "hasPassiveMode");
    }

    void hidingOptionsKeepsTheirValues()
    {
        m_window->open();
        m_window->click(u"protocol.ftps"_s);
        m_window->click(u"passiveMode"_s);
        m_window->click(u"allowInsecureCertificates"_s);
        m_window->click(u"protocol.sftp"_s);
        QCOMPARE(saved().usePassiveMode, false);
        QCOMPARE(saved().allowInsecureCertificates, false);
        m_window->click(u"protocol.ftps"_s);
        QVERIFY(!m_window->find<QAbstractButton>(u"passiveMode"_s)->isChecked());
        QVERIFY(!m_window->find<QAbstractButton>(u"allowInsecureCertificates"_s)->isChecked());
    }

    void protocolsAreNamedAndChosenByMouseAndKeyboard()
    {
        m_window->open();
        QCOMPARE(button(u"protocol.ftp"_s)->text(), u"FTP"_s);
        QCOMPARE(button(u"protocol.ftps"_s)->text(), u"FTPS (FTP with TLS)"_s);
        QCOMPARE(button(u"protocol.sftp"_s)->text(), u"SFTP"_s);
        QVERIFY(button(u"protocol.sftp"_s)->isChecked());
        m_window->click(u"protocol.ftp"_s);
        QCOMPARE(saved().serverType, ServerType::ftp);
        button(u"protocol.ftp"_s)->setFocus();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
        QCOMPARE(saved().serverType, ServerType::ftps);
        QVERIFY(button(u"protocol.ftps"_s)->isChecked());
    }

    void firstSwitchBringsThePortAndLaterOnesKeepIt()
    {
        m_window->open();
        QCOMPARE(text(u"port"_s), u"22"_s);
        m_window->click(u"protocol.ftp"_s);
        QCOMPARE(text(u"port"_s), u"21"_s);
        m_window->click(u"protocol.ftps"_s);
        QCOMPARE(text(u"port"_s), u"21"_s);
    }

    void switchToFTPSBringsItsPort()
    {
        m_window->open();
        m_window->click(u"protocol.ftps"_s);
        QCOMPARE(text(u"port"_s), u"990"_s);
    }

    void typedPortStays()
    {
        m_window->open();
        m_window->retype(u"port"_s, u"2222"_s);
        m_window->click(u"protocol.ftp"_s);
        QCOMPARE(text(u"port"_s), u"2222"_s);
        QCOMPARE(saved().port, 2222);
    }

    void savedPortStays()
    {
        UploadSettings settings;
        settings.port = 2200;
        m_window->state->setSettings(settings);
        m_window->open();
        QCOMPARE(text(u"port"_s), u"2200"_s);
        m_window->click(u"protocol.ftp"_s);
        QCOMPARE(text(u"port"_s), u"2200"_s);
    }

    void showingTheWindowAgainForgetsTheTypedPort()
    {
        m_window->open();
        m_window->retype(u"port"_s, u"2222"_s);
        m_window->view->close();
        m_window->view->show();
        QCOMPARE(text(u"port"_s), u"22"_s);
        m_window->click(u"protocol.ftp"_s);
        QCOMPARE(text(u"port"_s), u"21"_s);
    }

    void portThatIsNoneIsNeitherSavedNorKept()
    {
        m_window->open();
        m_window->retype(u"port"_s, u"70000"_s);
        QCOMPARE(saved().port, 22);
        m_window->find(u"hostname"_s)->setFocus();
        QCOMPARE(text(u"port"_s), u"22"_s);
    }

    void addressAsHostKeepsTheHostOnly()
    {
        m_window->open();
        QApplication::clipboard()->setText(u"sftp://me@files.x.org:2222/a/b"_s);
        m_window->find(u"hostname"_s)->setFocus();
        QTest::keyClick(m_window->find(u"hostname"_s), Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(text(u"hostname"_s), u"files.x.org"_s);
        QCOMPARE(text(u"port"_s), u"22"_s);
        QCOMPARE(saved().hostname, u"files.x.org"_s);
    }

    void addressTypedKeyByKeyKeepsTheHostOnly()
    {
        m_window->open();
        m_window->retype(u"hostname"_s, u"https://me@files.x.org:8443/a/b"_s);
        QCOMPARE(saved().hostname, u"files.x.org"_s);
        QTest::keyClick(m_window->find(u"hostname"_s), Qt::Key_Tab);
        QCOMPARE(text(u"hostname"_s), u"files.x.org"_s);
        QCOMPARE(text(u"port"_s), u"22"_s);
    }

    void addressPastedAgainKeepsTheHostOnly()
    {
        m_window->open();
        QApplication::clipboard()->setText(u"ftp://files.x.org/a"_s);
        m_window->find(u"hostname"_s)->setFocus();
        for (int time = 0; time < 2; ++time) {
            QTest::keyClick(m_window->find(u"hostname"_s), Qt::Key_A, Qt::ControlModifier);
            QTest::keyClick(m_window->find(u"hostname"_s), Qt::Key_V, Qt::ControlModifier);
            QCOMPARE(text(u"hostname"_s), u"files.x.org"_s);
        }
    }

    void separatorAloneStaysAsTyped()
    {
        m_window->open();
        m_window->retype(u"hostname"_s, u"://"_s);
        QCOMPARE(text(u"hostname"_s), u"://"_s);
        QCOMPARE(saved().hostname, u"://"_s);
    }

    void typingInTheMiddleKeepsTheCursor()
    {
        m_window->open();
        auto *const field = m_window->find<QLineEdit>(u"hostname"_s);
        m_window->retype(u"hostname"_s, u"xorg"_s);
        field->setCursorPosition(1);
        QTest::keyClicks(field, u"."_s);
        QCOMPARE(field->text(), u"x.org"_s);
        QCOMPARE(field->cursorPosition(), 2);
    }

    void fieldsEditTheirSettings()
    {
        m_window->open();
        m_window->retype(u"username"_s, u"anna"_s);
        m_window->retype(u"remotePath"_s, u"/shots"_s);
        m_window->retype(u"publicURLBase"_s, u"https://x.org/"_s);
        const UploadSettings settings = saved();
        QCOMPARE(settings.username, u"anna"_s);
        QCOMPARE(settings.remotePath, u"/shots"_s);
        QCOMPARE(settings.publicURLBase, u"https://x.org/"_s);
    }

    void hintFollowsThePublicAddress()
    {
        m_window->open();
        QVERIFY(visibleTexts().contains(u"Server directory for uploads"_s));
        QVERIFY(visibleTexts().contains(u"URL where files will be accessible"_s));
        m_window->retype(u"publicURLBase"_s, u"h"_s);
        QVERIFY(visibleTexts().contains(u"e.g. h/file.png"_s));
        QVERIFY(!visibleTexts().contains(u"URL where files will be accessible"_s));
        m_window->retype(u"publicURLBase"_s, u"https://x.org/"_s);
        QVERIFY(visibleTexts().contains(u"e.g. https://x.org//file.png"_s));
        m_window->retype(u"publicURLBase"_s, QString());
        QVERIFY(visibleTexts().contains(u"URL where files will be accessible"_s));
    }

    void textsThatLookLikeMarkupAreShownAsTheyAre()
    {
        m_window->open();
        m_window->retype(u"publicURLBase"_s, u"<b>x</b>"_s);
        int shown = 0;
        for (const QLabel *label : m_window->view->findChildren<QLabel *>()) {
            if (!label->text().contains(u"<b>"_s))
                continue;
            ++shown;
            QCOMPARE(label->textFormat(), Qt::PlainText);
        }
        QCOMPARE(shown, 1); // The hint.
    }

    void tlsVersionsAreOfferedInOrder()
    {
        m_window->open();
        m_window->click(u"protocol.ftps"_s);
        auto *const picker = m_window->find<QComboBox>(u"tlsVersion"_s);
        QStringList texts;
        for (int index = 0; index < picker->count(); ++index)
            texts << picker->itemText(index);
        QCOMPARE(texts,
                 QStringList({u"TLS 1.0"_s, u"TLS 1.1"_s, u"TLS 1.2"_s, u"TLS 1.3"_s, u"Auto"_s}));
        QCOMPARE(picker->currentText(), u"TLS 1.2"_s);
        QCOMPARE(picker->width(), 100);
        picker->setFocus();
        QTest::keyClick(picker, Qt::Key_Down);
        QCOMPARE(saved().tlsVersion, UploadSettings::TLSVersion::v1_3);
    }

    void passwordIsStoredWithoutSaving()
    {
        m_window->open();
        m_window->retype(u"password"_s, u"sesame"_s);
        QTRY_COMPARE(m_window->storedPassword(), "sesame");
    }

    void savingStoresThePasswordAtOnce()
    {
        m_window->open();
        m_window->retype(u"password"_s, u"sesame"_s);
        m_window->press(u"save"_s);
        QCOMPARE(m_window->storedPassword(), "sesame");
    }

    void showingAnotherTabKeepsThePassword()
    {
        m_window->open();
        m_window->retype(u"password"_s, u"sesame"_s);
        m_window->click(u"tab.general"_s);
        m_window->click(u"tab.server"_s);
        QCOMPARE(text(u"password"_s), u"sesame"_s);
        QTRY_COMPARE(m_window->storedPassword(), "sesame");
    }

    void passwordShowsDotsAndGivesNothingAway()
    {
        m_window->storePassword("sesame");
        m_window->open();
        auto *const field = m_window->find<QLineEdit>(u"password"_s);
        QCOMPARE(field->echoMode(), QLineEdit::Password);
        QVERIFY(!field->displayText().contains(u's'));
        QVERIFY(field->inputMethodHints().testFlag(Qt::ImhSensitiveData));
        QVERIFY(field->inputMethodHints().testFlag(Qt::ImhHiddenText));
        QVERIFY(field->inputMethodHints().testFlag(Qt::ImhNoPredictiveText));
        QVERIFY(!field->dragEnabled());
        QApplication::clipboard()->setText(u"before"_s);
        field->setFocus();
        field->selectAll();
        QTest::keyClick(field, Qt::Key_C, Qt::ControlModifier);
        QTest::keyClick(field, Qt::Key_X, Qt::ControlModifier);
        QCOMPARE(QApplication::clipboard()->text(), u"before"_s);
        QCOMPARE(field->text(), u"sesame"_s);
    }

    void passwordHasNoHistoryOfChanges()
    {
        m_window->storePassword("sesame");
        m_window->open();
        auto *const field = m_window->find<QLineEdit>(u"password"_s);
        field->setFocus();
        field->setCursorPosition(3);
        QTest::keyClicks(field, u"12"_s);
        QCOMPARE(field->text(), u"ses12ame"_s);
        QCOMPARE(field->cursorPosition(), 5);
        QVERIFY(!field->isUndoAvailable());
        QTest::keyClick(field, Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(field->text(), u"ses12ame"_s);
    }

    void lockedKeyringShowsInTheFieldUntilItIsUnlocked()
    {
        m_window->storePassword("sesame");
        m_window->platform.fakeSecrets->isShut = true;
        m_window->open();
        auto *const field = m_window->find<QLineEdit>(u"password"_s);
        QVERIFY(field->toolTip().contains(u"locked"_s));
        QCOMPARE(field->accessibleDescription(), field->toolTip());
        m_window->platform.fakeSecrets->isShut = false;
        m_window->platform.fakeSecrets->onChanged();
        QTRY_COMPARE(field->text(), u"sesame"_s);
        QVERIFY(field->toolTip().isEmpty());
    }

    void refusedPasswordShowsInTheField()
    {
        m_window->platform.fakeSecrets->isWritable = false;
        m_window->open();
        m_window->retype(u"password"_s, u"sesame"_s);
        auto *const field = m_window->find<QLineEdit>(u"password"_s);
        QTRY_VERIFY(!field->toolTip().isEmpty());
        QCOMPARE(field->accessibleDescription(), field->toolTip());
        QCOMPARE(field->text(), u"sesame"_s);
        m_window->platform.fakeSecrets->isWritable = true;
        QTest::keyClicks(field, u"!"_s);
        QTRY_COMPARE(m_window->storedPassword(), "sesame!");
        QVERIFY(field->toolTip().isEmpty());
    }

    void drawingEditsNothing()
    {
        UploadSettings settings;
        settings.serverType = ServerType::ftps;
        settings.hostname = u" x.org"_s;
        settings.port = 0;
        settings.remotePath = u"a\tb"_s;
        settings.tlsVersion = UploadSettings::TLSVersion::automatic;
        settings.randomFilenameConfig.length = -5;
        m_window->state->setSettings(settings);
        m_window->open();
        for (const QString &tab :
             {u"tab.filenames"_s, u"tab.shortcuts"_s, u"tab.general"_s, u"tab.server"_s})
            m_window->click(tab);
        QCOMPARE(saved(), settings);
    }

private:
    QString text(const QString &field) const { return m_window->find<QLineEdit>(field)->text(); }
    QAbstractButton *button(const QString &name) const
    {
        return m_window->find<QAbstractButton>(name);
    }

    QStringList visibleCards() const
    {
        QStringList titles;
        for (const SettingsCard *card : m_window->view->findChildren<SettingsCard *>()) {
            if (card->isVisible())
                titles << card->accessibleName();
        }
        return titles;
    }

    QStringList visibleTexts() const
    {
        QStringList texts;
        for (const QLabel *label : m_window->view->findChildren<QLabel *>()) {
            if (label->isVisible())
                texts << label->text();
        }
        return texts;
    }

    /// The settings in force after the Save button was pressed.
    UploadSettings saved() const
    {
        m_window->click(u"save"_s);
        return m_window->state->settings();
    }

    std::unique_ptr<SettingsWindow> m_window;
};

TESSERY_TEST_MAIN(QApplication, ServerSettingsContentTest)
#include "ServerSettingsContentTest.moc"
