#include "UploadSurroundings.h"
#include "support/CapturedOutput.h"
#include "support/TestMain.h"

#include <map>
#include <memory>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

const QString kFailure = u"Upload failed: SFTP authentication or upload failed"_s;

} // namespace

/// Uploads with sftp and a password that expect types, to three servers.
class UploadSftpPasswordTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("OpenSSH") << u"sshd"_s;
        QTest::newRow("ProFTPD") << u"proftpd-sftp"_s;
        QTest::newRow("asyncssh") << u"asyncssh"_s;
    }
    void initTestCase()
    {
        for (const QString &kind : {u"sshd"_s, u"proftpd-sftp"_s, u"asyncssh"_s})
            m_servers[kind] = std::make_unique<TestServer>(kind);
    }
    void cleanupTestCase() { m_servers.clear(); }

    void init()
    {
        TestSurroundings::failOnWarnings();
        m_uploads = std::make_unique<UploadSurroundings>();
        m_uploads->use(server());
    }
    void cleanup()
    {
        m_uploads->checkLeftovers();
        m_uploads.reset();
    }

    void fileArrives()
    {
        const QByteArray contents = m_uploads->large();
        const QUrl file = m_uploads->makeFile(u"a.png"_s, contents);
        const CapturedOutput output;
        QCOMPARE(m_uploads->upload(file, u"large.png"_s), QString());
        QVERIFY(arrived(u"large.png"_s) == contents);
        QCOMPARE(output.lines(), QStringList());
    }

    void oddNamesArriveExactly_data()
    {
        QTest::addColumn<QString>("name");
        for (const QString &name : {u"a b.png"_s, u"it's {y} %41 #?&;=+.png"_s, u"-dash.png"_s,
                                    u"Bildschirmfoto ä 📸.png"_s, u"password: .png"_s})
            QTest::newRow(name.toUtf8().constData()) << name;
    }
    void oddNamesArriveExactly()
    {
        QFETCH(QString, name);
        const QByteArray contents = m_uploads->small() + name.toUtf8();
        QCOMPARE(m_uploads->upload(m_uploads->makeFile(name, contents), name), QString());
        QCOMPARE(arrived(name), contents);
    }

    void nameThatReadsTimedOutIsATimeOut()
    {
        QCOMPARE(m_uploads->upload(m_uploads->makeFile(u"timed out.png"_s, "x"), u"a.png"_s),
                 u"Connection timed out"_s);
    }

    void oddPasswordsAreAccepted_data()
    {
        QTest::addColumn<QString>("password");
        for (const QString &password :
             {u"back\\slash\\x41\\"_s, u"\\\"'"_s, u"$HOME [exit 7] ${x}"_s, u"{a}b}{c"_s,
              u"-dash"_s, u"pässwörd"_s, u"password:"_s, u"Permission denied timed out"_s})
            QTest::newRow(password.toUtf8().constData()) << password;
    }
    void oddPasswordsAreAccepted()
    {
        QFETCH_GLOBAL(QString, kind);
        QFETCH(QString, password);
        const TestServer odd(kind, {u"--password="_s + password});
        m_uploads->use(odd);
        QCOMPARE(m_uploads->upload(), QString());
        QCOMPARE(m_uploads->contentsOf(odd.folder() + u'/' + m_uploads->kName), m_uploads->small());
    }

    void commandsInTheSettingsAreNotRun_data()
    {
        QTest::addColumn<QString>("host");
        QTest::addColumn<QString>("user");
        QTest::newRow("host") << u"127.0.0.1[exec touch $env(SEEN)]"_s << u"tester"_s;
        QTest::newRow("user") << u"127.0.0.1"_s << u"[exec touch $env(SEEN)]tester"_s;
        QTest::newRow("second command") << u"127.0.0.1;exec touch $env(SEEN)"_s << u"tester"_s;
    }
    void commandsInTheSettingsAreNotRun()
    {
        QFETCH(QString, host);
        QFETCH(QString, user);
        const QString seen = m_uploads->environment.homeFolder + u"/seen"_s;
        qputenv("SEEN", QFile::encodeName(seen));
        m_uploads->settings.hostname = host;
        m_uploads->settings.username = user;
        const QString told = m_uploads->upload();
        qunsetenv("SEEN");
        QVERIFY(!told.isEmpty());
        QVERIFY(!QFile::exists(seen));
    }

    void userOfADomainIsAccepted()
    {
        QFETCH_GLOBAL(QString, kind);
        if (kind == u"sshd")
            return; // Its accounts are those of a system, which have no such names.
        const TestServer server(kind, {u"--user=DOM\\user"_s});
        m_uploads->use(server);
        QCOMPARE(m_uploads->upload(), QString());
    }

    void wrongPasswordIsTold()
    {
        m_uploads->setPassword(u"wr0ng"_s);
        QCOMPARE(m_uploads->upload(), u"Authentication failed"_s);
    }

    void absentPasswordIsTold()
    {
        m_uploads->platform.fakeSecrets->items.clear();
        QCOMPARE(m_uploads->upload(), u"Authentication failed"_s);
    }

    void missingFolderIsTold()
    {
        m_uploads->settings.remotePath = server().fact("missingPath");
        QCOMPARE(m_uploads->upload(), kFailure);
    }

    void forbiddenFolderIsTold_data()
    {
        QTest::addColumn<QString>("fact");
        QTest::newRow("forbidden") << u"forbiddenPath"_s;
        QTest::newRow("not writable") << u"readOnlyPath"_s;
    }
    void forbiddenFolderIsTold()
    {
        QFETCH(QString, fact);
        m_uploads->settings.remotePath = server().fact(fact.toLatin1().constData());
        // The server's words are the same as for a wrong password.
        QCOMPARE(m_uploads->upload(), u"Authentication failed"_s);
    }

    void cutConnectionIsNeverASuccess_data()
    {
        QTest::addColumn<QString>("option");
        QTest::newRow("ended") << QString();
        QTest::newRow("reset") << u"--reset"_s;
    }
    void cutConnectionIsNeverASuccess()
    {
        QFETCH(QString, option);
        QStringList options = {u"--target="_s + QString::number(server().port()),
                               u"--after=200000"_s};
        if (!option.isEmpty())
            options << option;
        const TestServer cut(u"cut"_s, options);
        m_uploads->settings.port = cut.port();
        const QUrl file = m_uploads->makeFile(u"a.png"_s, m_uploads->large());
        // How sftp ends then depends on timing.
        QCOMPARE(m_uploads->uploadAtOnce(10, file), QStringList(10, kFailure));
    }

    void quittingInMidTransferEndsIt()
    {
        const TestServer slow(
            u"cut"_s, {u"--target="_s + QString::number(server().port()), u"--rate=300000"_s});
        m_uploads->settings.port = slow.port();
        QFile::remove(server().folder() + u'/' + m_uploads->kName);
        std::stop_source source;
        m_uploads->environment.stop = source.get_token();
        QCOMPARE(m_uploads->uploadLarge(server().folder(), [&source] { source.request_stop(); }),
                 u"Upload failed: Cancelled because Tessery is quitting"_s);
    }

private:
    const TestServer &server() const
    {
        QFETCH_GLOBAL(QString, kind);
        return *m_servers.at(kind);
    }

    QByteArray arrived(const QString &name) const
    {
        return m_uploads->contentsOf(server().folder() + u'/' + name);
    }

    std::map<QString, std::unique_ptr<TestServer>> m_servers;
    std::unique_ptr<UploadSurroundings> m_uploads;
};

TESSERY_TEST_MAIN(QCoreApplication, UploadSftpPasswordTest)
#include "UploadSftpPasswordTest.moc"
