#include "base/TemporaryFile.h"
#include "support/TestMain.h"
#include "upload/ExpectScript.h"

#include <QCoro/QCoroTask>
#include <QTemporaryDir>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

class ExpectScriptTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    void escapeForExpect_data()
    {
        QTest::addColumn<QString>("password");
        QTest::addColumn<QString>("escaped");
        QTest::newRow("empty") << u""_s << u""_s;
        QTest::newRow("plain") << u"Ab1 é;#%s"_s << u"Ab1 é;#%s"_s;
        QTest::newRow("each of the seven") << u"\\\"$[]{}"_s << u"\\\\\\\"\\$\\[\\]\\{\\}"_s;
        QTest::newRow("backslash and quote") << u"\\\""_s << u"\\\\\\\""_s;
        QTest::newRow("backslashes are not doubled again") << u"\\$"_s << u"\\\\\\$"_s;
        QTest::newRow("line breaks stay") << u"a\nb\rc"_s << u"a\nb\rc"_s;
        QTest::newRow("leading dash stays") << u"-a"_s << u"-a"_s;
    }
    void escapeForExpect()
    {
        QFETCH(QString, password);
        QTEST(ExpectScript::escapeForExpect(password), "escaped");
    }

    void scriptText()
    {
        UploadSettings settings;
        settings.hostname = u"my.host"_s;
        settings.port = 2222;
        settings.username = u"me"_s;
        const QString expected =
            u"#!/usr/bin/expect -f\n"
            "set timeout 60\n"
            "spawn sftp -oBatchMode=no -oPreferredAuthentications=keyboard-interactive,password "
            "-b \"/t/b c.txt\" -oPort=2222 -oStrictHostKeyChecking=no "
            "-oUserKnownHostsFile=/dev/null -oConnectTimeout=30 me@my.host\n"
            "expect {\n"
            "    timeout {\n"
            "        puts \"Connection timed out\"\n"
            "        exit 1\n"
            "    }\n"
            "    \"password:\" {\n"
            "        send -- \"-pa\\$s\\r\"\n"
            "        exp_continue\n"
            "    }\n"
            "    \"Password:\" {\n"
            "        send -- \"-pa\\$s\\r\"\n"
            "        exp_continue\n"
            "    }\n"
            "    \"Permission denied\" {\n"
            "        exit 2\n"
            "    }\n"
            "    eof\n"
            "}\n"
            "catch wait result\n"
            "if {[llength $result] > 4} { exit 1 }\n"
            "exit [lindex $result 3]"_s;
        QCOMPARE(ExpectScript::text(settings, u"/t/b c.txt"_s, u"-pa$s"_s, {}), expected);
    }

    void whatTclMightReadStandsInQuotes_data()
    {
        QTest::addColumn<QString>("user");
        QTest::addColumn<QString>("host");
        QTest::addColumn<QString>("destination");
        const auto row = [](const char *name, const QString &user, const QString &host,
                            const QString &destination) {
            QTest::newRow(name) << user << host << destination;
        };
        row("plain", u"me.2_x-y%"_s, u"fe80::1/h.é"_s, u"me.2_x-y%@fe80::1/h.é"_s);
        row("domain", u"DOM\\user"_s, u"h"_s, u"\"DOM\\\\user@h\""_s);
        row("command", u"me"_s, u"h[exec touch x]"_s, u"\"me@h\\[exec touch x\\]\""_s);
        row("variable", u"$env(HOME)"_s, u"h"_s, u"\"\\$env(HOME)@h\""_s);
        row("second command", u"me"_s, u"h;exit"_s, u"\"me@h;exit\""_s);
        row("quotation mark", u"m\"e"_s, u"h"_s, u"\"m\\\"e@h\""_s);
        row("version 6", u"me"_s, u"[::1]"_s, u"\"me@\\[::1\\]\""_s);
        row("expansion", u"{*}me"_s, u"h"_s, u"\"\\{*\\}me@h\""_s);
    }
    void whatTclMightReadStandsInQuotes()
    {
        QFETCH(QString, user);
        QFETCH(QString, host);
        QFETCH(QString, destination);
        UploadSettings settings;
        settings.hostname = host;
        settings.username = user;
        const QString script = ExpectScript::text(settings, u"/t/b"_s, u"pw"_s, {});
        const QString spawn = script.section(u'\n', 2, 2);
        QVERIFY2(spawn.endsWith(u" -oConnectTimeout=30 "_s + destination), qPrintable(spawn));
    }

    void batchPathIsNoCommandEither()
    {
        const QString script = ExpectScript::text({}, u"/t/[exec touch x]$a\"/b"_s, u"pw"_s, {});
        QVERIFY(script.contains(u" -b \"/t/\\[exec touch x\\]\\$a\\\"/b\" "_s));
    }

    void findExpectTakesTheFirstThatExists()
    {
        QTemporaryDir folder;
        const QStringList paths = {folder.filePath(u"1"_s), folder.filePath(u"2"_s),
                                   folder.filePath(u"3"_s)};
        QVERIFY(!ExpectScript::findExpect({}));
        QVERIFY(!ExpectScript::findExpect(paths));
        const TemporaryFile third(paths.at(2), "");
        QCOMPARE(ExpectScript::findExpect(paths), paths.at(2));
        const TemporaryFile second(paths.at(1), "");
        QCOMPARE(ExpectScript::findExpect(paths), paths.at(1));
    }

    void verdict_data()
    {
        using Kind = UploadError::Kind;
        QTest::addColumn<QByteArray>("words");
        QTest::addColumn<int>("status");
        QTest::addColumn<std::optional<Kind>>("kind");
        const auto row = [](const char *name, const char *words, int status,
                            std::optional<Kind> kind) {
            QTest::newRow(name) << QByteArray(words) << status << kind;
        };
        row("time-out", "x timed out\r\n", 1, Kind::timeout);
        row("file name that reads timed out", "Uploading timed out.png to /", 0, Kind::timeout);
        row("denied", "me@h: Permission denied (password).\r\n", 2, Kind::authenticationFailed);
        row("failed", "Authentication failed.\r\n", 255, Kind::authenticationFailed);
        row("time-out before denied", "Permission denied, timed out", 2, Kind::timeout);
        row("denied in spite of status 0", "Permission denied", 0, Kind::authenticationFailed);
        row("success", "Uploading a to /b\r\n", 0, std::nullopt);
        row("success without a word", "", 0, std::nullopt);
        row("failure", "No such file\r\n", 1, Kind::uploadFailed);
        row("case matters", "Timed Out, permission denied", 0, std::nullopt);
        row("not UTF-8", "gr\xfc\xdf Permission denied", 0, std::nullopt);
    }
    void verdict()
    {
        QFETCH(QByteArray, words);
        QFETCH(int, status);
        QFETCH(std::optional<UploadError::Kind>, kind);
        for (QByteArray ProcessOutcome::*output :
             {&ProcessOutcome::standardOutput, &ProcessOutcome::standardError}) {
            ProcessOutcome outcome;
            outcome.ending = ProcessOutcome::Ending::Exited;
            outcome.status = status;
            outcome.*output = words;
            const std::optional<UploadError> error = ExpectScript::verdict(outcome);
            QCOMPARE(error.has_value(), kind.has_value());
            if (error)
                QCOMPARE(error->kind(), *kind);
            if (kind == UploadError::Kind::uploadFailed)
                QCOMPARE(error->message(), u"SFTP authentication or upload failed"_s);
        }
    }

    void deathBySignalIsAFailure()
    {
        ProcessOutcome outcome;
        outcome.ending = ProcessOutcome::Ending::Crashed;
        outcome.status = 9;
        QCOMPARE(ExpectScript::verdict(outcome)->message(),
                 u"SFTP authentication or upload failed"_s);
    }

    // From here on, expect runs the script with a stand-in for sftp.

    void passwordArrivesUnchanged_data()
    {
        QTest::addColumn<QString>("password");
        for (const char16_t *password :
             {u"plain", u"back\\slash", u"\\x41\\n\\", u"qu\"ote", u"\\\"", u"$HOME ${x} $(y)",
              u"[exit 7]", u"{a}b}{c", u"-dash", u"--", u"-- x", u" blanks  inside ",
              u"semi;colon#", u"%s%d", u"pässwörd📸", u"password:", u"Password: timed out",
              u"Permission denied", u"'`*?~!&|<>()^"})
            QTest::newRow(QString::fromUtf16(password).toUtf8().constData())
                << QString::fromUtf16(password);
        QTest::newRow("500 characters") << QString(500, u'x');
    }
    void passwordArrivesUnchanged()
    {
        QFETCH(QString, password);
        const ProcessOutcome outcome =
            runWith("stty -echo; printf \"me@h's password: \"; IFS= read -r line; "
                    "printf '%s' \"$line\" > \"$HOME/typed\"",
                    password);
        QCOMPARE(outcome.standardError, QByteArray());
        QCOMPARE(outcome.status, 0);
        QFile typed(QDir::homePath() + u"/typed"_s);
        QVERIFY(typed.open(QIODevice::ReadOnly));
        QCOMPARE(QString::fromUtf8(typed.readAll()), password);
    }

    void everyPromptIsAnswered()
    {
        const ProcessOutcome outcome =
            runWith("stty -echo; for prompt in password: Password: password:; do "
                    "printf 'Enter %s ' $prompt; read -r line; printf 'got %s\\n' \"$line\"; done",
                    u"abc"_s);
        QCOMPARE(outcome.status, 0);
        QCOMPARE(outcome.standardOutput.count("got abc"), 3);
    }

    void deniedPermissionEndsTheScript()
    {
        const ProcessOutcome outcome = runWith("echo 'Permission denied'; sleep 30", u"abc"_s);
        QCOMPARE(outcome.status, 2);
    }

    void silenceEndsTheScript()
    {
        const ProcessOutcome outcome = runWith("sleep 30", u"abc"_s);
        QCOMPARE(outcome.status, 1);
        QVERIFY(outcome.standardOutput.contains("Connection timed out"));
    }

    void statusOfSftpIsTheScripts_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<int>("status");
        QTest::newRow("0") << QByteArray("exit 0") << 0;
        QTest::newRow("1") << QByteArray("exit 1") << 1;
        QTest::newRow("255") << QByteArray("exit 255") << 255;
        for (const char *signal : {"PIPE", "KILL", "TERM", "SEGV"})
            QTest::newRow(signal) << QByteArray("kill -") + signal + " $$" << 1;
    }
    void statusOfSftpIsTheScripts()
    {
        QFETCH(QByteArray, body);
        QTEST(runWith(body, u"abc"_s).status, "status");
    }

    void argumentsReachSftp()
    {
        const ProcessOutcome outcome = runWith("printf '<%s>\\n' \"$@\"", u"abc"_s);
        QVERIFY2(outcome.standardOutput.contains(
                     "<-oBatchMode=no>\r\n"
                     "<-oPreferredAuthentications=keyboard-interactive,password>\r\n<-b>\r\n</t/b "
                     "c.txt>\r\n<-oPort=22>\r\n"
                     "<-oStrictHostKeyChecking=no>\r\n<-oUserKnownHostsFile=/dev/null>\r\n"
                     "<-oConnectTimeout=30>\r\n<me@my.host>\r\n"),
                 outcome.standardOutput.constData());
    }

private:
    /// Runs the script with a shell program as the "sftp" that it finds.
    ProcessOutcome runWith(const QByteArray &body, const QString &password)
    {
        QTemporaryDir folder;
        const TemporaryFile sftp(folder.filePath(u"sftp"_s), "#!/bin/sh\n" + body + '\n',
                                 TemporaryFile::Mode::ReadWriteExecute);
        UploadSettings settings;
        settings.hostname = u"my.host"_s;
        settings.username = u"me"_s;
        UploadLimits limits;
        limits.passwordPrompt = 1s;
        const TemporaryFile script(
            folder.filePath(u"script"_s),
            ExpectScript::text(settings, u"/t/b c.txt"_s, password, limits).toUtf8(),
            TemporaryFile::Mode::ReadWriteExecute);
        const QByteArray path = qgetenv("PATH");
        qputenv("PATH", QByteArray(QFile::encodeName(folder.path()) + ':' + path));
        const ProcessOutcome outcome = QCoro::waitFor(runChildProcess({script.path(), {}, 10s}));
        qputenv("PATH", path);
        return outcome;
    }
};

TESSERY_TEST_MAIN(QCoreApplication, ExpectScriptTest)
#include "ExpectScriptTest.moc"
