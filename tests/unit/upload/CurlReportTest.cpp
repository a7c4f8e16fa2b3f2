#include "support/TestMain.h"
#include "upload/CurlReport.h"

using namespace Qt::StringLiterals;

namespace {

const QString kCertificate = u"Upload failed: SSL certificate verification failed. Enable 'Allow "
                             "Self-Signed Certificates' in settings."_s;
const QString kAuthentication = u"Authentication failed"_s;
const QString kConnection =
    u"Connection failed: Could not connect to server. Check hostname and port."_s;
const QString kResolution = u"Connection failed: Could not resolve hostname 'myserver'."_s;
const QString kTimeout = u"Connection timed out"_s;

/// What the user is told; empty for success.
QString told(const QString &standardOutput, const QString &standardError, int status)
{
    const auto failure =
        CurlReport(standardOutput, standardError, status).failure(u"myserver"_s, u"me"_s);
    return failure ? failure->error.errorDescription() : QString();
}

ProcessOutcome ended(int status, const QByteArray &standardError,
                     const QByteArray &standardOutput = {})
{
    ProcessOutcome outcome;
    outcome.ending = ProcessOutcome::Ending::Exited;
    outcome.status = status;
    outcome.standardOutput = standardOutput;
    outcome.standardError = standardError;
    return outcome;
}

} // namespace

class CurlReportTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    void rules_data()
    {
        QTest::addColumn<QString>("words");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *name, const QString &words, const QString &expected) {
            QTest::newRow(name) << words << expected;
        };
        row("1 problem", u"SSL certificate problem: self-signed certificate"_s, kCertificate);
        row("1 verify", u"certificate verify failed"_s, kCertificate);
        row("2 code", u"< 530 No"_s, kAuthentication);
        row("2 login", u"Login incorrect"_s, kAuthentication);
        row("2 denied", u"Access denied"_s, kAuthentication);
        row("3 connect", u"couldn't connect"_s, kConnection);
        row("3 refused", u"Connection refused"_s, kConnection);
        row("4 upper case", u"Could not resolve host: x"_s, kResolution);
        row("4 lower case", u"could not resolve host"_s, kResolution);
        row("5 operation", u"Operation timed out after 60001 ms"_s, kTimeout);
        row("5 connection", u"Connection timed out"_s, kTimeout);
        row("1 before 2", u"530 SSL certificate problem"_s, kCertificate);
        row("2 before 3", u"Connection refused 530"_s, kAuthentication);
        row("3 before 4", u"Could not resolve host, Connection refused"_s, kConnection);
        row("4 before 5", u"Operation timed out, Could not resolve host"_s, kResolution);
        row("5 before 6", u"error Connection timed out"_s, kTimeout);
        row("530 anywhere", u"* We sent 530 bytes"_s, kAuthentication);
    }
    void rules()
    {
        QFETCH(QString, words);
        QFETCH(QString, expected);
        // In either output, and whatever the exit status says.
        for (const int status : {0, 7}) {
            QCOMPARE(told(QString(), words, status), expected);
            QCOMPARE(told(words, QString(), status), expected);
        }
    }

    void caseMatters()
    {
        QCOMPARE(told(QString(), u"ssl CERTIFICATE problem, login incorrect"_s, 0), QString());
        QCOMPARE(told(QString(), u"connection refused, operation timed out"_s, 0), QString());
    }

    void certificateProblemWinsOverAuthentication()
    {
        QCOMPARE(told(QString(), u"< 530 x\r\nSSL certificate problem"_s, 60), kCertificate);
    }

    void successThatMentions530IsAnAuthenticationFailure()
    {
        QCOMPARE(told(QString(), u"> STOR shot 530.png\r\n< 226 ok\r\n"_s, 0), kAuthentication);
    }

    void attemptsBeforeTheSuccessfulOneDoNotCount_data()
    {
        QTest::addColumn<QString>("report");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *name, const QString &report, const QString &expected) {
            QTest::newRow(name) << report << expected;
        };
        const QString meter = u"  0     0    0     0 --:--:-- --:--:-- --:--:--     0"_s;
        row("second address",
            u"* connect to ::1 port 21 failed: Connection refused\n"
            "* Connected to x.org (127.0.0.1) port 21\n< 226 ok\r\n"_s,
            QString());
        row("second address, curl 8",
            u"* connect to ::1 port 21 from ::1 port 49948 failed: Connection timed out\n"
            "* Connected to x.org (127.0.0.1) port 21\n< 226 ok\r\n"_s,
            QString());
        row("behind the progress meter",
            u'\r' + meter + u"* connect to ::1 port 21 failed: Connection refused\n\r"_s + meter
                + u"* Connected to x.org (127.0.0.1) port 21\n"_s,
            QString());
        row("PASV after EPSV",
            u"* Connected to h (127.0.0.1) port 21 (#0)\n> EPSV\r\n"
            "* connect to 127.0.0.1 port 9 failed: Connection refused\n"
            "* Failed to connect to h port 21 after 9 ms: Connection refused\n"
            "* Failed EPSV attempt. Disabling EPSV\n> PASV\r\n"
            "* Connected 2nd connection to 127.0.0.1 port 40001\n"_s,
            QString());
        row("no success behind it",
            u"* Connected to h (127.0.0.1) port 21 (#0)\n> PASV\r\n"
            "* connect to 127.0.0.1 port 9 failed: Connection refused\n"_s,
            kConnection);
        row("one more behind it",
            u"* connect to ::1 port 21 failed: Connection timed out\n"
            "* Connected to h (127.0.0.1) port 21 (#0)\n> PASV\r\n"
            "* connect to 127.0.0.1 port 9 failed: Connection timed out\n"_s,
            kTimeout);
        row("words of the server",
            u"< 425 * connect to x failed: Connection refused\r\n* Connected to h\n"_s,
            kConnection);
        row("success that the server claims",
            u"* connect to ::1 port 21 failed: Connection refused\n< 220 * Connected to h\r\n"_s,
            kConnection);
        row("the other rules see them",
            u"* connect to ::1 port 530 failed: Connection refused\n* Connected to h\n"_s,
            kAuthentication);
    }
    void attemptsBeforeTheSuccessfulOneDoNotCount()
    {
        QFETCH(QString, report);
        QTEST(told(QString(), report, 0), "expected");
    }

    void otherLoginThanTheUsersIsAFailure_data()
    {
        QTest::addColumn<QString>("report");
        QTest::addColumn<QString>("expected");
        QTest::newRow("the user's") << u"> USER me\r\n< 226 ok\r\n"_s << QString();
        QTest::newRow("anonymous") << u"> USER anonymous\r\n< 226 ok\r\n"_s
                                   << u"Upload failed: curl has logged in as 'anonymous'"_s;
        QTest::newRow("longer") << u"> USER me2\n"_s
                                << u"Upload failed: curl has logged in as 'me2'"_s;
        QTest::newRow("empty") << u"> USER \r\n"_s << u"Upload failed: curl has logged in as ''"_s;
        QTest::newRow("behind the progress meter")
            << u"\r  0 --:--:--     0> USER you\r\n"_s
            << u"Upload failed: curl has logged in as 'you'"_s;
        QTest::newRow("second") << u"> USER me\r\n> USER you\r\n"_s
                                << u"Upload failed: curl has logged in as 'you'"_s;
        QTest::newRow("words of the server") << u"< 331 > USER you\r\n> USER me\r\n"_s << QString();
    }
    void otherLoginThanTheUsersIsAFailure()
    {
        QFETCH(QString, report);
        QTEST(told(QString(), report, 0), "expected");
    }

    void refusalByAnHttpProxyIsAFailure_data()
    {
        QTest::addColumn<QString>("report");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *name, const QString &report, const QString &expected) {
            QTest::newRow(name) << report << expected;
        };
        const QString told = u"Upload failed: The proxy answered: "_s;
        row("403", u"< HTTP/1.1 403 Forbidden\r\n< \r\n"_s, told + u"HTTP/1.1 403 Forbidden"_s);
        row("no reason", u"< HTTP/2 405\r\n"_s, told + u"HTTP/2 405"_s);
        row("server's trouble", u"< HTTP/1.0 501 Not Implemented\r\n"_s,
            told + u"HTTP/1.0 501 Not Implemented"_s);
        row("after continuing",
            u"< HTTP/1.1 100 Continue\r\n< \r\n} [3 bytes data]\n< HTTP/1.1 400 Bad\r\n"_s,
            told + u"HTTP/1.1 400 Bad"_s);
        row("taken", u"< HTTP/1.1 100 Continue\r\n< \r\n< HTTP/1.1 201 Created\r\n"_s, QString());
        row("taken with the right credentials",
            u"< HTTP/1.1 407 Proxy Authentication Required\r\n< \r\n< HTTP/1.1 200 OK\r\n"_s,
            QString());
        row("redirection", u"< HTTP/1.1 302 Found\r\n"_s, told + u"HTTP/1.1 302 Found"_s);
        row("nothing but going on", u"< HTTP/1.1 100 Continue\r\n"_s,
            told + u"HTTP/1.1 100 Continue"_s);
        row("two blanks", u"< HTTP/1.1  403 No\r\n"_s, told + u"HTTP/1.1  403 No"_s);
        row("no number", u"< HTTP/1.1 200x\r\n"_s, told + u"HTTP/1.1 200x"_s);
        row("no reason, taken", u"< HTTP/2 201\r\n"_s, QString());
        row("text of an FTP server", u"< 220 HTTP/1.1 403 Forbidden\r\n"_s, QString());
    }
    void refusalByAnHttpProxyIsAFailure()
    {
        QFETCH(QString, report);
        QTEST(told(QString(), report, 0), "expected");
    }

    void wordsThatMakeAFailureAreTold()
    {
        const auto words = [](const QString &report, int status) {
            return CurlReport(QString(), report, status).failure(u"h"_s, u"me"_s)->words;
        };
        QCOMPARE(words(u"> STOR 530.png"_s, 0), u"530"_s);
        QCOMPARE(words(u"an error"_s, 0), u"error"_s);
        QCOMPARE(words(u"> USER you\r\n"_s, 0), u"USER you"_s);
        QCOMPARE(words(u"< HTTP/1.1 403 No\r\n"_s, 0), u"HTTP/1.1 403 No"_s);
        QCOMPARE(words(u"nothing special"_s, 55), QString());
    }

    void factsDoNotDependOnTheEncoding()
    {
        const auto told = [](const QByteArray &report) {
            const auto failure =
                CurlReport(ended(0, "gr\xfc\xdf\n" + report)).failure(u"h"_s, u"mä"_s);
            return failure ? failure->error.message() : QString();
        };
        QCOMPARE(told("> USER m\xc3\xa4\r\n"), QString());
        QCOMPARE(told("> USER y\xc3\xb6\r\n"), u"curl has logged in as 'yö'"_s);
        QCOMPARE(told("< HTTP/1.1 403 f\xc3\xbcr\r\n"), u"The proxy answered: HTTP/1.1 403 für"_s);
        QVERIFY(CurlReport(ended(0, "< 220 gr\xfc\xdf\r\n")).hasServerSpoken());
        QVERIFY(!CurlReport(ended(35, "< 220 gr\xfc\xdf\r\n")).isServerInClearText());
        QVERIFY(CurlReport(ended(35, "* gr\xfc\xdf\n")).isServerInClearText());
    }

    void serverInClearTextIsToldFromOthers_data()
    {
        QTest::addColumn<QString>("report");
        QTest::addColumn<int>("status");
        QTest::addColumn<bool>("isInClearText");
        const QString hello = u"* Connected to h (127.0.0.1) port 21 (#0)\n"
                              "* TLSv1.3 (OUT), TLS handshake, Client hello (1):\n"_s;
        const QString wrongVersion =
            u"curl: (35) error:0A00010B:SSL routines::wrong version number\n"_s;
        QTest::newRow("in clear text") << hello + wrongVersion << 35 << true;
        QTest::newRow("other exit code") << hello + wrongVersion << 56 << false;
        QTest::newRow("TLS, but not that version")
            << hello + u"* TLSv1.3 (IN), TLS alert, protocol version (582):\n"_s << 35 << false;
        QTest::newRow("in the middle of the dialogue")
            << hello + u"< 220 ready\r\n"_s + wrongVersion << 35 << false;
    }
    void serverInClearTextIsToldFromOthers()
    {
        QFETCH(QString, report);
        QFETCH(int, status);
        QTEST(CurlReport(QString(), report, status).isServerInClearText(), "isInClearText");
    }

    void passwordThatLooksLikeARuleDoesNotMatter()
    {
        const CurlReport report(
            ended(0, "> PASS 530 error timed out Connection refused\r\n< 226 ok\r\n"));
        QVERIFY(!report.failure(u"myserver"_s, u"me"_s));
    }

    void exitStatusZeroWithoutOutputIsSuccess()
    {
        QCOMPARE(told(QString(), QString(), 0), QString());
        QCOMPARE(told(QString(), u"< 226 Transfer complete\r\n"_s, 0), QString());
    }

    void errorLinesAreQuoted_data()
    {
        QTest::addColumn<QString>("standardError");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *name, const QString &words, const QString &expected) {
            QTest::newRow(name) << words << expected;
        };
        row("in order", u"* An error here\n* fine\n* It FAILED\n* ERROR too"_s,
            u"Upload failed: * An error here\n* It FAILED\n* ERROR too"_s);
        row("carriage returns stay", u"* error\r\n* failed\r\n"_s,
            u"Upload failed: * error\r\n* failed\r"_s);
        row("upper case alone does not start it", u"* Error\n* FAILED"_s, QString());
        row("failed alone does not start it", u"* transfer failed"_s, QString());
        row("session reuse excuses", u"* SSL re-using session ID\n* error"_s, QString());
    }
    void errorLinesAreQuoted()
    {
        QFETCH(QString, standardError);
        QTEST(told(QString(), standardError, 0), "expected");
    }

    void errorInStandardOutputIsNone() { QCOMPARE(told(u"error"_s, QString(), 0), QString()); }

    void otherFailuresQuoteTheLastTenLines_data()
    {
        QTest::addColumn<QString>("standardOutput");
        QTest::addColumn<QString>("standardError");
        QTest::addColumn<QString>("quoted");
        const auto row = [](const char *name, const QString &standardOutput,
                            const QString &standardError, const QString &quoted) {
            QTest::newRow(name) << standardOutput << standardError << quoted;
        };
        row("nothing", u""_s, u""_s, u""_s);
        row("one", u""_s, u"a"_s, u"a"_s);
        row("both outputs", u"a\n"_s, u"b\n"_s, u"a\nb"_s);
        row("empty lines do not count", u"\n\n"_s, u"\n\na\n\nb\n\n"_s, u"a\nb"_s);
        row("ten", u""_s, u"1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n"_s, u"1\n2\n3\n4\n5\n6\n7\n8\n9\n10"_s);
        row("eleven", u"0\n"_s, u"1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n"_s,
            u"1\n2\n3\n4\n5\n6\n7\n8\n9\n10"_s);
        row("carriage returns stay", u""_s, u"a\r\n\r\nb\r\n"_s, u"a\r\n\r\nb\r"_s);
    }
    void otherFailuresQuoteTheLastTenLines()
    {
        QFETCH(QString, standardOutput);
        QFETCH(QString, standardError);
        QFETCH(QString, quoted);
        QCOMPARE(told(standardOutput, standardError, 55),
                 u"Upload failed: FTP upload failed (exit code 55):\n"_s + quoted);
    }

    void quotedLinesHoldNoPassword()
    {
        const CurlReport report(ended(56, "> USER me\r\n> PASS secret\r\n< 421 Goodbye\r\n"));
        QCOMPARE(report.failure(u"myserver"_s, u"me"_s)->error.message(),
                 u"FTP upload failed (exit code 56):\n> USER me\r\n> PASS ********\r\n"
                 "< 421 Goodbye\r"_s);
    }

    void outputThatIsNotUtf8CountsAsEmpty()
    {
        const CurlReport report(ended(0, "530 gr\xfc\xdf", "fine"));
        QCOMPARE(report.text(), u"fine\n"_s);
        QVERIFY(!report.failure(u"myserver"_s, u"me"_s));
    }

    void passwordIsHidden_data()
    {
        QTest::addColumn<QString>("output");
        QTest::addColumn<QString>("hidden");
        const auto row = [](const char *name, const QString &output, const QString &hidden) {
            QTest::newRow(name) << output << hidden;
        };
        row("none", u"* Connected\n"_s, u"* Connected\n"_s);
        row("line feed", u"> USER me\n> PASS secret\n< 230 ok\n"_s,
            u"> USER me\n> PASS ********\n< 230 ok\n"_s);
        row("carriage return and line feed", u"> USER me\r\n> PASS secret\r\n< 230 ok\r\n"_s,
            u"> USER me\r\n> PASS ********\r\n< 230 ok\r\n"_s);
        row("cut off", u"> PASS secr"_s, u"> PASS ********"_s);
        row("cut off at the carriage return", u"> PASS secret\r"_s, u"> PASS ********\r"_s);
        row("empty", u"> PASS \r\n< 530\r\n"_s, u"> PASS ********\r\n< 530\r\n"_s);
        row("empty without blank", u"> PASS\r\n< 530\r\n"_s, u"> PASS ********\r\n< 530\r\n"_s);
        row("blanks inside and around", u"> PASS  a b \r\n"_s, u"> PASS ********\r\n"_s);
        row("carriage return inside", u"> PASS a\rb\r\n"_s, u"> PASS ********\r\n"_s);
        row("weird characters", u"> PASS $1\\0&\"'<>😀\u2028x\r\n"_s, u"> PASS ********\r\n"_s);
        row("words of the verdict", u"> PASS 530 timed out error\n"_s, u"> PASS ********\n"_s);
        row("the marker itself", u"> PASS > PASS x\n"_s, u"> PASS ********\n"_s);
        row("several", u"> PASS a\r\n< 530\r\n> PASS b\r\n"_s,
            u"> PASS ********\r\n< 530\r\n> PASS ********\r\n"_s);
        row("behind the progress meter", u"\r  0  300k    0  0:00:01 --:--:--     0> PASS a\r\n"_s,
            u"\r  0  300k    0  0:00:01 --:--:--     0> PASS ********\r\n"_s);
        row("other command", u"> PASV\r\n> PASSIVE x\r\n"_s, u"> PASV\r\n> PASSIVE x\r\n"_s);
        row("to an HTTP proxy",
            u"> PUT ftp://x/a HTTP/1.1\r\n> Authorization: Basic bWU6c2VjcmV0\r\n"_s,
            u"> PUT ftp://x/a HTTP/1.1\r\n> Authorization: Basic ********\r\n"_s);
        row("answer", u"< 331 PASS please\r\n"_s, u"< 331 PASS please\r\n"_s);
    }
    void passwordIsHidden()
    {
        QFETCH(QString, output);
        QFETCH(QString, hidden);
        QCOMPARE(CurlReport(QString(), output, 0).text(), u'\n' + hidden);
    }
};

TESSERY_TEST_MAIN(QCoreApplication, CurlReportTest)
#include "CurlReportTest.moc"
