#include "base/SystemError.h"
#include "base/TemporaryFile.h"
#include "support/TestMain.h"

#include <QTemporaryDir>

#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

QByteArray contentsOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

unsigned modeOf(const QString &path)
{
    struct stat status = {};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_mode & 07777U : 0U;
}

} // namespace

class TemporaryFileTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    void modeDoesNotDependOnTheUmask_data()
    {
        QTest::addColumn<unsigned>("umask");
        QTest::addColumn<TemporaryFile::Mode>("mode");
        QTest::addColumn<unsigned>("expected");
        for (const unsigned umask : {0000U, 0022U, 0077U, 0277U}) {
            QTest::addRow("data %04o", umask) << umask << TemporaryFile::Mode::ReadWrite << 0600U;
            QTest::addRow("program %04o", umask)
                << umask << TemporaryFile::Mode::ReadWriteExecute << 0700U;
        }
    }
    void modeDoesNotDependOnTheUmask()
    {
        QFETCH(unsigned, umask);
        QFETCH(TemporaryFile::Mode, mode);
        QFETCH(unsigned, expected);
        const mode_t before = ::umask(umask);
        const TemporaryFile file(m_folder.filePath(u"a"_s), "secret", mode);
        ::umask(before);
        QCOMPARE(modeOf(file.path()), expected);
    }

    void contentsAreWrittenWhole()
    {
        const QByteArray contents = QByteArray("\0a\nb", 4) + QByteArray(1024 * 1024, 'x');
        const TemporaryFile file(m_folder.filePath(u"ä b"_s), contents);
        QCOMPARE(file.path(), m_folder.filePath(u"ä b"_s));
        QCOMPARE(contentsOf(file.path()), contents);
    }

    void fileIsRemovedWithTheObject()
    {
        auto file = std::make_unique<TemporaryFile>(m_folder.filePath(u"a"_s), "x");
        QVERIFY(QFile::exists(file->path()));
        const QString path = file->path();
        file.reset();
        QVERIFY(!QFile::exists(path));
    }

    void fileThatIsGoneAlreadyIsNoTrouble()
    {
        const TemporaryFile file(m_folder.filePath(u"a"_s), "x");
        QVERIFY(QFile::remove(file.path()));
    }

    void existingFileIsLeftAlone()
    {
        const TemporaryFile file(m_folder.filePath(u"a"_s), "first");
        QVERIFY_THROWS_EXCEPTION(SystemError, TemporaryFile(file.path(), "second"));
        QCOMPARE(contentsOf(file.path()), "first");
    }

    void linkIsNotFollowed()
    {
        const QString link = m_folder.filePath(u"link"_s);
        QVERIFY(QFile::link(m_folder.filePath(u"target"_s), link));
        QVERIFY_THROWS_EXCEPTION(SystemError, TemporaryFile(link, "x"));
        QVERIFY(!QFile::exists(m_folder.filePath(u"target"_s)));
        QVERIFY(QFile::remove(link));
    }

    void missingFolderIsReported()
    {
        try {
            const TemporaryFile file(u"/nowhere/a"_s, "x");
            QFAIL("made a file in a folder that is not there");
        } catch (const SystemError &error) {
            QCOMPARE(error.description(),
                     u"Could not create /nowhere/a: No such file or directory"_s);
        }
    }

    void replacedContentsAreWholeAndReadersKeepTheOldOnes()
    {
        TemporaryFile file(m_folder.filePath(u"a"_s), "old");
        QFile reader(file.path());
        QVERIFY(reader.open(QIODevice::ReadOnly));
        file.replaceContents("the new ones");
        QCOMPARE(contentsOf(file.path()), "the new ones");
        QCOMPARE(modeOf(file.path()), 0600U);
        QCOMPARE(reader.readAll(), "old");
        QCOMPARE(QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList(u"a"_s));
    }

    void contentsThatCannotBeReplacedStay()
    {
        TemporaryFile file(m_folder.filePath(u"a"_s), "old");
        QVERIFY(QDir().mkdir(file.path() + u".new"_s));
        QVERIFY_THROWS_EXCEPTION(SystemError, file.replaceContents("new"));
        QCOMPARE(contentsOf(file.path()), "old");
        QVERIFY(QDir().rmdir(file.path() + u".new"_s));
    }

    void fileThatCannotBeWrittenWholeIsReportedAndRemoved()
    {
        // A limit on the size of files stands in for a full disk.
        const QString path = m_folder.filePath(u"a"_s);
        const auto signalBefore = std::signal(SIGXFSZ, SIG_IGN);
        rlimit before = {};
        ::getrlimit(RLIMIT_FSIZE, &before);
        rlimit limit = before;
        limit.rlim_cur = 1000;
        ::setrlimit(RLIMIT_FSIZE, &limit);
        QString description;
        try {
            const TemporaryFile file(path, QByteArray(2000, 'x'));
        } catch (const SystemError &error) {
            description = error.description();
        }
        ::setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, signalBefore);
        QCOMPARE(description, u"Could not write "_s + path + u": File too large"_s);
        QVERIFY(!QFile::exists(path));
    }

private:
    QTemporaryDir m_folder;
};

TESSERY_TEST_MAIN(QCoreApplication, TemporaryFileTest)
#include "TemporaryFileTest.moc"
