#include "CurlVersion.h"
#include "UploadSurroundings.h"
#include "support/CapturedOutput.h"
#include "support/TestMain.h"

#include <memory>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;
using ServerType = UploadSettings::ServerType;

/// Uploads to servers that are not there or do not answer, by each route.
class UploadUnreachableTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data()
    {
        QTest::addColumn<ServerType>("type");
        QTest::addColumn<bool>("hasKeys");
        QTest::newRow("FTP") << ServerType::ftp << false;
        QTest::newRow("FTPS") << ServerType::ftps << false;
        QTest::newRow("keys, then password") << ServerType::sftp << true;
        QTest::newRow("password") << ServerType::sftp << false;
    }

    void init()
    {
        TestSurroundings::failOnWarnings();
        QFETCH_GLOBAL(ServerType, type);
        QFETCH_GLOBAL(bool, hasKeys);
        m_uploads = std::make_unique<UploadSurroundings>();
        m_uploads->settings.serverType = type;
        m_uploads->settings.hostname = u"127.0.0.1"_s;
        m_uploads->settings.username = u"tester"_s;
        m_uploads->setPassword(u"s3cr3t"_s);
        if (hasKeys)
            m_uploads->makeKeysFolder();
    }
    void cleanup()
    {
        m_uploads->checkLeftovers();
        m_uploads.reset();
    }

    void refusedPortIsTold()
    {
        m_uploads->chooseClientPorts();
        const TestServer closed(u"closed"_s);
        m_uploads->settings.port = closed.port();
        const CapturedOutput output;
        QCOMPARE(m_uploads->upload(),
                 isSftp() ? u"Upload failed: SFTP authentication or upload failed"_s
                          : u"Connection failed: Could not connect to server. Check hostname and "
                            "port."_s);
        checkKeysFailure(output, u"Connection refused"_s);
    }

    void unresolvableHostIsTold()
    {
        m_uploads->settings.hostname = u"no.such.host.invalid"_s;
        const CapturedOutput output;
        QCOMPARE(m_uploads->upload(),
                 isSftp() ? u"Upload failed: SFTP authentication or upload failed"_s
                          : u"Connection failed: Could not resolve hostname "
                            "'no.such.host.invalid'."_s);
        checkKeysFailure(output, u"Could not resolve hostname"_s);
    }

    void silentServerIsToldByTheTool()
    {
        QFETCH_GLOBAL(ServerType, type);
        const TestServer silent(u"silent"_s);
        m_uploads->settings.port = silent.port();
        m_uploads->environment.limits.curlConnect = 1s;
        m_uploads->environment.limits.sftpConnect = 1s;
        const CapturedOutput output;
        const QString told = m_uploads->upload();
        if (type == ServerType::ftps && !curlIsVersion8()) {
            QVERIFY2(told.startsWith(u"Upload failed: FTP upload failed (exit code 28):\n"_s),
                     qPrintable(told));
            QVERIFY(told.endsWith(u"SSL connection timeout"_s));
        } else {
            QCOMPARE(told, u"Connection timed out"_s);
        }
        checkKeysFailure(output, u"timed out"_s);
    }

    void silentServerIsToldAtTheLimit()
    {
        const TestServer silent(u"silent"_s);
        m_uploads->settings.port = silent.port();
        m_uploads->environment.limits.curlProcess = 300ms;
        m_uploads->environment.limits.keysProcess = 300ms;
        m_uploads->environment.limits.passwordProcess = 300ms;
        const CapturedOutput output;
        QCOMPARE(m_uploads->upload(), u"Connection timed out"_s);
        checkKeysFailure(output, u"password: Connection timed out"_s);
    }

private:
    static bool isSftp()
    {
        QFETCH_GLOBAL(ServerType, type);
        return type == ServerType::sftp;
    }

    /// Where keys come first, the log must tell why they did not do.
    static void checkKeysFailure(const CapturedOutput &output, const QString &reason)
    {
        QFETCH_GLOBAL(bool, hasKeys);
        const QString text = QString::fromUtf8(output.bytes());
        QCOMPARE(text.startsWith(u"SSH key auth failed, trying password: "_s), hasKeys);
        if (hasKeys)
            QVERIFY2(text.contains(reason), qPrintable(text));
    }

    std::unique_ptr<UploadSurroundings> m_uploads;
};

TESSERY_TEST_MAIN(QCoreApplication, UploadUnreachableTest)
#include "UploadUnreachableTest.moc"
