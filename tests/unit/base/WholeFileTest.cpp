#include "base/SystemError.h"
#include "base/WholeFile.h"
#include "support/DiskCalls.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <sys/resource.h>
#include <sys/stat.h>

#include <cerrno>
#include <csignal>
#include <memory>

using namespace Qt::StringLiterals;
using WholeFile::Outlives;

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

class WholeFileTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        m_folder = std::make_unique<QTemporaryDir>();
        m_path = m_folder->filePath(u"ä b"_s);
    }

    void replacedFileHasItsModeWhateverTheUmask_data()
    {
        QTest::addColumn<unsigned>("umask");
        QTest::addColumn<unsigned>("mode");
        for (const unsigned umask : {0000U, 0022U, 0077U, 0277U}) {
            for (const unsigned mode : {0600U, 0644U, 0700U})
                QTest::addRow("%04o under %04o", mode, umask) << umask << mode;
        }
    }
    void replacedFileHasItsModeWhateverTheUmask()
    {
        QFETCH(const unsigned, umask);
        QFETCH(const unsigned, mode);
        const mode_t before = ::umask(umask);
        WholeFile::replace(m_path, "first", mode, Outlives::PowerCut);
        WholeFile::replace(m_path, "secret", mode, Outlives::PowerCut);
        ::umask(before);
        QCOMPARE(modeOf(m_path), mode);
        QCOMPARE(contentsOf(m_path), "secret");
        QCOMPARE(files(), QStringList(u"ä b"_s));
    }

    void contentsAreReplacedWholeAndReadersKeepTheOldOnes()
    {
        const QByteArray contents = QByteArray("\0a\nb", 4) + QByteArray(1024 * 1024, 'x');
        put(m_path, "old");
        QFile reader(m_path);
        QVERIFY(reader.open(QIODevice::ReadOnly));
        WholeFile::replace(m_path, contents, 0600, Outlives::PowerCut);
        QCOMPARE(contentsOf(m_path), contents);
        QCOMPARE(reader.readAll(), "old");
    }

    void fileIsOnTheDiskBeforeItHasItsName()
    {
        const QByteArray folder = QFile::encodeName(QDir(m_folder->path()).dirName()) + "/: synced";
        const DiskCalls calls;
        WholeFile::replace(m_path, "first", 0600, Outlives::PowerCut);
        WholeFile::replace(m_path, "second", 0600, Outlives::PowerCut);
        const QByteArray file = "ä b: synced";
        QCOMPARE(calls.all(), QByteArrayList({file, folder, file, folder}));
    }

    void fileOfThisRunIsNotWaitedFor()
    {
        const DiskCalls calls;
        WholeFile::replace(m_path, "x", 0600, Outlives::Program);
        QCOMPARE(calls.all(), QByteArrayList({"ä b: not synced"}));
    }

    void fileThatDoesNotReachTheDiskIsReportedAndTheOldOneStays()
    {
        put(m_path, "old");
        const DiskCalls calls(EIO);
        QCOMPARE(failure("new"), u"Could not write %1.new: Input/output error"_s.arg(m_path));
        QCOMPARE(contentsOf(m_path), "old");
        QCOMPARE(files(), QStringList(u"ä b"_s));
        QCOMPARE(calls.all(), QByteArrayList());
    }

    void fullDiskIsReportedAndTheOldOneStays()
    {
        put(m_path, "old");
        // A limit on the size of files stands in for it.
        const auto signalBefore = std::signal(SIGXFSZ, SIG_IGN);
        rlimit before = {};
        ::getrlimit(RLIMIT_FSIZE, &before);
        const rlimit limit{1000, before.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        const QString description = failure(QByteArray(2000, 'x'));
        ::setrlimit(RLIMIT_FSIZE, &before);
        (void)std::signal(SIGXFSZ, signalBefore);
        QCOMPARE(description, u"Could not write %1.new: File too large"_s.arg(m_path));
        QCOMPARE(contentsOf(m_path), "old");
        QCOMPARE(files(), QStringList(u"ä b"_s));
    }

    void folderInItsPlaceIsReportedAndNothingIsLeft()
    {
        QVERIFY(QDir().mkdir(m_path));
        QCOMPARE(failure("new"), u"Could not write %1: Is a directory"_s.arg(m_path));
        QVERIFY(QFileInfo(m_path).isDir());
        QVERIFY(QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden).isEmpty());
    }

    void missingFolderIsReported()
    {
        m_path = u"/nowhere/a"_s;
        QCOMPARE(failure("new"), u"Could not create /nowhere/a.new: No such file or directory"_s);
    }

    void whatACrashLeftGoes()
    {
        put(m_path + u".new"_s, "half of a sec");
        WholeFile::replace(m_path, "secret", 0600, Outlives::PowerCut);
        QCOMPARE(contentsOf(m_path), "secret");
        QCOMPARE(files(), QStringList(u"ä b"_s));
    }

    void linksAreNotFollowed()
    {
        const QString target = m_folder->filePath(u"target"_s);
        put(target, "somebody else's");
        QVERIFY(QFile::link(target, m_path + u".new"_s));
        QVERIFY(QFile::link(target, m_path));
        WholeFile::replace(m_path, "secret", 0600, Outlives::PowerCut);
        QVERIFY(!QFileInfo(m_path).isSymLink());
        QCOMPARE(contentsOf(m_path), "secret");
        QCOMPARE(contentsOf(target), "somebody else's");
    }

private:
    static void put(const QString &path, const QByteArray &contents)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(contents), contents.size());
    }

    /// What replacing ends with; empty when nothing fails.
    QString failure(const QByteArray &contents) const
    {
        try {
            WholeFile::replace(m_path, contents, 0600, Outlives::PowerCut);
        } catch (const SystemError &error) {
            return error.description();
        }
        return {};
    }

    QStringList files() const
    {
        return QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden | QDir::System);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
};

TESSERY_TEST_MAIN(QCoreApplication, WholeFileTest)

#include "WholeFileTest.moc"
