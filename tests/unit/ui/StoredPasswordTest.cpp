#include "ui/settings/StoredPassword.h"

#include "base/AppIdentifier.h"
#include "support/FakePlatform.h"
#include "support/TestMain.h"

#include <QElapsedTimer>
#include <QObject>
#include <QSignalSpy>

using namespace Qt::StringLiterals;

class StoredPasswordTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        m_platform = std::make_unique<FakePlatform>();
    }

    void cleanup() { m_platform.reset(); }

    void nothingStoredIsEmpty()
    {
        StoredPassword password;
        password.refresh();
        QCOMPARE(password.text(), QString());
        QVERIFY(!password.isFilledIn());
        QVERIFY(!password.isRefused());
    }

    void showsWhatIsStored()
    {
        store("sesame");
        StoredPassword password;
        password.refresh();
        QCOMPARE(password.text(), u"sesame"_s);
        QVERIFY(password.isFilledIn());
    }

    void lastTextIsStoredWithinTheGatheringTime()
    {
        StoredPassword password;
        QElapsedTimer timer;
        timer.start();
        password.setText(u"s"_s);
        password.setText(u"se"_s);
        QVERIFY(password.isFilledIn());
        QTRY_COMPARE(stored(), "se");
        QVERIFY(timer.elapsed() < (StoredPassword::kGatheringTime * 3).count());
    }

    void typingOnDoesNotPutTheStoringOff()
    {
        StoredPassword password;
        QElapsedTimer timer;
        timer.start();
        QTimer typing;
        QString text;
        connect(&typing, &QTimer::timeout, &password, [&] {
            text += u'x';
            password.setText(text);
        });
        typing.start(20);
        QTRY_VERIFY(!stored().isEmpty());
        QVERIFY(timer.elapsed() < (StoredPassword::kGatheringTime * 3).count());
    }

    void flushStoresAtOnce()
    {
        StoredPassword password;
        password.setText(u"sesame"_s);
        QVERIFY(password.flush());
        QCOMPARE(stored(), "sesame");
    }

    void flushWithNothingNewAsksNobody()
    {
        store("sesame");
        StoredPassword password;
        password.refresh();
        m_platform->fakeSecrets->isWritable = false;
        QVERIFY(password.flush());
    }

    void destroyingStoresWhatWasTyped()
    {
        {
            StoredPassword password;
            password.setText(u"sesame"_s);
        }
        QCOMPARE(stored(), "sesame");
    }

    void clearedTextIsStoredAsEmpty()
    {
        store("sesame");
        StoredPassword password;
        password.refresh();
        password.setText(QString());
        QVERIFY(!password.isFilledIn());
        password.flush();
        QCOMPARE(m_platform->fakeSecrets->items.size(), std::size_t(1));
        QCOMPARE(stored(), "");
    }

    void refusalIsToldAndDoesNotCountAsFilledIn()
    {
        m_platform->fakeSecrets->isWritable = false;
        StoredPassword password;
        password.setText(u"sesame"_s);
        const QSignalSpy changes(&password, &StoredPassword::changed);
        QVERIFY(!password.flush());
        QVERIFY(password.isRefused());
        QVERIFY(!password.isFilledIn());
        QCOMPARE(password.text(), u"sesame"_s);
        QCOMPARE(changes.size(), 1);
    }

    void textThatIsNoUnicodeIsRefused()
    {
        StoredPassword password;
        password.setText(QString(QChar(0xd800)));
        QVERIFY(!password.flush());
        QVERIFY(password.isRefused());
    }

    void typingOnAfterARefusalTriesAgain()
    {
        m_platform->fakeSecrets->isWritable = false;
        StoredPassword password;
        password.setText(u"s"_s);
        password.flush();
        m_platform->fakeSecrets->isWritable = true;
        password.setText(u"se"_s);
        QVERIFY(!password.isRefused());
        QTRY_COMPARE(stored(), "se");
    }

    void keyringThatRefusedIsNotAskedAgainBeforeAPause()
    {
        m_platform->fakeSecrets->isWritable = false;
        StoredPassword password;
        password.setText(u"s"_s);
        password.flush();
        QElapsedTimer timer;
        timer.start();
        password.setText(u"se"_s);
        QTRY_VERIFY(password.isRefused());
        QVERIFY(timer.elapsed() >= (StoredPassword::kPauseAfterRefusal * 9 / 10).count());
    }

    void refusedTextIsNotTriedAgainOnTheWayOut()
    {
        m_platform->fakeSecrets->isWritable = false;
        {
            StoredPassword password;
            password.setText(u"new"_s);
            password.storeGathered();
            QVERIFY(password.isRefused());
            QCOMPARE(m_platform->fakeSecrets->writes, 1);
            password.storeGathered();
        }
        QCOMPARE(m_platform->fakeSecrets->writes, 1);
    }

    void flushAfterARefusalTriesAgain()
    {
        m_platform->fakeSecrets->isWritable = false;
        StoredPassword password;
        password.setText(u"sesame"_s);
        password.flush();
        m_platform->fakeSecrets->isWritable = true;
        QVERIFY(password.flush());
        QCOMPARE(stored(), "sesame");
        QVERIFY(!password.isRefused());
    }

    void refreshShowsWhatSomebodyElseStored()
    {
        StoredPassword password;
        store("other");
        const QSignalSpy changes(&password, &StoredPassword::changed);
        password.refresh();
        QCOMPARE(password.text(), u"other"_s);
        QVERIFY(password.isFilledIn());
        QCOMPARE(changes.size(), 1);
        password.refresh();
        QCOMPARE(changes.size(), 1);
    }

    void refreshKeepsWhatIsBeingTyped()
    {
        StoredPassword password;
        password.setText(u"mine"_s);
        store("other");
        password.refresh();
        QCOMPARE(password.text(), u"mine"_s);
        QTRY_COMPARE(stored(), "mine");
    }

    void refreshSeesThatTheKeyringStoredTheRefusedTextItself()
    {
        m_platform->fakeSecrets->isWritable = false;
        StoredPassword password;
        password.setText(u"sesame"_s);
        password.flush();
        store("sesame");
        password.refresh();
        QVERIFY(!password.isRefused());
        QVERIFY(password.isFilledIn());
    }

    void refreshStoresTheRefusedTextOnceTheKeyringAnswersAgain()
    {
        m_platform->fakeSecrets->isWritable = false;
        StoredPassword password;
        password.setText(u"new"_s);
        password.flush();
        store("old");
        m_platform->fakeSecrets->isWritable = true;
        password.refresh();
        QCOMPARE(stored(), "new");
        QCOMPARE(password.text(), u"new"_s);
        QVERIFY(!password.isRefused());
    }

    void lockedKeyringIsToldUntilItCanBeRead()
    {
        store("sesame");
        m_platform->fakeSecrets->isShut = true;
        StoredPassword password;
        const QSignalSpy changes(&password, &StoredPassword::changed);
        password.refresh();
        QVERIFY(password.isLocked());
        QVERIFY(!password.isFilledIn());
        QCOMPARE(changes.size(), 1);
        m_platform->fakeSecrets->isShut = false;
        password.refresh();
        QVERIFY(!password.isLocked());
        QCOMPARE(password.text(), u"sesame"_s);
        QCOMPARE(changes.size(), 2);
    }

    void passwordThatIsNotThereIsNotLocked()
    {
        StoredPassword password;
        password.refresh();
        QVERIFY(!password.isLocked());
    }

    void storingEndsTheLock()
    {
        m_platform->fakeSecrets->isShut = true;
        StoredPassword password;
        password.refresh();
        password.setText(u"new"_s);
        QVERIFY(password.flush());
        QVERIFY(!password.isLocked());
    }

    void refreshOfALockedKeyringKeepsTheRefusedText()
    {
        m_platform->fakeSecrets->isWritable = false;
        StoredPassword password;
        password.setText(u"new"_s);
        password.flush();
        password.refresh();
        QCOMPARE(password.text(), u"new"_s);
        QVERIFY(password.isRefused());
    }

private:
    static std::pair<QString, QString> item() { return {kAppIdentifier, u"serverPassword"_s}; }
    void store(const QByteArray &secret) { m_platform->fakeSecrets->items[item()] = secret; }
    QByteArray stored() const
    {
        const auto found = m_platform->fakeSecrets->items.find(item());
        return found == m_platform->fakeSecrets->items.end() ? QByteArray() : found->second;
    }

    std::unique_ptr<FakePlatform> m_platform;
};

TESSERY_TEST_MAIN(QCoreApplication, StoredPasswordTest)
#include "StoredPasswordTest.moc"
