#include "support/TestMain.h"
#include "upload/CurlCommand.h"

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
    const std::optional<UploadError> error = CurlCommand::verdict(
        {.standardOutput = standardOutput, .standardError = standardError}, status, u"myserver"_s);
    return error ? error->errorDescription() : QString();
}

} // namespace

class CurlVerdictTest : public QObject {
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

    void successAtTheSecondAddressIsAConnectionFailure()
    {
        QCOMPARE(told(QString(),
                      u"* connect to ::1 port 21 failed: Connection refused\n"
                      "* Connected to x.org (127.0.0.1) port 21\r\n< 226 ok\r\n"_s,
                      0),
                 kConnection);
    }

    void passwordThatLooksLikeARuleDoesNotMatter()
    {
        ProcessOutcome outcome;
        outcome.standardError = "> PASS 530 error timed out Connection refused\r\n< 226 ok\r\n";
        QVERIFY(!CurlCommand::verdict(CurlCommand::output(outcome), 0, u"myserver"_s));
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
        ProcessOutcome outcome;
        outcome.standardError = "> USER me\r\n> PASS secret\r\n< 421 Goodbye\r\n";
        const auto error = CurlCommand::verdict(CurlCommand::output(outcome), 56, u"myserver"_s);
        QCOMPARE(error->message(),
                 u"FTP upload failed (exit code 56):\n> USER me\r\n> PASS ********\r\n"
                 "< 421 Goodbye\r"_s);
    }

    void outputThatIsNotUtf8CountsAsEmpty()
    {
        ProcessOutcome outcome;
        outcome.standardOutput = "fine";
        outcome.standardError = "530 gr\xfc\xdf";
        const CurlCommand::Output output = CurlCommand::output(outcome);
        QCOMPARE(output.combined(), u"fine\n"_s);
        QVERIFY(!CurlCommand::verdict(output, 0, u"myserver"_s));
    }
};

TESSERY_TEST_MAIN(QCoreApplication, CurlVerdictTest)
#include "CurlVerdictTest.moc"
