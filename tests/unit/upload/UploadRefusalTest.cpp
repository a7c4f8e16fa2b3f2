#include "support/TestMain.h"
#include "upload/UploadRefusal.h"

#include <QFile>
#include <QTemporaryDir>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using ServerType = UploadSettings::ServerType;

namespace {

const QList<ServerType> kAll = {ServerType::ftp, ServerType::ftps, ServerType::sftp};

} // namespace

/// What is not even begun.
class UploadRefusalTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        m_settings = {};
        m_settings.hostname = u"my.host"_s;
        m_settings.username = u"me"_s;
        m_file = u"/nowhere/a.png"_s;
        m_name = u"a.png"_s;
    }

    void ordinaryUploadsAreNotRefused()
    {
        for (const QString &name : {u"a b.png"_s, u"it's (1) [2] {3} $4 #5 ;6.png"_s, u"-r"_s,
                                    u"a\\b.png"_s, u"…😀.png"_s, u".htaccess"_s}) {
            m_name = name;
            QVERIFY2(told(kAll).isEmpty(), qPrintable(name));
        }
    }

    void controlCharactersAreRefused_data()
    {
        QTest::addColumn<QString>("character");
        QTest::addColumn<QString>("shown");
        QTest::newRow("line feed") << u"\n"_s << u"\\x0A"_s;
        QTest::newRow("carriage return") << u"\r"_s << u"\\x0D"_s;
        QTest::newRow("NUL") << QString(QChar()) << u"\\x00"_s;
        QTest::newRow("tab") << u"\t"_s << u"\\x09"_s;
        QTest::newRow("escape") << u"\u001b"_s << u"\\x1B"_s;
        QTest::newRow("delete") << u"\u007f"_s << u"\\x7F"_s;
        QTest::newRow("next line") << u"\u0085"_s << u"\\xC2\\x85"_s;
    }
    void controlCharactersAreRefused()
    {
        QFETCH(QString, character);
        QFETCH(QString, shown);
        const QString odd = u"a"_s + character + u"!touch x"_s;
        const QString reason = u"a"_s + shown + u"!touch x' holds a control character"_s;
        const struct {
            QString *place;
            QString text;
        } places[] = {
            {&m_file, u"The file '"_s},
            {&m_name, u"The remote file name '"_s},
            {&m_settings.remotePath, u"The remote path '"_s},
            {&m_settings.username, u"The username '"_s},
            {&m_settings.hostname, u"The hostname '"_s},
        };
        for (const auto &[place, text] : places) {
            const QString before = std::exchange(*place, odd);
            for (const ServerType type : kAll)
                QCOMPARE(told(type), QString(u"Upload failed: "_s + text + reason));
            *place = before;
        }
    }

    void blanksAroundHostAndPathAreNoneOfCurls()
    {
        m_settings.hostname = u"\tmy.host "_s;
        m_settings.remotePath = u"/pub\t"_s;
        QVERIFY(told(ServerType::ftp).isEmpty());
        QVERIFY(!told(ServerType::sftp).isEmpty());
    }

    void leadingHyphensOfUserAndHostAreRefused()
    {
        m_settings.username = u"-oProxyCommand=touch x"_s;
        for (const ServerType type : kAll) {
            QCOMPARE(
                told(type),
                u"Upload failed: The username '-oProxyCommand=touch x' begins with a hyphen"_s);
        }
        m_settings.username = u"me"_s;
        m_settings.hostname = u"-x"_s;
        for (const ServerType type : kAll)
            QCOMPARE(told(type), u"Upload failed: The hostname '-x' begins with a hyphen"_s);
    }

    void namesThatLeadElsewhereAreRefused()
    {
        for (const QString &name :
             {u""_s, u"."_s, u".."_s, u"/a"_s, u"a/"_s, u"a/../b"_s, u"./a"_s}) {
            m_name = name;
            for (const ServerType type : kAll) {
                QCOMPARE(told(type),
                         QString(u"Upload failed: The remote file name '"_s + name
                                 + u"' is no name for a file"_s));
            }
        }
    }

    void colonsLeadSftpElsewhere()
    {
        m_settings.username = u"127.0.0.1:alice"_s;
        QCOMPARE(
            told(ServerType::sftp),
            u"Upload failed: The username '127.0.0.1:alice' holds a colon, which sftp cannot be "
            "told"_s);
        QVERIFY(told(ServerType::ftp).isEmpty());
        m_settings.username = u"DOM\\me@x"_s;
        QVERIFY(told(ServerType::sftp).isEmpty());
        for (const QString &host :
             {u"h:/evil.desktop"_s, u"h:2222"_s, u"127::1"_s, u"sftp://h"_s}) {
            m_settings.hostname = host;
            QCOMPARE(told(ServerType::sftp),
                     QString(u"Upload failed: The hostname '"_s + host
                             + u"' holds a colon, which sftp is told between brackets only"_s));
        }
        for (const QString &host : {u"h/x"_s, u"u@h"_s, u"[a]b"_s, u"[a]:b]"_s}) {
            m_settings.hostname = host;
            QVERIFY2(!told(ServerType::sftp).isEmpty(), qPrintable(host));
        }
        m_settings.hostname = u"[::1]"_s;
        QVERIFY(told(ServerType::sftp).isEmpty());
    }

    void pathsThatWouldBelongToThePortAreRefusedByCurlOnly()
    {
        for (const QString &path : {u"@127.0.0.1:21/x"_s, u"3/x"_s, u":x@h/"_s}) {
            m_settings.remotePath = path;
            QCOMPARE(told(ServerType::ftp),
                     QString(u"Upload failed: The remote path '"_s + path
                             + u"' must begin with a slash"_s));
            QVERIFY(told(ServerType::sftp).isEmpty());
        }
        for (const QString &path : {u""_s, u"pub"_s, u"/3/@x"_s, u"pub/@x"_s}) {
            m_settings.remotePath = path;
            QVERIFY2(told(ServerType::ftp).isEmpty(), qPrintable(path));
        }
    }

    void whatSftpCannotBeToldIsRefusedThereOnly_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("reason");
        const QString quotes = u"holds a quotation mark, which sftp cannot be told"_s;
        const QString backslash = u"holds a backslash, which sftp cannot be told"_s;
        const auto row = [](const char *name, const QString &file, const QString &remoteName,
                            const QString &reason) {
            QTest::newRow(name) << file << remoteName << reason;
        };
        row("quotation mark in the file", u"/d/a\" \"b"_s, u"c"_s,
            u"The file '/d/a\" \"b' "_s + quotes);
        row("quotation mark in the name", u"/d/a"_s, u"c\""_s,
            u"The remote file name 'c\"' "_s + quotes);
        row("backslash in the file", u"/d\\e/a"_s, u"c"_s, u"The file '/d\\e/a' "_s + backslash);
        row("two backslashes in the name", u"/d/a"_s, u"c\\\\d"_s,
            u"The remote file name 'c\\\\d' "_s + backslash);
        row("backslash at the end of the name", u"/d/a"_s, u"c\\"_s,
            u"The remote file name 'c\\' "_s + backslash);
    }
    void whatSftpCannotBeToldIsRefusedThereOnly()
    {
        QFETCH(QString, file);
        QFETCH(QString, name);
        QFETCH(QString, reason);
        m_file = file;
        m_name = name;
        QCOMPARE(told(ServerType::sftp), QString(u"Upload failed: "_s + reason));
        QVERIFY(told(ServerType::ftp).isEmpty());
    }

    void hostThatCurlCannotBeToldIsRefusedThereOnly()
    {
        m_settings.hostname = u"bücher example"_s;
        QCOMPARE(told(ServerType::ftps),
                 u"Upload failed: The hostname 'bücher example' is no valid host name"_s);
        QVERIFY(told(ServerType::sftp).isEmpty());
    }

    void onlyRegularFilesAreTaken()
    {
        const auto at = [this](const QString &name) {
            return m_folder.filePath(name);
        };
        QFile regular(at(u"regular"_s));
        QVERIFY(regular.open(QIODevice::WriteOnly));
        QVERIFY(QFile::link(at(u"regular"_s), at(u"link"_s)));
        QVERIFY(QFile::link(at(u"nowhere"_s), at(u"dangling"_s)));
        QVERIFY(QFile::link(m_folder.path(), at(u"folder"_s)));
        QCOMPARE(::mkfifo(QFile::encodeName(at(u"fifo"_s)).constData(), 0600), 0);
        for (const QString &name : {u"regular"_s, u"link"_s, u"dangling"_s, u"nowhere"_s}) {
            m_file = at(name);
            QVERIFY2(told(kAll).isEmpty(), qPrintable(name));
        }
        for (const auto &[path, reason] : {std::pair(m_folder.path(), u"is a folder"_s),
                                           std::pair(at(u"folder"_s), u"is a folder"_s),
                                           std::pair(at(u"fifo"_s), u"is no regular file"_s),
                                           std::pair(u"/dev/null"_s, u"is no regular file"_s)}) {
            m_file = path;
            for (const ServerType type : kAll) {
                QCOMPARE(told(type),
                         QString(u"Upload failed: The file '"_s + path + u"' "_s + reason));
            }
        }
    }

private:
    /// What the user is told; empty if the upload may begin.
    QString told(ServerType type)
    {
        m_settings.serverType = type;
        const auto refusal = UploadRefusal::of(m_settings, m_file, m_name);
        return refusal ? refusal->errorDescription() : QString();
    }
    QString told(const QList<ServerType> &types)
    {
        QString all;
        for (const ServerType type : types)
            all += told(type);
        return all;
    }

    UploadSettings m_settings;
    QString m_file;
    QString m_name;
    QTemporaryDir m_folder;
};

TESSERY_TEST_MAIN(QCoreApplication, UploadRefusalTest)
#include "UploadRefusalTest.moc"
