#include "support/TestMain.h"
#include "upload/LearnedServers.h"

using namespace Qt::StringLiterals;

class LearnedServersTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        m_learned = {};
        m_settings.hostname = u"host"_s;
        m_settings.username = u"me"_s;
    }

    void passwordIsWantedOnceTheKeysWereRefusedAndItWasTaken()
    {
        m_learned.notePasswordTaken(m_settings);
        QVERIFY(!m_learned.wantsPassword(m_settings));
        m_learned.noteKeysRefused(m_settings);
        QVERIFY(!m_learned.wantsPassword(m_settings));
        m_learned.notePasswordTaken(m_settings);
        QVERIFY(m_learned.wantsPassword(m_settings));
        m_learned.noteKeysRefused(m_settings); // By an upload that began before.
        QVERIFY(m_learned.wantsPassword(m_settings));
    }

    void refusedPasswordIsForgotten()
    {
        learnPassword();
        m_learned.notePasswordRefused(m_settings);
        QVERIFY(!m_learned.wantsPassword(m_settings));
        m_learned.notePasswordTaken(m_settings);
        QVERIFY(!m_learned.wantsPassword(m_settings));
    }

    void accountsAreToldApart()
    {
        learnPassword();
        learnAuthTls();
        UploadSettings other = m_settings;
        other.hostname = u"other"_s;
        QVERIFY(!m_learned.wantsPassword(other));
        QVERIFY(!m_learned.wantsAuthTls(other));
        other = m_settings;
        other.port = 2222;
        QVERIFY(!m_learned.wantsPassword(other));
        QVERIFY(!m_learned.wantsAuthTls(other));
        other = m_settings;
        other.username = u"other"_s;
        QVERIFY(!m_learned.wantsPassword(other));
        QVERIFY(m_learned.wantsAuthTls(other));
        other = m_settings;
        other.remotePath = u"/other"_s;
        QVERIFY(m_learned.wantsPassword(other));
        QVERIFY(m_learned.wantsAuthTls(other));
    }

    void authTlsIsForgottenWhenItNoLongerHolds()
    {
        learnAuthTls();
        m_learned.setWantsAuthTls(m_settings, false);
        QVERIFY(!m_learned.wantsAuthTls(m_settings));
    }

    void allIsForgotten()
    {
        learnPassword();
        learnAuthTls();
        m_learned.forgetAll();
        QVERIFY(!m_learned.wantsPassword(m_settings));
        QVERIFY(!m_learned.wantsAuthTls(m_settings));
    }

private:
    void learnPassword()
    {
        m_learned.noteKeysRefused(m_settings);
        m_learned.notePasswordTaken(m_settings);
        QVERIFY(m_learned.wantsPassword(m_settings));
    }
    void learnAuthTls()
    {
        m_learned.setWantsAuthTls(m_settings, true);
        QVERIFY(m_learned.wantsAuthTls(m_settings));
    }

    UploadSettings m_settings;
    LearnedServers m_learned;
};

TESSERY_TEST_MAIN(QCoreApplication, LearnedServersTest)
#include "LearnedServersTest.moc"
