#include "CurlVersion.h"
#include "UploadSurroundings.h"
#include "support/CapturedOutput.h"
#include "support/TestMain.h"

#include <sys/stat.h>

#include <map>
#include <memory>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

const QString kPassword = u"s3cr3t"_s;

} // namespace

/// Uploads with curl to two FTP servers.
class UploadFtpTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("ProFTPD") << u"proftpd-ftp"_s;
        QTest::newRow("pyftpdlib") << u"pyftpdlib"_s;
    }
    void initTestCase()
    {
        for (const QString &kind : {u"proftpd-ftp"_s, u"pyftpdlib"_s})
            m_servers[kind] = start(kind);
    }
    void cleanupTestCase() { m_servers.clear(); }

    void init()
    {
        TestSurroundings::failOnWarnings();
        m_uploads = std::make_unique<UploadSurroundings>();
        m_uploads->settings.serverType = UploadSettings::ServerType::ftp;
        m_uploads->use(server());
    }
    void cleanup()
    {
        m_uploads->checkLeftovers();
        m_uploads.reset();
    }

    void fileArrives()
    {
        const QByteArray contents = m_uploads->large();
        const QUrl file = m_uploads->makeFile(u"a.png"_s, contents);
        const CapturedOutput output;
        QCOMPARE(m_uploads->upload(file, u"large.png"_s), QString());
        QVERIFY(arrived(u"large.png"_s) == contents);
        QVERIFY(output.bytes().contains("\n> PASS ********\r\n"));
        QVERIFY(!output.bytes().contains(kPassword.toUtf8()));
    }

    void activeModeWorks()
    {
        m_uploads->settings.usePassiveMode = false;
        QCOMPARE(m_uploads->upload(), QString());
        QCOMPARE(arrived(m_uploads->kName), m_uploads->small());
    }

    void oddNamesArriveExactly_data()
    {
        QTest::addColumn<QString>("name");
        for (const QString &name :
             {u"a b.png"_s, u"it's \"quoted\".png"_s, u"[x]{y}.png"_s, u"[1-3]{a,b}.png"_s,
              u"%41.png"_s, u"#?&;=+.png"_s, u"a;type=i.png"_s, u"b.png;type=d"_s, u"-dash.png"_s,
              u"~*,(1).png"_s, u"a\\b\\[c.png"_s, u"Bildschirmfoto ä 📸.png"_s})
            QTest::newRow(name.toUtf8().constData()) << name;
    }
    void oddNamesArriveExactly()
    {
        QFETCH(QString, name);
        const QByteArray contents = m_uploads->small() + name.toUtf8();
        QCOMPARE(m_uploads->upload(m_uploads->makeFile(name, contents), name), QString());
        QCOMPARE(arrived(name), contents);
    }

    void nameThatReadsErrorIsAFailure()
    {
        QVERIFY(m_uploads->upload(m_uploads->makeFile(u"a.png"_s, "x"), u"an error.png"_s)
                    .startsWith(u"Upload failed: > STOR an error.png\r"_s));
    }

    void nameThatReads530IsAnAuthenticationFailure()
    {
        QCOMPARE(m_uploads->upload(m_uploads->makeFile(u"a.png"_s, "x"), u"530.png"_s),
                 u"Authentication failed"_s);
    }

    void whatIsNoFileIsRefused()
    {
        const QString folder = QFileInfo(m_uploads->makeFile(u"a.png"_s, "x").toLocalFile()).path();
        const QString fifo = folder + u"/fifo.png"_s;
        QCOMPARE(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
        for (const QString &path : {folder, fifo}) {
            const QString told = m_uploads->upload(QUrl::fromLocalFile(path), u"none.png"_s);
            QVERIFY2(told.startsWith(u"Upload failed: The file '"_s + path + u"' is "_s),
                     qPrintable(told));
        }
        QVERIFY(!QFile::exists(server().folder() + u"/none.png"_s));
    }

    void oddFoldersWork()
    {
        const QString folder = u"/a b/[x]{y} %41 ü;type=i"_s;
        QDir().mkpath(server().folder() + folder);
        m_uploads->settings.remotePath = folder;
        QCOMPARE(m_uploads->upload(), QString());
        QCOMPARE(arrived(folder + u'/' + m_uploads->kName), m_uploads->small());
    }

    void hostMayBeTypedAsAnAddress()
    {
        m_uploads->settings.hostname = u" ftp://127.0.0.1/ "_s;
        QCOMPARE(m_uploads->upload(), QString());
    }

    void hostMayBeAName()
    {
        m_uploads->settings.hostname = u"Files.example"_s;
        m_uploads->nameAddresses(u"files.example"_s, server().port(), {server().fact("host")});
        QCOMPARE(m_uploads->upload(), QString());
        QCOMPARE(arrived(m_uploads->kName), m_uploads->small());
    }

    void oddPasswordsAreAccepted_data()
    {
        QTest::addColumn<QString>("password");
        for (const QString &password :
             {u"back\\slash"_s, u"in\"ner'#"_s, u"$[]{}"_s, u"-dash"_s, u"pässwörd"_s, u"😀"_s,
              u"530"_s, u"error"_s, u"a b"_s, u" a"_s, u"a "_s, u"#a"_s, u"\"a\""_s, u"\""_s,
              u"\\\" ä\\"_s, u"macdef"_s})
            QTest::newRow(password.toUtf8().constData()) << password;
    }
    void oddPasswordsAreAccepted()
    {
        QFETCH_GLOBAL(QString, kind);
        QFETCH(QString, password);
        const auto odd = start(kind, {u"--password="_s + password});
        m_uploads->use(*odd);
        QCOMPARE(m_uploads->upload(), QString());
        QCOMPARE(m_uploads->contentsOf(odd->folder() + u'/' + m_uploads->kName),
                 m_uploads->small());
    }

    void longPasswordsAreAccepted_data()
    {
        QTest::addColumn<QString>("password");
        QTest::newRow("plain") << QString(3000, u'x');
        QTest::newRow("quoted") << u"a b"_s.repeated(1000);
    }
    void longPasswordsAreAccepted()
    {
        QFETCH(QString, password);
        const auto odd = start(u"pyftpdlib"_s, {u"--password="_s + password});
        m_uploads->use(*odd);
        QCOMPARE(m_uploads->upload(), QString());
    }

    void oddUsersAreAccepted_data()
    {
        QTest::addColumn<QString>("user");
        for (const QString &user : {u"a b"_s, u"#a"_s, u"DOM\\user"_s, u"ä"_s, u"me@host"_s})
            QTest::newRow(user.toUtf8().constData()) << user;
    }
    void oddUsersAreAccepted()
    {
        QFETCH_GLOBAL(QString, kind);
        QFETCH(QString, user);
        if (kind == u"proftpd-ftp" && user.startsWith(u'#'))
            return; // A comment in its list of accounts.
        const auto odd = start(kind, {u"--user="_s + user});
        m_uploads->use(*odd);
        QCOMPARE(m_uploads->upload(), QString());
    }

    void passwordWithATabIsRefusedByCurl()
    {
        // Its versions in Debian take no control character from the file of credentials.
        m_uploads->setPassword(u"a\tb"_s);
        const QString told = m_uploads->upload();
        QVERIFY2(told.endsWith(u"curl: (26) control code detected in .netrc credentials"_s),
                 qPrintable(told));
    }

    void wrongPasswordIsTold()
    {
        m_uploads->setPassword(u"wr0ng"_s);
        const CapturedOutput output;
        QCOMPARE(m_uploads->upload(), u"Authentication failed"_s);
        QVERIFY(!output.bytes().contains("wr0ng"));
    }

    void absentPasswordIsTold()
    {
        m_uploads->platform.fakeSecrets->items.clear();
        QCOMPARE(m_uploads->upload(), u"Authentication failed"_s);
    }

    void missingLocalFileIsTold()
    {
        const QString told =
            m_uploads->upload(QUrl(u"https://example.org/nowhere.png"_s), u"a.png"_s);
        QVERIFY2(told.startsWith(u"Upload failed: FTP upload failed (exit code 26):\n"_s),
                 qPrintable(told));
    }

    void folderTroubleIsTold_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<int>("code");
        QTest::newRow("missing") << u"/missing"_s << 9;
        QTest::newRow("forbidden") << u"/forbidden"_s << 9;
        QTest::newRow("not writable") << u"/readonly"_s << 25;
    }
    void folderTroubleIsTold()
    {
        QFETCH(QString, path);
        QFETCH(int, code);
        m_uploads->settings.remotePath = path;
        const QString told = m_uploads->upload();
        QVERIFY2(told.startsWith(u"Upload failed: FTP upload failed (exit code %1):\n"_s.arg(code)),
                 qPrintable(told));
        QVERIFY(told.contains(u"550"_s));
        QVERIFY(!told.contains(kPassword));
    }

    void serverThatGoesInMidTransferIsTold()
    {
        QFETCH_GLOBAL(QString, kind);
        const auto slow = start(kind, {u"--rate=200000"_s});
        m_uploads->use(*slow);
        const QString told = m_uploads->uploadLarge(slow->folder(), [&slow] { slow->close(); });
        QVERIFY2(told.startsWith(u"Upload failed: FTP upload failed (exit code "_s),
                 qPrintable(told));
    }

    void slowTransferEndsAtItsLimit()
    {
        QFETCH_GLOBAL(QString, kind);
        const auto slow = start(kind, {u"--rate=20000"_s});
        m_uploads->use(*slow);
        m_uploads->environment.limits.curlTransfer = 1s;
        // More than fits into the buffers on the way.
        const QUrl file = m_uploads->makeFile(u"huge.png"_s, QByteArray(64 * 1024 * 1024, 'x'));
        QCOMPARE(m_uploads->upload(file, m_uploads->kName), u"Connection timed out"_s);
    }

    void quittingInMidTransferEndsIt()
    {
        QFETCH_GLOBAL(QString, kind);
        const auto slow = start(kind, {u"--rate=20000"_s});
        m_uploads->use(*slow);
        std::stop_source source;
        m_uploads->environment.stop = source.get_token();
        QCOMPARE(m_uploads->uploadLarge(slow->folder(), [&source] { source.request_stop(); }),
                 u"Upload failed: Cancelled because Tessery is quitting"_s);
    }

private:
    static std::unique_ptr<TestServer> start(const QString &kind, const QStringList &options = {})
    {
        return std::make_unique<TestServer>(kind,
                                            QStringList{u"--password="_s + kPassword} + options);
    }

    const TestServer &server() const
    {
        QFETCH_GLOBAL(QString, kind);
        return *m_servers.at(kind);
    }

    QByteArray arrived(const QString &name) const
    {
        return m_uploads->contentsOf(server().folder() + u'/' + name);
    }

    std::map<QString, std::unique_ptr<TestServer>> m_servers;
    std::unique_ptr<UploadSurroundings> m_uploads;
};

TESSERY_TEST_MAIN(QCoreApplication, UploadFtpTest)
#include "UploadFtpTest.moc"
