#include "SshAgent.h"
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

/// Uploads with sftp and a key to three servers. The password is wrong, unless a test says
/// otherwise.
class UploadSftpKeysTest : public QObject {
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
        m_agent = std::make_unique<SshAgent>(server().fact("privateKey"));
        m_uploads = std::make_unique<UploadSurroundings>();
        m_uploads->makeKeysFolder();
        m_uploads->use(server());
        m_uploads->setPassword(u"wr0ng"_s);
    }
    void cleanup()
    {
        m_uploads->checkLeftovers();
        m_uploads.reset();
        m_agent.reset();
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
        for (const QString &name :
             {u"a b.png"_s, u"it's.png"_s, u"{y}.png"_s, u"%41.png"_s, u"#?&;=+.png"_s,
              u"-dash.png"_s, u"~*,(1).png"_s, u"Bildschirmfoto ä 📸.png"_s})
            QTest::newRow(name.toUtf8().constData()) << name;
    }
    void oddNamesArriveExactly()
    {
        QFETCH(QString, name);
        const QByteArray contents = m_uploads->small() + name.toUtf8();
        QCOMPARE(m_uploads->upload(m_uploads->makeFile(name, contents), name), QString());
        QCOMPARE(arrived(name), contents);
    }

    void oddRemoteNamesArriveExactly_data()
    {
        QTest::addColumn<QString>("name");
        for (const QString &name : {u"a\\b.png"_s, u"\\[a\\*.png"_s, u"a*b?[x].png"_s, u"-r"_s})
            QTest::newRow(name.toUtf8().constData()) << name;
    }
    void oddRemoteNamesArriveExactly()
    {
        QFETCH(QString, name);
        const QByteArray contents = m_uploads->small() + name.toUtf8();
        QCOMPARE(m_uploads->upload(m_uploads->makeFile(u"a.png"_s, contents), name), QString());
        QCOMPARE(arrived(name), contents);
    }

    void bracketsInTheNameAreNoPattern()
    {
        m_uploads->makeFile(u"Shot 1.png"_s, "another");
        QCOMPARE(m_uploads->upload(m_uploads->makeFile(u"Shot [1].png"_s, "this"), u"b.png"_s),
                 QString());
        QCOMPARE(arrived(u"b.png"_s), "this");
    }

    void nameThatWouldSendAnotherFileIsRefused()
    {
        m_uploads->makeFile(u"Screenshot"_s, "another");
        const QString name = u"Screenshot\" \".htaccess\" x.png"_s;
        const QString told = m_uploads->upload(m_uploads->makeFile(name, "this"), u"a.png"_s);
        QVERIFY2(told.endsWith(u" x.png' holds a quotation mark, which sftp cannot be told"_s),
                 qPrintable(told));
        QVERIFY(!QFile::exists(server().folder() + u"/.htaccess"_s));
    }

    void folderTroubleIsAFailure_data()
    {
        QTest::addColumn<QString>("fact");
        QTest::addColumn<QString>("told");
        // For folders that are closed the server's words are the same as for a wrong password.
        QTest::newRow("missing") << u"missingPath"_s << kFailure;
        QTest::newRow("forbidden") << u"forbiddenPath"_s << u"Authentication failed"_s;
        QTest::newRow("not writable") << u"readOnlyPath"_s << u"Authentication failed"_s;
    }
    void folderTroubleIsAFailure()
    {
        QFETCH(QString, fact);
        QFETCH(QString, told);
        m_uploads->use(server());
        m_uploads->settings.remotePath = server().fact(fact.toLatin1().constData());
        const CapturedOutput output;
        QCOMPARE(m_uploads->upload(), told);
        QCOMPARE(keysFailure(output), u"Upload failed: SFTP process exited with code 1"_s);
    }

    void refusedKeyIsFollowedByThePassword()
    {
        QFETCH_GLOBAL(QString, kind);
        const TestServer keyless(kind, {u"--no-keys"_s});
        m_uploads->use(keyless);
        const CapturedOutput output;
        QCOMPARE(m_uploads->upload(), QString());
        QCOMPARE(m_uploads->contentsOf(keyless.folder() + u'/' + m_uploads->kName),
                 m_uploads->small());
        QCOMPARE(keysFailure(output), u"Upload failed: SFTP process exited with code 255"_s);
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
        m_uploads->use(server());
        m_uploads->settings.port = cut.port();
        const QUrl file = m_uploads->makeFile(u"a.png"_s, m_uploads->large());
        // How sftp ends then depends on timing.
        const CapturedOutput output;
        QCOMPARE(m_uploads->uploadAtOnce(8, file), QStringList(8, kFailure));
        QCOMPARE(
            output.lines()
                .filter(u"key auth failed, trying password: Upload failed: SFTP process exited "
                        "with code "_s)
                .size(),
            8);
    }

    void quittingInMidTransferEndsIt()
    {
        const TestServer slow(
            u"cut"_s, {u"--target="_s + QString::number(server().port()), u"--rate=300000"_s});
        m_uploads->settings.port = slow.port();
        QFile::remove(server().folder() + u'/' + m_uploads->kName);
        std::stop_source source;
        m_uploads->environment.stop = source.get_token();
        const CapturedOutput output;
        QCOMPARE(m_uploads->uploadLarge(server().folder(), [&source] { source.request_stop(); }),
                 u"Upload failed: Cancelled because Tessery is quitting"_s);
        QCOMPARE(output.lines(), QStringList());
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

    /// Why the key did not do, as the log tells it.
    static QString keysFailure(const CapturedOutput &output)
    {
        const QString beginning = u"SSH key auth failed, trying password: "_s;
        const QString text = QString::fromUtf8(output.bytes());
        return text.startsWith(beginning) ? text.mid(beginning.size()).chopped(1) : QString();
    }

    std::map<QString, std::unique_ptr<TestServer>> m_servers;
    std::unique_ptr<SshAgent> m_agent;
    std::unique_ptr<UploadSurroundings> m_uploads;
};

TESSERY_TEST_MAIN(QCoreApplication, UploadSftpKeysTest)
#include "UploadSftpKeysTest.moc"
