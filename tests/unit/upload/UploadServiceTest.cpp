#include "StandInTools.h"
#include "support/CapturedOutput.h"
#include "support/TestMain.h"

#include <QRegularExpression>
#include <QTimer>

using namespace Qt::StringLiterals;
using ServerType = UploadSettings::ServerType;

namespace {

const QString kUuid = u"[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12}"_s;

} // namespace

/// What the routes hand to the tools, and what they make of the results.
class UploadServiceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        m_tools = std::make_unique<StandInTools>();
    }
    void cleanup()
    {
        QCOMPARE(m_tools->namesIn(u"tmp"_s), QStringList());
        m_tools.reset();
    }

    void ftpAndFtpsTakeTheCurlRoute_data()
    {
        QTest::addColumn<ServerType>("type");
        QTest::newRow("FTP") << ServerType::ftp;
        QTest::newRow("FTPS") << ServerType::ftps;
    }
    void ftpAndFtpsTakeTheCurlRoute()
    {
        QFETCH(ServerType, type);
        m_tools->makeTool(u"curl"_s, "echo > $SEEN/curl");
        m_tools->makeTool(u"sftp"_s, "echo > $SEEN/sftp");
        m_tools->makeKeysFolder();
        QCOMPARE(m_tools->upload(type), QString());
        QCOMPARE(m_tools->namesIn(u"seen"_s), QStringList({u"curl"_s}));
    }

    void sftpNeverReachesCurl()
    {
        m_tools->makeTool(u"curl"_s, "echo > $SEEN/curl");
        m_tools->makeTool(u"sftp"_s, "echo > $SEEN/sftp");
        m_tools->makeKeysFolder();
        QCOMPARE(m_tools->upload(ServerType::sftp), QString());
        QCOMPARE(m_tools->namesIn(u"seen"_s), QStringList({u"sftp"_s}));
    }

    void curlGetsItsArgumentsAndCredentials()
    {
        m_tools->settings.hostname = u" ftp://my.host/ "_s;
        m_tools->makeTool(u"curl"_s,
                          "printf '%s\\n' \"$@\" > $SEEN/arguments; "
                          "while [ \"$1\" != --netrc-file ]; do shift; done; "
                          "stat -c %a \"$2\" > $SEEN/mode; cat \"$2\" > $SEEN/netrc");
        QCOMPARE(m_tools->upload(ServerType::ftp), QString());
        QStringList arguments = QString::fromUtf8(m_tools->seen(u"arguments"_s)).split(u'\n');
        const QRegularExpression netrc(
            u"^"_s + QRegularExpression::escape(m_tools->path(u"tmp/.netrc_"_s)) + kUuid + u'$');
        QVERIFY2(netrc.match(arguments.at(4)).hasMatch(), qPrintable(arguments.at(4)));
        arguments.removeAt(4);
        QCOMPARE(arguments,
                 QStringList({u"--ftp-pasv"_s, u"-T"_s, u"/tmp/my \\[shot\\].png"_s,
                              u"--netrc-file"_s, u"--max-time"_s, u"60"_s, u"--connect-timeout"_s,
                              u"30"_s, u"-v"_s, u"ftp://my.host:22/a%20b.png"_s, QString()}));
        QCOMPARE(m_tools->seen(u"netrc"_s), "machine my.host\nlogin me\npassword sesame");
        QCOMPARE(m_tools->seen(u"mode"_s), "600\n");
    }

    void curlCommandAndOutputAreLoggedWithoutSecrets()
    {
        m_tools->makeTool(u"curl"_s, "echo out; printf '> PASS sesame\\r\\n< 226 ok\\r\\n' >&2");
        const CapturedOutput output;
        QCOMPARE(m_tools->upload(ServerType::ftp), QString());
        const QByteArray expected = "🔍 Executing: " + QFile::encodeName(m_tools->environment.curl)
            + " --ftp-pasv -T \"/tmp/my \\[shot\\].png\" [netrc-file] [netrc-file] --max-time 60 "
              "--connect-timeout 30 -v ftp://my.host:22/a%20b.png\n"
              "📋 Full curl output:\nout\n\n> PASS ********\r\n< 226 ok\r\n\n";
        QCOMPARE(QString::fromUtf8(output.bytes()), QString::fromUtf8(expected));
    }

    void absentPasswordIsEmpty()
    {
        m_tools->platform.fakeSecrets->items.clear();
        m_tools->makeTool(u"curl"_s,
                          "while [ \"$1\" != --netrc-file ]; do shift; done; "
                          "cat \"$2\" > $SEEN/netrc");
        QCOMPARE(m_tools->upload(ServerType::ftp), QString());
        QCOMPARE(m_tools->seen(u"netrc"_s), "machine my.host\nlogin me\npassword ");
    }

    void curlFailureIsTold()
    {
        m_tools->makeTool(u"curl"_s, "echo '* nothing' >&2; exit 9");
        QCOMPARE(m_tools->upload(ServerType::ftp),
                 u"Upload failed: FTP upload failed (exit code 9):\n* nothing"_s);
    }

    void failureInSpiteOfExitCodeZeroIsExplainedInTheLog()
    {
        m_tools->makeTool(u"curl"_s, "echo '* We sent 530 bytes' >&2");
        const CapturedOutput output;
        QCOMPARE(m_tools->upload(ServerType::ftp), u"Authentication failed"_s);
        QCOMPARE(output.lines().last(),
                 u"⚠️ curl ended without an error, but its report says '530', which counts as a "
                 "failure"_s);
    }

    void failureWithAnExitCodeNeedsNoExplanation()
    {
        m_tools->makeTool(u"curl"_s, "echo '* 530' >&2; exit 67");
        const CapturedOutput output;
        QCOMPARE(m_tools->upload(ServerType::ftp), u"Authentication failed"_s);
        QVERIFY(!output.bytes().contains("⚠️"));
    }

    void passwordIsNeitherLoggedNorShown_data()
    {
        QTest::addColumn<ServerType>("type");
        QTest::newRow("curl") << ServerType::ftp;
        QTest::newRow("sftp") << ServerType::sftp;
    }
    void passwordIsNeitherLoggedNorShown()
    {
        QFETCH(ServerType, type);
        m_tools->makeKeysFolder();
        const QByteArray words = "echo 'x://me:other@h sesame ses%61me bWU6c2VzYW1l' >&2; exit 9";
        m_tools->makeTool(u"curl"_s, words);
        m_tools->makeTool(u"sftp"_s, words);
        m_tools->file = QUrl::fromLocalFile(u"/tmp/sesame.png"_s);
        const CapturedOutput output;
        const QString told = m_tools->upload(type);
        const QString logged = QString::fromUtf8(output.bytes());
        QVERIFY2(logged.contains(u"x://me:********@h ******** ses%61me ********"_s),
                 qPrintable(logged));
        for (const QString &text : {told, logged}) {
            QVERIFY2(!text.contains(u"sesame"_s), qPrintable(text));
            QVERIFY2(!text.contains(u"other"_s), qPrintable(text));
            QVERIFY2(!text.contains(u"bWU6c2VzYW1l"_s), qPrintable(text));
        }
    }

    void maskingDoesNotChangeTheVerdict()
    {
        m_tools->setPassword("226");
        m_tools->makeTool(u"curl"_s, "echo '< 226 Connection refused' >&2");
        const CapturedOutput output;
        QCOMPARE(m_tools->upload(ServerType::ftp),
                 u"Connection failed: Could not connect to server. Check hostname and port."_s);
        m_tools->setPassword("Connection refused");
        QCOMPARE(m_tools->upload(ServerType::ftp),
                 u"Connection failed: Could not connect to server. Check hostname and port."_s);
        QVERIFY(output.bytes().contains("< ******** Connection refused\n"));
        QVERIFY(output.bytes().contains("< 226 ********\n"));
    }

    void whatIsRefusedStartsAndWritesNothing_data()
    {
        QTest::addColumn<ServerType>("type");
        QTest::newRow("FTP") << ServerType::ftp;
        QTest::newRow("FTPS") << ServerType::ftps;
        QTest::newRow("SFTP") << ServerType::sftp;
    }
    void whatIsRefusedStartsAndWritesNothing()
    {
        QFETCH(ServerType, type);
        m_tools->makeKeysFolder();
        m_tools->makeTool(u"curl"_s, "echo > $SEEN/curl");
        m_tools->makeTool(u"sftp"_s, "echo > $SEEN/sftp");
        m_tools->file = QUrl::fromLocalFile(u"/tmp/Screenshot\"*\n!touch PWNED\nbye\n.png"_s);
        const CapturedOutput output;
        QCOMPARE(m_tools->upload(type),
                 u"Upload failed: The file '/tmp/Screenshot\"*\\x0A!touch PWNED\\x0Abye\\x0A.png' "
                 "holds a control character"_s);
        QCOMPARE(m_tools->namesIn(u"seen"_s), QStringList());
        QCOMPARE(output.lines(), QStringList());
    }

    void refusalShowsNoPassword()
    {
        m_tools->settings.hostname = u"me:sesame@my.host"_s;
        QCOMPARE(m_tools->upload(ServerType::ftp),
                 u"Upload failed: The hostname 'me:********@my.host' is no valid host name"_s);
    }

    void passwordOfTheStartServesToTheEnd()
    {
        m_tools->makeKeysFolder();
        m_tools->makeTool(u"sftp"_s,
                          "if [ $1 = -b ]; then touch $SEEN/begun; "
                          "until [ -e $SEEN/go ]; do sleep 0.02; done; exit 1; fi; "
                          "stty -echo; printf 'password: '; IFS= read -r line; "
                          "printf '%s' \"$line\" > $SEEN/typed");
        QTimer poll;
        poll.callOnTimeout([this, &poll] {
            if (!m_tools->namesIn(u"seen"_s).contains(u"begun"_s))
                return;
            poll.stop();
            m_tools->setPassword("another");
            QVERIFY(QFile(m_tools->path(u"seen/go"_s)).open(QIODevice::WriteOnly));
        });
        poll.start(std::chrono::milliseconds(10));
        const CapturedOutput output;
        QCOMPARE(m_tools->upload(ServerType::sftp), QString());
        QCOMPARE(m_tools->seen(u"typed"_s), "sesame");
    }

    void noDialogTakesThePlaceOfThePrompt()
    {
        qputenv("SSH_ASKPASS_REQUIRE", "force");
        m_tools->makeTool(u"sftp"_s, "printf '%s' \"$SSH_ASKPASS_REQUIRE\" > $SEEN/askpass");
        QCOMPARE(m_tools->upload(ServerType::sftp), QString());
        qunsetenv("SSH_ASKPASS_REQUIRE");
        QCOMPARE(m_tools->seen(u"askpass"_s), "never");
    }

    void withoutKeysFolderThePasswordIsUsedAtOnce()
    {
        m_tools->makeTool(u"sftp"_s, "printf '%s\\n' \"$@\" > $SEEN/arguments");
        const CapturedOutput output;
        QCOMPARE(m_tools->upload(ServerType::sftp), QString());
        QVERIFY(m_tools->seen(u"arguments"_s).startsWith("-oBatchMode=no\n"));
        QCOMPARE(output.lines(), QStringList());
    }

    void keysFolderMayBeAFile()
    {
        const TemporaryFile file(m_tools->path(u"home/.ssh"_s), "");
        m_tools->makeTool(u"sftp"_s, "printf '%s\\n' \"$@\" > $SEEN/arguments");
        QCOMPARE(m_tools->upload(ServerType::sftp), QString());
        QVERIFY(m_tools->seen(u"arguments"_s).startsWith("-b\n"));
    }

    void sftpGetsItsArgumentsAndBatch()
    {
        m_tools->makeKeysFolder();
        m_tools->settings.remotePath = u"/my pub"_s;
        m_tools->makeTool(u"sftp"_s,
                          "printf '%s\\n' \"$@\" > $SEEN/arguments; cat \"$2\" > $SEEN/batch; "
                          "stat -c %a \"$2\" > $SEEN/mode; "
                          "echo 'Warning: Permanently added x' >&2");
        QCOMPARE(m_tools->upload(ServerType::sftp), QString());
        QStringList arguments = QString::fromUtf8(m_tools->seen(u"arguments"_s)).split(u'\n');
        const QRegularExpression batch(
            u"^"_s + QRegularExpression::escape(m_tools->path(u"tmp/sftp_batch_"_s)) + kUuid
            + u"\\.txt$"_s);
        QVERIFY2(batch.match(arguments.at(1)).hasMatch(), qPrintable(arguments.at(1)));
        arguments.removeAt(1);
        QCOMPARE(arguments,
                 QStringList({u"-b"_s, u"-oPort=22"_s, u"-oStrictHostKeyChecking=no"_s,
                              u"-oUserKnownHostsFile=/dev/null"_s, u"-oBatchMode=yes"_s,
                              u"-oConnectTimeout=30"_s, u"me@my.host"_s, QString()}));
        QCOMPARE(m_tools->seen(u"batch"_s),
                 "cd /my pub\nput \"/tmp/my [shot].png\" \"a b.png\"\nbye");
        QCOMPARE(m_tools->seen(u"mode"_s), "600\n");
    }

    void refusedKeysAreFollowedByThePassword()
    {
        m_tools->makeKeysFolder();
        m_tools->makeTool(u"sftp"_s,
                          "[ $1 = -b ] || exit 0; echo 'me@h: Permission denied.' >&2; exit 255");
        const CapturedOutput output;
        QCOMPARE(m_tools->upload(ServerType::sftp), QString());
        QCOMPARE(output.bytes(),
                 "SSH key auth failed, trying password: Upload failed: "
                 "me@h: Permission denied.\n\n");
    }

    void resultAfterRefusedKeysIsThePasswords()
    {
        m_tools->makeKeysFolder();
        m_tools->makeTool(u"sftp"_s, "[ $1 = -b ] && exit 3; echo 'Permission denied'");
        const CapturedOutput output;
        QCOMPARE(m_tools->upload(ServerType::sftp), u"Authentication failed"_s);
        QCOMPARE(output.lines(),
                 QStringList({u"SSH key auth failed, trying password: Upload failed: SFTP process "
                              "exited with code 3"_s}));
    }

    void passwordIsTyped()
    {
        m_tools->setPassword("-$es{a}me\\\"");
        m_tools->makeTool(u"sftp"_s,
                          "stty -echo; printf 'password: '; IFS= read -r line; "
                          "printf '%s' \"$line\" > $SEEN/typed; cat \"$4\" > $SEEN/batch; "
                          "stat -c '%a %n' $TMP_SEEN/* > $SEEN/files");
        QCOMPARE(m_tools->upload(ServerType::sftp), QString());
        QCOMPARE(m_tools->seen(u"typed"_s), "-$es{a}me\\\"");
        QCOMPARE(m_tools->seen(u"batch"_s), "cd /\nput \"/tmp/my [shot].png\" \"a b.png\"\nbye");
        const QString folder = QRegularExpression::escape(m_tools->environment.temporaryFolder);
        const QRegularExpression files(u"^600 "_s + folder + u"/sftp_batch_"_s + kUuid
                                       + u"\\.txt\n700 "_s + folder + u"/sftp_expect_"_s + kUuid
                                       + u"\\.sh\n$"_s);
        const QByteArray seen = m_tools->seen(u"files"_s);
        QVERIFY2(files.match(QString::fromUtf8(seen)).hasMatch(), seen.constData());
    }

    void expectFoundElsewhereStillNamesItsUsualPlace()
    {
        const TemporaryFile elsewhere(m_tools->path(u"bin/expect-elsewhere"_s), "");
        m_tools->environment.expect = QStringList({u"/nowhere/expect"_s, elsewhere.path()});
        m_tools->makeTool(u"sftp"_s, "head -n 1 $TMP_SEEN/sftp_expect_* > $SEEN/line");
        QCOMPARE(m_tools->upload(ServerType::sftp), QString());
        QCOMPARE(m_tools->seen(u"line"_s), "#!/usr/bin/expect -f\n");
    }

    void addressesOfFiles_data()
    {
        QTest::addColumn<QUrl>("address");
        QTest::addColumn<QByteArray>("path");
        QTest::newRow("odd characters")
            << QUrl::fromLocalFile(u"/tmp/ä %41#?.png"_s) << QByteArray("/tmp/ä %41#?.png");
        // Whole, since a file of ours may have the same path.
        QTest::newRow("web address") << QUrl(u"https://example.org/a%20b.png"_s)
                                     << QByteArray("https://example.org/a%20b.png");
    }
    void addressesOfFiles()
    {
        QFETCH(QUrl, address);
        QFETCH(QByteArray, path);
        m_tools->file = address;
        m_tools->makeTool(u"curl"_s,
                          "while [ \"$1\" != -T ]; do shift; done; "
                          "printf '%s' \"$2\" > $SEEN/file");
        QCOMPARE(m_tools->upload(ServerType::ftp), QString());
        QCOMPARE(m_tools->seen(u"file"_s), path);
    }

private:
    std::unique_ptr<StandInTools> m_tools;
};

TESSERY_TEST_MAIN(QCoreApplication, UploadServiceTest)
#include "UploadServiceTest.moc"
