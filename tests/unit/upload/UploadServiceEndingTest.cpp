#include "StandInTools.h"
#include "support/CapturedOutput.h"
#include "support/TestMain.h"

#include <QElapsedTimer>
#include <QTimer>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;
using ServerType = UploadSettings::ServerType;

/// How uploads end early, fail to begin, and live side by side.
class UploadServiceEndingTest : public QObject {
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

    void limitsAreTheAgreedOnes()
    {
        const UploadLimits limits;
        QCOMPARE(limits.curlProcess, 70s);
        QCOMPARE(limits.curlTransfer, 60s);
        QCOMPARE(limits.curlConnect, 30s);
        QCOMPARE(limits.keysProcess, 60s);
        QCOMPARE(limits.passwordProcess, 70s);
        QCOMPARE(limits.passwordPrompt, 60s);
        QCOMPARE(limits.sftpConnect, 30s);
    }

    void toolsAreTheSystemsOwn()
    {
        const UploadService::Environment environment;
        QCOMPARE(environment.curl, u"/usr/bin/curl"_s);
        QCOMPARE(environment.sftp, u"/usr/bin/sftp"_s);
        QCOMPARE(environment.expect,
                 QStringList({u"/usr/bin/expect"_s, u"/opt/homebrew/bin/expect"_s,
                              u"/usr/local/bin/expect"_s}));
    }

    void curlKilledIsAFailureWithTheSignalsNumber()
    {
        m_tools->makeTool(u"curl"_s, "kill -PIPE $$");
        QCOMPARE(m_tools->upload(ServerType::ftp),
                 u"Upload failed: FTP upload failed (exit code 13):\n"_s);
    }

    void missingCurlIsReportedAtOnce()
    {
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(m_tools->upload(ServerType::ftp),
                 u"Could not start "_s + m_tools->environment.curl
                     + u": No such file or directory"_s);
        QVERIFY2(timer.elapsed() < 100, QByteArray::number(timer.elapsed()).constData());
    }

    void missingSftpAndExpectAreReportedAtOnce()
    {
        m_tools->environment.expect = QStringList();
        m_tools->makeKeysFolder();
        const CapturedOutput output;
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(m_tools->upload(ServerType::sftp),
                 u"Upload failed: expect is not installed. Install it with 'brew install expect' "
                 "or use SSH key authentication"_s);
        QVERIFY2(timer.elapsed() < 100, QByteArray::number(timer.elapsed()).constData());
        QCOMPARE(output.lines(),
                 QStringList({u"SSH key auth failed, trying password: Could not start "_s
                              + m_tools->environment.sftp + u": No such file or directory"_s}));
    }

    void keysThatTakeTooLongAreFollowedByThePassword()
    {
        m_tools->makeKeysFolder();
        m_tools->environment.limits.keysProcess = 200ms;
        m_tools->makeTool(u"sftp"_s, "[ $1 = -b ] && exec sleep 30; exit 0");
        const CapturedOutput output;
        QCOMPARE(m_tools->upload(ServerType::sftp), QString());
        QCOMPARE(output.lines(),
                 QStringList({u"SSH key auth failed, trying password: Connection timed out"_s}));
    }

    void sftpKilledIsAFailureWithTheSignalsNumber()
    {
        m_tools->makeKeysFolder();
        m_tools->makeTool(u"sftp"_s, "kill -PIPE $$");
        const CapturedOutput output;
        QCOMPARE(m_tools->upload(ServerType::sftp),
                 u"Upload failed: SFTP authentication or upload failed"_s);
        QCOMPARE(output.lines(),
                 QStringList({u"SSH key auth failed, trying password: Upload failed: SFTP process "
                              "exited with code 13"_s}));
    }

    void missingExpectIsTold()
    {
        m_tools->environment.expect = QStringList({u"/nowhere/expect"_s});
        QCOMPARE(m_tools->upload(ServerType::sftp),
                 u"Upload failed: expect is not installed. Install it with 'brew install expect' "
                 "or use SSH key authentication"_s);
    }

    void toolThatNeverEndsIsEndedAtItsLimit_data()
    {
        QTest::addColumn<ServerType>("type");
        QTest::newRow("curl") << ServerType::ftp;
        QTest::newRow("expect") << ServerType::sftp;
    }
    void toolThatNeverEndsIsEndedAtItsLimit()
    {
        QFETCH(ServerType, type);
        m_tools->environment.limits.curlProcess = 200ms;
        m_tools->environment.limits.passwordProcess = 200ms;
        m_tools->makeTool(u"curl"_s, "exec sleep 30");
        m_tools->makeTool(u"sftp"_s, "exec sleep 30");
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(m_tools->upload(type), u"Connection timed out"_s);
        QVERIFY(timer.elapsed() >= 200);
        QVERIFY(timer.elapsed() < 2000);
    }

    void quittingEndsTheUpload_data()
    {
        QTest::addColumn<ServerType>("type");
        QTest::addColumn<bool>("hasKeys");
        QTest::newRow("curl") << ServerType::ftp << false;
        QTest::newRow("keys") << ServerType::sftp << true;
        QTest::newRow("password") << ServerType::sftp << false;
    }
    void quittingEndsTheUpload()
    {
        QFETCH(ServerType, type);
        QFETCH(bool, hasKeys);
        if (hasKeys)
            m_tools->makeKeysFolder();
        m_tools->makeTool(u"curl"_s, "echo > $SEEN/curl; exec sleep 30");
        m_tools->makeTool(u"sftp"_s, "echo > $SEEN/sftp; exec sleep 30");
        std::stop_source source;
        m_tools->environment.stop = source.get_token();
        QTimer watch;
        watch.callOnTimeout(this, [this, &source] {
            if (!m_tools->namesIn(u"seen"_s).isEmpty())
                source.request_stop();
        });
        watch.start(10ms);
        const CapturedOutput output;
        QCOMPARE(m_tools->upload(type), u"Upload failed: Cancelled because Tessery is quitting"_s);
        QVERIFY(!output.bytes().contains("trying password"));
    }

    void nothingIsStartedOnceQuitting()
    {
        m_tools->makeKeysFolder();
        m_tools->makeTool(u"sftp"_s, "echo > $SEEN/sftp");
        std::stop_source source;
        source.request_stop();
        m_tools->environment.stop = source.get_token();
        QCOMPARE(m_tools->upload(ServerType::sftp),
                 u"Upload failed: Cancelled because Tessery is quitting"_s);
        QCOMPARE(m_tools->namesIn(u"seen"_s), QStringList());
    }

    void temporaryFileThatCannotBeMadeIsReported_data()
    {
        QTest::addColumn<ServerType>("type");
        QTest::addColumn<QString>("name");
        QTest::newRow("credentials") << ServerType::ftp << u".netrc_"_s;
        QTest::newRow("batch") << ServerType::sftp << u"sftp_batch_"_s;
    }
    void temporaryFileThatCannotBeMadeIsReported()
    {
        QFETCH(ServerType, type);
        QFETCH(QString, name);
        m_tools->makeTool(u"curl"_s, "echo > $SEEN/curl");
        m_tools->makeTool(u"sftp"_s, "echo > $SEEN/sftp");
        m_tools->environment.temporaryFolder = u"/nowhere"_s;
        const QString failure = m_tools->upload(type);
        QVERIFY2(failure.startsWith(u"Could not create /nowhere/"_s + name), qPrintable(failure));
        QVERIFY(failure.endsWith(u": No such file or directory"_s));
        QCOMPARE(m_tools->namesIn(u"seen"_s), QStringList());
    }

    void uploadsAtTheSameTimeAreIndependent()
    {
        m_tools->makeTool(u"curl"_s,
                          "sleep 0.2; for last; do :; done; "
                          "while [ \"$1\" != --netrc-file ]; do shift; done; "
                          "cat \"$2\" > $SEEN/${last##*/}; exit ${last##*/}");
        UploadService service(m_tools->environment);
        m_tools->settings.serverType = ServerType::ftp;
        std::vector<QCoro::Task<QString>> tasks;
        for (int i = 1; i <= 20; ++i)
            tasks.push_back(StandInTools::resultOf(
                service.upload(m_tools->file, m_tools->settings, QString::number(i))));
        QCOMPARE(m_tools->namesIn(u"tmp"_s).size(), 20);
        for (int i = 1; i <= 20; ++i) {
            QCOMPARE(QCoro::waitFor(tasks.at(static_cast<std::size_t>(i - 1))),
                     u"Upload failed: FTP upload failed (exit code %1):\n"_s.arg(i));
            QCOMPARE(m_tools->seen(QString::number(i)),
                     "machine my.host\nlogin me\npassword sesame");
        }
    }

private:
    std::unique_ptr<StandInTools> m_tools;
};

TESSERY_TEST_MAIN(QCoreApplication, UploadServiceEndingTest)
#include "UploadServiceEndingTest.moc"
