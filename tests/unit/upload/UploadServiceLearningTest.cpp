#include "StandInTools.h"
#include "support/CapturedOutput.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using ServerType = UploadSettings::ServerType;

namespace {

// Each appends a letter for what it was asked for. The route with keys begins with "-b".
const QByteArray kKeysRefused = "if [ $1 = -b ]; then printf k >> $SEEN/order; "
                                "echo 'me@h: Permission denied (publickey).' >&2; exit 255; fi; ";
const QByteArray kPasswordTaken = "printf p >> $SEEN/order";

/// A server that expects AUTH TLS: the first letter of the URL's scheme that is its last argument.
const QByteArray kInClearText =
    "for url; do :; done; case $url in "
    "ftps:*) printf i >> $SEEN/order; "
    "echo 'curl: (35) error:0A00010B:SSL routines::wrong version number' >&2; exit 35;; "
    "*) printf e >> $SEEN/order; printf '< 220 hi\\r\\n< 226 ok\\r\\n' >&2;; esac";

} // namespace

/// What an upload has learned about its server serves those after it.
class UploadServiceLearningTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        m_tools = std::make_unique<StandInTools>();
        m_tools->makeKeysFolder();
        m_output = std::make_unique<CapturedOutput>();
    }
    void cleanup()
    {
        QCOMPARE(m_tools->namesIn(u"tmp"_s), QStringList());
        m_output.reset();
        m_tools.reset();
    }

    void afterRefusedKeysThePasswordComesFirst()
    {
        m_tools->makeTool(u"sftp"_s, kKeysRefused + kPasswordTaken);
        QCOMPARE(uploadTimes(3, ServerType::sftp), QStringList(3));
        QCOMPARE(m_tools->seen(u"order"_s), "kppp");
    }

    void tooManyKeysAreRefusedKeys()
    {
        m_tools->makeTool(u"sftp"_s,
                          "if [ $1 = -b ]; then printf k >> $SEEN/order; "
                          "echo 'Warning: Permanently added h' >&2; "
                          "echo 'Received disconnect: Too many authentication failures' >&2; "
                          "exit 255; fi; "
                              + kPasswordTaken);
        QCOMPARE(uploadTimes(2, ServerType::sftp), QStringList(2));
        QCOMPARE(m_tools->seen(u"order"_s), "kpp");
    }

    void keysThatFailForAnotherReasonAreTriedAgain()
    {
        m_tools->makeTool(u"sftp"_s,
                          "if [ $1 = -b ]; then printf k >> $SEEN/order; "
                          "echo 'Connection closed' >&2; exit 255; fi; "
                              + kPasswordTaken);
        QCOMPARE(uploadTimes(2, ServerType::sftp), QStringList(2));
        QCOMPARE(m_tools->seen(u"order"_s), "kpkp");
    }

    void refusedPasswordIsForgotten()
    {
        m_tools->makeTool(u"sftp"_s,
                          kKeysRefused
                              + "printf p >> $SEEN/order; "
                                "[ $(wc -c < $SEEN/order) = 3 ] && echo 'Permission denied'; "
                                "exit 0");
        QCOMPARE(uploadTimes(3, ServerType::sftp),
                 QStringList({QString(), u"Authentication failed"_s, QString()}));
        QCOMPARE(m_tools->seen(u"order"_s), "kppkp");
    }

    void otherAccountBeginsWithItsKeys()
    {
        m_tools->makeTool(u"sftp"_s, kKeysRefused + kPasswordTaken);
        QCOMPARE(uploadTimes(1, ServerType::sftp), QStringList(1));
        m_tools->settings.username = u"you"_s;
        QCOMPARE(uploadTimes(1, ServerType::sftp), QStringList(1));
        QCOMPARE(m_tools->seen(u"order"_s), "kpkp");
    }

    void forgettingBeginsAnew()
    {
        m_tools->makeTool(u"sftp"_s, kKeysRefused + kPasswordTaken);
        QCOMPARE(uploadTimes(1, ServerType::sftp), QStringList(1));
        UploadService(m_tools->environment).forgetServers();
        QCOMPARE(uploadTimes(1, ServerType::sftp), QStringList(1));
        QCOMPARE(m_tools->seen(u"order"_s), "kpkp");
    }

    void serverInClearTextIsAskedForTls()
    {
        m_tools->makeTool(u"curl"_s, kInClearText);
        QCOMPARE(uploadTimes(2, ServerType::ftps), QStringList(2));
        QCOMPARE(m_tools->seen(u"order"_s), "iee");
        const QString said = QString::fromUtf8(m_output->bytes());
        QCOMPARE(said.count(u"⚠️ The server begins in clear text, asking it for TLS\n"_s), 1);
        QCOMPARE(said.count(u"curl --ssl-reqd --ftp-ssl-control "_s), 3);
    }

    void outcomeOfTheSecondAttemptCounts()
    {
        m_tools->makeTool(u"curl"_s,
                          "for url; do :; done; case $url in "
                          "ftps:*) echo 'wrong version number' >&2; exit 35;; "
                          "*) printf '< 220 hi\\r\\n> AUTH TLS\\r\\n< 500 no\\r\\n' >&2; exit 64;; "
                          "esac");
        QCOMPARE(uploadTimes(1, ServerType::ftps),
                 QStringList({u"Upload failed: FTP upload failed (exit code 64):\n"
                              "< 220 hi\r\n> AUTH TLS\r\n< 500 no\r"_s}));
    }

    void serverThatNoLongerSpeaksIsLearnedAnew()
    {
        m_tools->makeTool(u"curl"_s,
                          "[ -e $SEEN/order ] && [ $(wc -c < $SEEN/order) = 2 ] && "
                          "{ printf x >> $SEEN/order; exit 28; }; "
                              + kInClearText);
        const QStringList told = uploadTimes(3, ServerType::ftps);
        QCOMPARE(told,
                 QStringList({QString(), u"Upload failed: FTP upload failed (exit code 28):\n"_s,
                              QString()}));
        QCOMPARE(m_tools->seen(u"order"_s), "iexie");
    }

    void plainFtpIsTriedOnce()
    {
        m_tools->makeTool(u"curl"_s, "printf x >> $SEEN/order; exit 35");
        QCOMPARE(uploadTimes(1, ServerType::ftp),
                 QStringList({u"Upload failed: FTP upload failed (exit code 35):\n"_s}));
        QCOMPARE(m_tools->seen(u"order"_s), "x");
    }

private:
    QStringList uploadTimes(int count, ServerType type)
    {
        QStringList told;
        for (int i = 0; i < count; ++i)
            told << m_tools->upload(type);
        return told;
    }

    std::unique_ptr<StandInTools> m_tools;
    std::unique_ptr<CapturedOutput> m_output;
};

TESSERY_TEST_MAIN(QCoreApplication, UploadServiceLearningTest)
#include "UploadServiceLearningTest.moc"
