#include "CurlVersion.h"
#include "UploadSurroundings.h"
#include "support/CapturedOutput.h"
#include "support/TestMain.h"

#include <map>
#include <memory>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;
using TLSVersion = UploadSettings::TLSVersion;

/// Uploads with curl to two servers with a certificate that nobody knows: one talks TLS from the
/// first byte on, the other begins in clear text, and lets nobody log in before the command AUTH
/// TLS.
class UploadFtpsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data()
    {
        QTest::addColumn<bool>("isByCommand");
        QTest::newRow("from the first byte") << false;
        QTest::newRow("by command") << true;
    }
    void initTestCase()
    {
        for (const bool isByCommand : {false, true})
            m_servers[isByCommand] = start(isByCommand);
    }
    void cleanupTestCase() { m_servers.clear(); }

    void init()
    {
        TestSurroundings::failOnWarnings();
        m_uploads = std::make_unique<UploadSurroundings>();
        m_uploads->settings.serverType = UploadSettings::ServerType::ftps;
        m_uploads->use(server());
    }
    void cleanup()
    {
        qunsetenv("CURL_CA_BUNDLE");
        m_uploads->checkLeftovers();
        m_uploads.reset();
    }

    void fileArrivesWithEachVersion_data()
    {
        QTest::addColumn<TLSVersion>("version");
        QTest::newRow("1.0") << TLSVersion::v1_0;
        QTest::newRow("1.1") << TLSVersion::v1_1;
        QTest::newRow("1.2") << TLSVersion::v1_2;
        QTest::newRow("1.3") << TLSVersion::v1_3;
        QTest::newRow("automatic") << TLSVersion::automatic;
    }
    void fileArrivesWithEachVersion()
    {
        QFETCH(TLSVersion, version);
        m_uploads->settings.tlsVersion = version;
        const QByteArray contents = m_uploads->large() + QTest::currentDataTag();
        const QUrl file = m_uploads->makeFile(u"[a].png"_s, contents);
        const CapturedOutput output;
        QCOMPARE(m_uploads->upload(file, u"ü {b}.png"_s), QString());
        QVERIFY(m_uploads->contentsOf(server().folder() + u"/ü {b}.png"_s) == contents);
        QVERIFY(output.bytes().contains("\n> PASS ********\r\n"));
        QVERIFY(output.bytes().contains("\n> PROT P\r\n")); // The data are encrypted, too.
        QVERIFY(!output.bytes().contains("s3cr3t"));
    }

    void clearTextIsLearnedOnce()
    {
        QFETCH_GLOBAL(bool, isByCommand);
        const CapturedOutput output;
        for (int i = 0; i < 3; ++i)
            QCOMPARE(m_uploads->upload(), QString());
        QCOMPARE(output.lines().filter(u" ftps://"_s).size(), isByCommand ? 1 : 3);
        QCOMPARE(output.lines().filter(u" ftp://"_s).size(), isByCommand ? 3 : 0);
    }

    void untrustedCertificateIsTold()
    {
        m_uploads->settings.allowInsecureCertificates = false;
        QCOMPARE(m_uploads->upload(),
                 u"Upload failed: SSL certificate verification failed. Enable 'Allow Self-Signed "
                 "Certificates' in settings."_s);
    }

    void trustedCertificateNeedsNoPermission()
    {
        m_uploads->settings.allowInsecureCertificates = false;
        qputenv("CURL_CA_BUNDLE", QFile::encodeName(server().fact("certificate")));
        QCOMPARE(m_uploads->upload(), QString());
        QCOMPARE(m_uploads->contentsOf(server().folder() + u'/' + m_uploads->kName),
                 m_uploads->small());
    }

    void wrongPasswordIsTold()
    {
        m_uploads->setPassword(u"wr0ng"_s);
        QCOMPARE(m_uploads->upload(), u"Authentication failed"_s);
    }

    void serverWithoutEncryptionHearsNoPassword()
    {
        const TestServer plain(u"pyftpdlib"_s);
        m_uploads->use(plain);
        const QString told = m_uploads->upload();
        QVERIFY2(told.startsWith(u"Upload failed: FTP upload failed (exit code 64):\n"_s),
                 qPrintable(told));
        const QByteArray heard = m_uploads->contentsOf(plain.fact("log"));
        QVERIFY2(heard.contains("AUTH TLS"), heard.constData());
        QVERIFY2(!heard.contains("USER") && !heard.contains("PASS"), heard.constData());
    }

    void plainUploadToAnEncryptingServerIsTold()
    {
        m_uploads->settings.serverType = UploadSettings::ServerType::ftp;
        m_uploads->environment.limits.curlConnect = 1s;
        QFETCH_GLOBAL(bool, isByCommand);
        // In the one case the server lets nobody in, in the other each side waits for the other.
        QCOMPARE(m_uploads->upload(),
                 isByCommand ? u"Authentication failed"_s : u"Connection timed out"_s);
    }

    void folderTroubleIsTold_data()
    {
        QTest::addColumn<QString>("fact");
        QTest::newRow("missing") << u"missingPath"_s;
        QTest::newRow("forbidden") << u"forbiddenPath"_s;
        QTest::newRow("not writable") << u"readOnlyPath"_s;
    }
    void folderTroubleIsTold()
    {
        QFETCH(QString, fact);
        m_uploads->settings.remotePath = server().fact(fact.toLatin1().constData());
        const QString told = m_uploads->upload();
        if (fact == u"readOnlyPath" && curlIsVersion8()) {
            // The server hangs up the second connection before it says why, and curl complains.
            QVERIFY2(told.startsWith(u"Upload failed: * TLS connect error: "_s), qPrintable(told));
            return;
        }
        QVERIFY2(told.startsWith(u"Upload failed: FTP upload failed (exit code "_s),
                 qPrintable(told));
        QVERIFY2(told.contains(u"550"_s), qPrintable(told));
    }

    void serverThatGoesInMidTransferIsTold()
    {
        QFETCH_GLOBAL(bool, isByCommand);
        const auto slow = start(isByCommand, {u"--rate=200000"_s});
        m_uploads->use(*slow);
        const QString told = m_uploads->uploadLarge(slow->folder(), [&slow] { slow->close(); });
        QVERIFY2(told.startsWith(u"Upload failed: "_s), qPrintable(told));
    }

    void quittingInMidTransferEndsIt()
    {
        QFETCH_GLOBAL(bool, isByCommand);
        const auto slow = start(isByCommand, {u"--rate=20000"_s});
        m_uploads->use(*slow);
        std::stop_source source;
        m_uploads->environment.stop = source.get_token();
        QCOMPARE(m_uploads->uploadLarge(slow->folder(), [&source] { source.request_stop(); }),
                 u"Upload failed: Cancelled because Tessery is quitting"_s);
    }

private:
    static std::unique_ptr<TestServer> start(bool isByCommand, QStringList options = {})
    {
        options << u"--password=s3cr3t"_s;
        if (isByCommand)
            options << u"--explicit"_s;
        return std::make_unique<TestServer>(u"proftpd-ftps"_s, options);
    }

    const TestServer &server() const
    {
        QFETCH_GLOBAL(bool, isByCommand);
        return *m_servers.at(isByCommand);
    }

    std::map<bool, std::unique_ptr<TestServer>> m_servers;
    std::unique_ptr<UploadSurroundings> m_uploads;
};

TESSERY_TEST_MAIN(QCoreApplication, UploadFtpsTest)
#include "UploadFtpsTest.moc"
