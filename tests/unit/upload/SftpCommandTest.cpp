#include "support/TestMain.h"
#include "upload/SftpCommand.h"

using namespace Qt::StringLiterals;

class SftpCommandTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    void batchText_data()
    {
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("text");
        QTest::newRow("plain") << u"/pub"_s << u"/tmp/shot.png"_s << u"abc.png"_s
                               << u"cd /pub\nput \"/tmp/shot.png\" \"abc.png\"\nbye"_s;
        QTest::newRow("quotes are escaped in the folder")
            << u"/a\"b\"\"c"_s << u"/f"_s << u"n"_s
            << u"cd /a\\\"b\\\"\\\"c\nput \"/f\" \"n\"\nbye"_s;
        QTest::newRow("blanks stay unquoted in the folder")
            << u"/my folder"_s << u"/f"_s << u"n"_s << u"cd /my folder\nput \"/f\" \"n\"\nbye"_s;
        QTest::newRow("empty folder")
            << u""_s << u"/f"_s << u"n"_s << u"cd \nput \"/f\" \"n\"\nbye"_s;
        QTest::newRow("the folder is not trimmed")
            << u" /a "_s << u"/f"_s << u"n"_s << u"cd  /a \nput \"/f\" \"n\"\nbye"_s;
        QTest::newRow("quotes stay as they are in the names")
            << u"/"_s << u"/a \"b\".png"_s << u"c \"d\".png"_s
            << u"cd /\nput \"/a \"b\".png\" \"c \"d\".png\"\nbye"_s;
        QTest::newRow("not ASCII")
            << u"/ü"_s << u"/📸"_s << u"é"_s << u"cd /ü\nput \"/📸\" \"é\"\nbye"_s;
    }
    void batchText()
    {
        QFETCH(QString, folder);
        QFETCH(QString, file);
        QFETCH(QString, name);
        QTEST(SftpCommand::batchText(folder, file, name), "text");
    }

    void arguments()
    {
        UploadSettings settings;
        settings.hostname = u" my host"_s;
        settings.port = 2222;
        settings.username = u"me "_s;
        const QStringList expected = {u"-b"_s,
                                      u"/t/sftp_batch_X.txt"_s,
                                      u"-oPort=2222"_s,
                                      u"-oStrictHostKeyChecking=no"_s,
                                      u"-oUserKnownHostsFile=/dev/null"_s,
                                      u"-oBatchMode=yes"_s,
                                      u"-oConnectTimeout=30"_s,
                                      u"me @ my host"_s};
        QCOMPARE(SftpCommand::arguments(settings, u"/t/sftp_batch_X.txt"_s, {}), expected);
    }

    void verdict_data()
    {
        QTest::addColumn<QByteArray>("standardError");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("message"); // Empty for success.
        const QByteArray notice = "Warning: Permanently added '[127.0.0.1]:2' (ED25519)\r\n";
        QTest::newRow("silence") << QByteArray() << 0 << QString();
        QTest::newRow("new host key") << notice << 0 << QString();
        QTest::newRow("new host key among other words")
            << QByteArray("banner\r\n" + notice + "Permission denied") << 0 << QString();
        QTest::newRow("refusal") << QByteArray("me@h: Permission denied (publickey).\r\n") << 255
                                 << u"me@h: Permission denied (publickey).\r\n"_s;
        QTest::newRow("any word is a failure") << QByteArray("hello\n") << 0 << u"hello\n"_s;
        QTest::newRow("silent failure")
            << QByteArray() << 1 << u"SFTP process exited with code 1"_s;
        QTest::newRow("failure after the notice") << QByteArray(notice + "Couldn't canonicalize")
                                                  << 255 << u"SFTP process exited with code 255"_s;
        QTest::newRow("not UTF-8, success") << QByteArray("gr\xfc\xdf") << 0 << QString();
        QTest::newRow("not UTF-8, failure")
            << QByteArray("gr\xfc\xdf") << 2 << u"SFTP process exited with code 2"_s;
    }
    void verdict()
    {
        QFETCH(QByteArray, standardError);
        QFETCH(int, status);
        QFETCH(QString, message);
        ProcessOutcome outcome;
        outcome.ending = ProcessOutcome::Ending::Exited;
        outcome.status = status;
        outcome.standardOutput = "Permission denied";
        outcome.standardError = standardError;
        const std::optional<UploadError> error = SftpCommand::verdict(outcome);
        QCOMPARE(error.has_value(), !message.isEmpty());
        if (error)
            QVERIFY(*error == UploadError::uploadFailed(message));
    }

    void refusedKeysAreToldFromOtherFailures_data()
    {
        QTest::addColumn<QByteArray>("standardError");
        QTest::addColumn<int>("status");
        QTest::addColumn<bool>("areRefused");
        QTest::newRow("refused") << QByteArray(
            "Warning: Permanently added 'h'\r\nme@h: Permission denied (publickey).")
                                 << 255 << true;
        QTest::newRow("too many") << QByteArray("Received disconnect from 127.0.0.1 port 2:2: Too "
                                                "many authentication failures")
                                  << 255 << true;
        QTest::newRow("accepted") << QByteArray("banner: Permission denied\n") << 0 << false;
        QTest::newRow("closed folder")
            << QByteArray("dest open \"/x/a.png\": Permission denied") << 1 << false;
        QTest::newRow("unreachable") << QByteArray("Connection closed") << 255 << false;
        QTest::newRow("silence") << QByteArray() << 1 << false;
    }
    void refusedKeysAreToldFromOtherFailures()
    {
        QFETCH(QByteArray, standardError);
        QFETCH(int, status);
        ProcessOutcome outcome;
        outcome.ending = ProcessOutcome::Ending::Exited;
        outcome.status = status;
        outcome.standardError = standardError;
        QTEST(SftpCommand::areKeysRefused(outcome), "areRefused");
    }

    void deathBySignalTellsTheSignal()
    {
        ProcessOutcome outcome;
        outcome.ending = ProcessOutcome::Ending::Crashed;
        outcome.status = 13;
        outcome.standardError = "Warning: Permanently added 'h' (ED25519)\r\n";
        const std::optional<UploadError> error = SftpCommand::verdict(outcome);
        QVERIFY(error);
        QCOMPARE(error->message(), u"SFTP process exited with code 13"_s);
    }
};

TESSERY_TEST_MAIN(QCoreApplication, SftpCommandTest)
#include "SftpCommandTest.moc"
