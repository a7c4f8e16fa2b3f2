#include "SshAgent.h"
#include "UploadSurroundings.h"
#include "support/CapturedOutput.h"
#include "support/TestMain.h"

#include <QRegularExpression>

#include <memory>
#include <optional>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;
using ServerType = UploadSettings::ServerType;

namespace {

const QString kFailure = u"Upload failed: SFTP authentication or upload failed"_s;

} // namespace

/// Uploads to servers that only some kinds of server can be.
class UploadSpecialServersTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        m_uploads = std::make_unique<UploadSurroundings>();
    }
    void cleanup()
    {
        m_uploads->checkLeftovers();
        m_uploads.reset();
    }

    void fullDiskIsToldByCurl_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<ServerType>("type");
        QTest::newRow("FTP") << u"proftpd-ftp"_s << ServerType::ftp;
        QTest::newRow("FTPS") << u"proftpd-ftps"_s << ServerType::ftps;
    }
    void fullDiskIsToldByCurl()
    {
        QFETCH(QString, kind);
        QFETCH(ServerType, type);
        const TestServer server(kind, {u"--password=s3cr3t"_s});
        m_uploads->use(server);
        m_uploads->settings.serverType = type;
        m_uploads->settings.remotePath = server.fact("fullPath");
        const QString told = uploadLarge();
        // The server hangs up in mid-transfer. In whose words that is told depends on the version
        // of curl, and on how much was on its way by then.
        static const QRegularExpression words(
            u"^Upload failed: "
            "(FTP upload failed \\(exit code |< 451 Transfer aborted|\\* OpenSSL SSL_write: )"_s);
        QVERIFY2(words.match(told).hasMatch(), qPrintable(told));
        QVERIFY(!told.contains(u"s3cr3t"_s));
    }

    void fullDiskIsToldBySftp_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<bool>("hasKeys");
        QTest::newRow("OpenSSH, keys") << u"sshd"_s << true;
        QTest::newRow("OpenSSH, password") << u"sshd"_s << false;
        QTest::newRow("ProFTPD, keys") << u"proftpd-sftp"_s << true;
        QTest::newRow("ProFTPD, password") << u"proftpd-sftp"_s << false;
    }
    void fullDiskIsToldBySftp()
    {
        QFETCH(QString, kind);
        QFETCH(bool, hasKeys);
        const TestServer server(kind);
        std::optional<SshAgent> agent;
        if (hasKeys) {
            agent.emplace(server.fact("privateKey"));
            m_uploads->makeKeysFolder();
        }
        m_uploads->use(server);
        m_uploads->settings.remotePath = server.fact("fullPath");
        const CapturedOutput output;
        QCOMPARE(uploadLarge(), kFailure);
        const QStringList keysFailure = {
            u"SSH key auth failed, trying password: Upload failed: SFTP process exited with "
            "code 1"_s};
        QCOMPARE(output.lines(), hasKeys ? keysFailure : QStringList());
    }

    void promptOfTheServersOwnIsAnswered_data()
    {
        QTest::addColumn<QString>("prompt");
        QTest::newRow("upper case") << u"Password: "_s;
        QTest::newRow("lower case") << u"Your password: "_s;
    }
    void promptOfTheServersOwnIsAnswered()
    {
        QFETCH(QString, prompt);
        const TestServer server(u"asyncssh"_s, {u"--prompt="_s + prompt});
        m_uploads->use(server);
        QCOMPARE(m_uploads->upload(), QString());
        QCOMPARE(m_uploads->contentsOf(server.folder() + u'/' + m_uploads->kName),
                 m_uploads->small());
    }

    void promptThatNobodyKnowsEndsAtExpectsLimit()
    {
        const TestServer server(u"asyncssh"_s, {u"--prompt=Passphrase? "_s});
        m_uploads->use(server);
        m_uploads->environment.limits.passwordPrompt = 1s;
        QCOMPARE(m_uploads->upload(), u"Connection timed out"_s);
    }

    void silentServerIsToldByExpect()
    {
        const TestServer silent(u"silent"_s);
        m_uploads->settings.hostname = silent.fact("host");
        m_uploads->settings.port = silent.port();
        m_uploads->settings.username = u"tester"_s;
        m_uploads->environment.limits.passwordPrompt = 1s;
        QCOMPARE(m_uploads->upload(), u"Connection timed out"_s);
    }

private:
    QString uploadLarge()
    {
        return m_uploads->upload(m_uploads->makeFile(u"large.png"_s, m_uploads->large()),
                                 m_uploads->kName);
    }

    std::unique_ptr<UploadSurroundings> m_uploads;
};

TESSERY_TEST_MAIN(QCoreApplication, UploadSpecialServersTest)
#include "UploadSpecialServersTest.moc"
