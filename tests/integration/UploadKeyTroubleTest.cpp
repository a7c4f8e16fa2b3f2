#include "SftpWithKeyFile.h"
#include "SshAgent.h"
#include "UploadSurroundings.h"
#include "support/CapturedOutput.h"
#include "support/TestMain.h"

#include <memory>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

/// Uploads by SFTP with the right password, after keys that are there but cannot be used.
class UploadKeyTroubleTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        m_uploads = std::make_unique<UploadSurroundings>();
        m_uploads->makeKeysFolder();
        m_uploads->environment.limits.passwordPrompt = 5s;
    }
    void cleanup()
    {
        m_uploads->checkLeftovers();
        m_uploads.reset();
    }

    void keyWithAPassphraseNobodyTyped()
    {
        const TestServer server(u"sshd"_s, {u"--key-passphrase=a phrase"_s});
        const SftpWithKeyFile sftp(server.fact("privateKey"));
        m_uploads->environment.sftp = sftp.path();
        checkUpload(server);
    }

    void moreKeysThanTheServerTakes()
    {
        const TestServer server(u"sshd"_s, {u"--no-keys"_s, u"--max-auth-tries=3"_s});
        const SshAgent agent(server.fact("privateKey"), 3);
        checkUpload(server);
    }

private:
    void checkUpload(const TestServer &server)
    {
        m_uploads->use(server);
        const CapturedOutput output;
        QCOMPARE(m_uploads->upload(), QString());
        QCOMPARE(m_uploads->contentsOf(server.folder() + u'/' + m_uploads->kName),
                 m_uploads->small());
        QVERIFY(output.bytes().contains("SSH key auth failed, trying password: "));
    }

    std::unique_ptr<UploadSurroundings> m_uploads;
};

TESSERY_TEST_MAIN(QCoreApplication, UploadKeyTroubleTest)
#include "UploadKeyTroubleTest.moc"
