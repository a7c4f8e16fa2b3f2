#include "SshAgent.h"
#include "UploadSurroundings.h"
#include "support/CapturedOutput.h"
#include "support/TestMain.h"

#include <memory>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

/// Uploads to a server that keeps out who was refused too often, as OpenSSH does from version 9.8
/// on. Where it is older, another server does so in its place.
class UploadPenaltiesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        const QStringList options = {u"--no-keys"_s, u"--penalties"_s};
        m_server = std::make_unique<TestServer>(u"sshd"_s, options);
        const bool takesPasswords = !m_server->fact("password").isEmpty();
        if (!m_server->tells("hasPenalties") || !takesPasswords)
            m_server = std::make_unique<TestServer>(u"asyncssh"_s, options);
        m_agent = std::make_unique<SshAgent>(m_server->fact("privateKey"));
        m_uploads = std::make_unique<UploadSurroundings>();
        m_uploads->makeKeysFolder();
        m_uploads->use(*m_server);
    }
    void cleanup()
    {
        m_uploads->checkLeftovers();
        m_uploads.reset();
        m_agent.reset();
        m_server.reset();
    }

    void refusedKeyAndRightPasswordEachSecond()
    {
        const CapturedOutput output;
        QCOMPARE(m_uploads->uploadEvery(1s, 30), QStringList(30, QString()));
        for (int i = 0; i < 30; ++i) {
            QCOMPARE(m_uploads->contentsOf(m_server->folder() + u'/' + QString::number(i)),
                     m_uploads->small());
        }
        // The key was offered.
        QVERIFY(output.bytes().contains("SSH key auth failed, trying password: "));
    }

private:
    std::unique_ptr<TestServer> m_server;
    std::unique_ptr<SshAgent> m_agent;
    std::unique_ptr<UploadSurroundings> m_uploads;
};

TESSERY_TEST_MAIN(QCoreApplication, UploadPenaltiesTest)
#include "UploadPenaltiesTest.moc"
