#include "platform/linux/FileSecretStore.h"

#include "support/DiskCalls.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFileInfo>
#include <QObject>
#include <QTemporaryDir>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

const QString kService = u"org.tessery.Tessery"_s;
const QString kAccount = u"serverPassword"_s;

int modeOf(const QString &path)
{
    struct stat status = {};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0
        ? static_cast<int>(status.st_mode & 07777)
        : -1;
}

} // namespace

class FileSecretStoreTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        m_data = std::make_unique<QTemporaryDir>();
        qputenv("XDG_DATA_HOME", QFile::encodeName(m_data->path()));
    }

    void cleanup()
    {
        ::umask(022);
        qunsetenv("XDG_DATA_HOME");
        m_data.reset();
    }

    void nothingStoredIsAbsentAndMakesNoFolder()
    {
        QCOMPARE(m_store.read(kService, kAccount), std::nullopt);
        m_store.remove(kService, kAccount);
        QVERIFY(QDir(m_data->path()).isEmpty());
    }

    void secretComesBack_data()
    {
        QTest::addColumn<QByteArray>("secret");
        QTest::newRow("empty") << QByteArray("");
        QTest::newRow("text") << QByteArray("s\xc3\xa9"
                                            "cret\n");
        QTest::newRow("NUL") << QByteArray("a\0b", 3);
    }

    void secretComesBack()
    {
        QFETCH(const QByteArray, secret);
        QVERIFY(m_store.write(kService, kAccount, secret));
        QCOMPARE(m_store.read(kService, kAccount), std::optional(secret));
        QCOMPARE(FileSecretStore().read(kService, kAccount), std::optional(secret));
    }

    void fileIsInTheSecretsFolderOfTheUsersData()
    {
        QVERIFY(m_store.write(kService, kAccount, "secret"));
        const QString path = m_store.filePath(kService, kAccount);
        QCOMPARE(QFileInfo(path).absolutePath(), m_data->filePath(u"tessery/secrets"_s));
        QCOMPARE(modeOf(path), 0600);
        QCOMPARE(modeOf(QFileInfo(path).absolutePath()), 0700);
        QCOMPARE(QFileInfo(path).dir().entryList(QDir::Files | QDir::Hidden).size(), 1);
    }

    void nobodyElseMayReadWhateverTheUmask()
    {
        ::umask(0);
        QVERIFY(m_store.write(kService, kAccount, "secret"));
        QCOMPARE(modeOf(m_store.filePath(kService, kAccount)), 0600);
        QCOMPARE(modeOf(m_data->filePath(u"tessery/secrets"_s)), 0700);
    }

    void folderThatIsOpenToOthersIsClosed()
    {
        const QString folder = m_data->filePath(u"tessery/secrets"_s);
        QVERIFY(QDir().mkpath(folder));
        QCOMPARE(::chmod(QFile::encodeName(folder).constData(), 0755), 0);
        QVERIFY(m_store.write(kService, kAccount, "secret"));
        QCOMPARE(modeOf(folder), 0700);
    }

    void writingAgainReplacesTheFileWhole()
    {
        QVERIFY(m_store.write(kService, kAccount, "a long secret"));
        QFile open(m_store.filePath(kService, kAccount));
        QVERIFY(open.open(QIODevice::ReadOnly));
        QVERIFY(m_store.write(kService, kAccount, "short"));
        QCOMPARE(m_store.read(kService, kAccount), std::optional<QByteArray>("short"));
        QCOMPARE(open.readAll(), "a long secret"); // The old file was not written over.
        QCOMPARE(QFileInfo(open.fileName()).dir().entryList(QDir::Files | QDir::Hidden).size(), 1);
    }

    void secretIsOnTheDiskBeforeItTakesTheOldOnesPlace()
    {
        const QByteArray name =
            QFile::encodeName(QFileInfo(m_store.filePath(kService, kAccount)).fileName());
        for (const QByteArray secret : {"first", "second"}) {
            const DiskCalls calls;
            QVERIFY(m_store.write(kService, kAccount, secret));
            QCOMPARE(calls.all(), QByteArrayList({name + ": synced", "secrets/: synced"}));
        }
    }

    void fileThatACrashedRunLeftIsNoHindrance()
    {
        QVERIFY(m_store.write(kService, kAccount, "one"));
        QFile left(m_store.filePath(kService, kAccount) + u".new"_s);
        QVERIFY(left.open(QIODevice::WriteOnly));
        left.close();
        QVERIFY(m_store.write(kService, kAccount, "two"));
        QCOMPARE(m_store.read(kService, kAccount), std::optional<QByteArray>("two"));
        QVERIFY(!left.exists());
    }

    void eachServiceAndAccountHasItsOwn()
    {
        QVERIFY(m_store.write(u"a/b"_s, u"../c"_s, "one"));
        QVERIFY(m_store.write(u"a"_s, u"b"_s, "two"));
        QCOMPARE(m_store.read(u"a/b"_s, u"../c"_s), std::optional<QByteArray>("one"));
        QCOMPARE(m_store.read(u"a"_s, u"b"_s), std::optional<QByteArray>("two"));
        QCOMPARE(QDir(m_data->filePath(u"tessery/secrets"_s)).entryList(QDir::Files).size(), 2);
        m_store.remove(u"a"_s, u"b"_s);
        QCOMPARE(m_store.read(u"a"_s, u"b"_s), std::nullopt);
        QVERIFY(m_store.read(u"a/b"_s, u"../c"_s));
    }

    void folderThatCannotBeMadeIsReported()
    {
        QFile blocker(m_data->filePath(u"tessery"_s));
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        QVERIFY(!m_store.write(kService, kAccount, "secret"));
        QCOMPARE(m_store.read(kService, kAccount), std::nullopt);
    }

    void fileThatCannotBeReplacedIsReportedAndNothingIsLeft()
    {
        const QString path = m_store.filePath(kService, kAccount);
        QVERIFY(QDir().mkpath(path + u"/x"_s));
        QVERIFY(!m_store.write(kService, kAccount, "secret"));
        QVERIFY(!QFile::exists(path + u".new"_s));
    }

private:
    FileSecretStore m_store;
    std::unique_ptr<QTemporaryDir> m_data;
};

TESSERY_TEST_MAIN(QCoreApplication, FileSecretStoreTest)

#include "FileSecretStoreTest.moc"
