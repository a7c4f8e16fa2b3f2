#include "UploadSurroundings.h"
#include "support/CapturedOutput.h"
#include "support/TestMain.h"

#include <memory>

using namespace Qt::StringLiterals;
using ServerType = UploadSettings::ServerType;
using TLSVersion = UploadSettings::TLSVersion;

/// Uploads by FTPS to a server that begins in clear text, as most do: it lets nobody log in before
/// the command AUTH TLS.
class UploadFtpsByCommandTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_server = std::make_unique<TestServer>(
            u"proftpd-ftps"_s, QStringList{u"--explicit"_s, u"--password=s3cr3t"_s});
    }
    void cleanupTestCase() { m_server.reset(); }

    void init()
    {
        TestSurroundings::failOnWarnings();
        m_uploads = std::make_unique<UploadSurroundings>();
        m_uploads->settings.serverType = ServerType::ftps;
        m_uploads->use(*m_server);
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
        QVERIFY(m_uploads->contentsOf(m_server->folder() + u"/ü {b}.png"_s) == contents);
        QVERIFY(output.bytes().contains("\n> PASS ********\r\n"));
        // The data, too, were encrypted.
        QVERIFY(output.bytes().contains("\n> PROT P\r\n"));
    }

    void clearTextIsLearnedOnce()
    {
        const CapturedOutput output;
        for (int i = 0; i < 3; ++i)
            QCOMPARE(m_uploads->upload(), QString());
        QCOMPARE(output.lines().filter(u"🔍 Executing: "_s).size(), 4);
        QCOMPARE(output.lines().filter(u" ftps://"_s).size(), 1);
    }

    void trustedCertificateNeedsNoPermission()
    {
        m_uploads->settings.allowInsecureCertificates = false;
        qputenv("CURL_CA_BUNDLE", QFile::encodeName(m_server->fact("certificate")));
        QCOMPARE(m_uploads->upload(), QString());
    }

    void untrustedCertificateIsTold()
    {
        m_uploads->settings.allowInsecureCertificates = false;
        QCOMPARE(m_uploads->upload(),
                 u"Upload failed: SSL certificate verification failed. Enable 'Allow Self-Signed "
                 "Certificates' in settings."_s);
    }

    void wrongPasswordIsTold()
    {
        m_uploads->setPassword(u"wr0ng"_s);
        QCOMPARE(m_uploads->upload(), u"Authentication failed"_s);
    }

    void plainUploadIsRefusedByTheServer()
    {
        m_uploads->settings.serverType = ServerType::ftp;
        QCOMPARE(m_uploads->upload(), u"Authentication failed"_s); // "Access denied"
    }

    void serverWithoutTlsHearsNoPassword()
    {
        const TestServer plain(u"pyftpdlib"_s, {u"--password=s3cr3t"_s});
        m_uploads->use(plain);
        const QString told = m_uploads->upload();
        QVERIFY2(told.startsWith(u"Upload failed: FTP upload failed (exit code 64):\n"_s),
                 qPrintable(told));
        const QByteArray heard = m_uploads->contentsOf(plain.fact("log"));
        QVERIFY2(heard.contains("AUTH TLS"), heard.constData());
        QVERIFY2(!heard.contains("USER") && !heard.contains("PASS"), heard.constData());
    }

private:
    std::unique_ptr<TestServer> m_server;
    std::unique_ptr<UploadSurroundings> m_uploads;
};

TESSERY_TEST_MAIN(QCoreApplication, UploadFtpsByCommandTest)
#include "UploadFtpsByCommandTest.moc"
