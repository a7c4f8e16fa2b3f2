#include "UploadSurroundings.h"
#include "support/CapturedOutput.h"
#include "support/TestMain.h"

#include <memory>

using namespace Qt::StringLiterals;
using ServerType = UploadSettings::ServerType;

/// Uploads with curl to hosts that can be written, and reached, in several ways. The login must be
/// the user's in each.
class UploadCurlHostTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        m_uploads = std::make_unique<UploadSurroundings>();
        m_uploads->settings.serverType = ServerType::ftp;
    }
    void cleanup()
    {
        m_uploads->checkLeftovers();
        m_uploads.reset();
    }

    void version6MayBeWrittenInEveryWay_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("host");
        for (const QString &kind : {u"pyftpdlib"_s, u"proftpd-ftp"_s, u"proftpd-ftps"_s}) {
            for (const QString &host :
                 {u"[::1]"_s, u"::1"_s, u"[0:0::0:1]"_s, u"ftp://[0::1]/"_s, u" [::0001] "_s})
                QTest::newRow(qPrintable(kind + u' ' + host)) << kind << host;
        }
    }
    void version6MayBeWrittenInEveryWay()
    {
        if (!UploadSurroundings::hasVersion6())
            return;
        QFETCH(QString, kind);
        QFETCH(QString, host);
        const TestServer server(kind, {u"--host=::1"_s});
        m_uploads->use(server);
        m_uploads->settings.hostname = host;
        if (kind == u"proftpd-ftps")
            m_uploads->settings.serverType = ServerType::ftps;
        QCOMPARE(m_uploads->upload(), QString());
        QCOMPARE(m_uploads->contentsOf(server.folder() + u'/' + m_uploads->kName),
                 m_uploads->small());
    }

    void otherFormsFindTheLoginToo_data()
    {
        QTest::addColumn<QString>("host");
        QTest::addColumn<QString>("name"); // As curl looks it up; empty for a number.
        QTest::newRow("short number") << u"127.1"_s << QString();
        QTest::newRow("hexadecimal number") << u"0x7f.0.0.1"_s << QString();
        QTest::newRow("beyond ASCII") << u"Bücher.example"_s << u"xn--bcher-kva.example"_s;
        QTest::newRow("another script") << u"例え.example"_s << u"xn--r8jz45g.example"_s;
    }
    void otherFormsFindTheLoginToo()
    {
        QFETCH(QString, host);
        QFETCH(QString, name);
        const TestServer server(u"pyftpdlib"_s);
        m_uploads->use(server);
        m_uploads->settings.hostname = host;
        if (!name.isEmpty())
            m_uploads->nameAddresses(name, server.port(), {server.fact("host")});
        QCOMPARE(m_uploads->upload(), QString());
    }

    void loginAsAnybodyElseIsNoSuccess()
    {
        const TestServer server(u"pyftpdlib"_s, {u"--user=anonymous"_s, u"--password=ftp@x"_s});
        m_uploads->use(server);
        m_uploads->settings.username = u"me"_s;
        m_uploads->configureCurl(u"user = \"anonymous:ftp@x\"\n"_s);
        const CapturedOutput output;
        QCOMPARE(m_uploads->upload(), u"Upload failed: curl has logged in as 'anonymous'"_s);
        QCOMPARE(
            output.lines().last(),
            u"⚠️ curl ended without an error, but its report says 'USER anonymous', which counts "
            "as a failure"_s);
    }

    void addressThatRefusesBeforeAnotherDoesNotCount()
    {
        const TestServer server(u"pyftpdlib"_s);
        m_uploads->use(server);
        m_uploads->settings.hostname = u"files.example"_s;
        m_uploads->nameAddresses(u"files.example"_s, server.port(),
                                 {u"127.0.0.9"_s, server.fact("host")});
        const CapturedOutput output;
        QCOMPARE(m_uploads->upload(), QString());
        QVERIFY(output.bytes().contains("Connection refused"));
    }

    void portForDataThatRefusesBeforeAnotherDoesNotCount()
    {
        const TestServer server(u"pyftpdlib"_s, {u"--refused-epsv"_s});
        m_uploads->use(server);
        const CapturedOutput output;
        QCOMPARE(m_uploads->upload(), QString());
        QVERIFY(output.bytes().contains("Connection refused"));
    }

    void serverThatRefusesAltogetherIsTold()
    {
        const TestServer server(u"pyftpdlib"_s);
        m_uploads->use(server);
        m_uploads->settings.hostname = u"files.example"_s;
        m_uploads->nameAddresses(u"files.example"_s, server.port(),
                                 {u"127.0.0.9"_s, u"127.0.0.8"_s});
        QCOMPARE(m_uploads->upload(),
                 u"Connection failed: Could not connect to server. Check hostname and port."_s);
    }

private:
    std::unique_ptr<UploadSurroundings> m_uploads;
};

TESSERY_TEST_MAIN(QCoreApplication, UploadCurlHostTest)
#include "UploadCurlHostTest.moc"
