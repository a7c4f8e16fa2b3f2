#include "base/AppIdentifier.h"
#include "base/TemporaryFile.h"
#include "base/TemporaryFolder.h"
#include "base/SystemError.h"
#include "support/TestMain.h"

#include <QProcess>
#include <QTemporaryDir>

#include <sys/stat.h>

#include <memory>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

unsigned modeOf(const QString &path)
{
    struct stat status = {};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_mode & 0777U : 0U;
}

QStringList foldersIn(const QString &base)
{
    return QDir(base).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

/// A folder as a crashed run would have left it.
QString makeAbandoned(const QString &base, const QString &name)
{
    const QString path = base + u'/' + name;
    QDir().mkdir(path);
    ::chmod(QFile::encodeName(path).constData(), 0700);
    QDir(path).mkdir(u"inner"_s);
    QFile file(path + u"/inner/.netrc_X"_s);
    [[maybe_unused]] const bool opened = file.open(QIODevice::WriteOnly);
    return path;
}

} // namespace

class TemporaryFolderTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        m_base.emplace();
        m_runtime = m_base->filePath(u"run"_s);
        m_temporary = m_base->filePath(u"tmp"_s);
        QVERIFY(QDir().mkdir(m_runtime));
        QVERIFY(QDir().mkdir(m_temporary));
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(m_runtime));
        qputenv("TMPDIR", QFile::encodeName(m_temporary));
    }
    void cleanup() { m_base.reset(); }

    void folderIsPrivateAndInTheRuntimeFolder()
    {
        const TemporaryFolder folder;
        QCOMPARE(QFileInfo(folder.path()).path(), m_runtime);
        QCOMPARE(modeOf(folder.path()), 0700U);
        QVERIFY(QFileInfo(folder.path()).fileName().startsWith(kAppIdentifier));
    }

    void folderIsPrivateUnderAnyUmask_data()
    {
        QTest::addColumn<unsigned>("umask");
        QTest::newRow("none") << 0U;
        QTest::newRow("strict") << 0277U;
    }
    void folderIsPrivateUnderAnyUmask()
    {
        QFETCH(unsigned, umask);
        const mode_t before = ::umask(umask);
        const TemporaryFolder folder;
        ::umask(before);
        QCOMPARE(modeOf(folder.path()), 0700U);
    }

    void temporaryFolderTakesOver_data()
    {
        QTest::addColumn<QByteArray>("runtime");
        QTest::newRow("not set") << QByteArray();
        QTest::newRow("relative") << QByteArray("run");
        QTest::newRow("missing") << QByteArray("/nowhere");
        QTest::newRow("not writable") << QByteArray("/proc");
    }
    void temporaryFolderTakesOver()
    {
        QFETCH(QByteArray, runtime);
        qputenv("XDG_RUNTIME_DIR", runtime);
        const TemporaryFolder folder;
        QCOMPARE(QFileInfo(folder.path()).path(), m_temporary);
    }

    void slashesAtTheEndOfTheRuntimeFolderDoNotMatter()
    {
        qputenv("XDG_RUNTIME_DIR", QByteArray(QFile::encodeName(m_runtime) + "//"));
        const TemporaryFolder folder;
        QCOMPARE(QFileInfo(folder.path()).path(), m_runtime);
        QVERIFY(!folder.path().contains("//"_L1));
    }

    void executionIsAllowedWhereProgramsAre()
    {
        QVERIFY(TemporaryFolder::allowsExecution(u"/usr/bin"_s));
        QVERIFY(!TemporaryFolder::allowsExecution(u"/nowhere"_s));
    }

    void runtimeFolderThatForbidsExecutionIsPassedOver_data()
    {
        QTest::addColumn<QString>("option");
        QTest::addColumn<QString>("expected");
        QTest::newRow("forbidden") << u"noexec"_s << u"tmp"_s;
        QTest::newRow("allowed") << u"exec"_s << u"run"_s;
    }
    void runtimeFolderThatForbidsExecutionIsPassedOver()
    {
        QFETCH(QString, option);
        QFETCH(QString, expected);
        QProcess host;
        host.start(u"/usr/bin/unshare"_s,
                   {u"--user"_s, u"--map-root-user"_s, u"--mount"_s, u"/bin/sh"_s, u"-ec"_s,
                    u"mount -t tmpfs -o \"$0\" test \"$XDG_RUNTIME_DIR\"; exec \"$1\""_s, option,
                    QStringLiteral(TEMPORARY_FOLDER_HOST)});
        QVERIFY(host.waitForFinished());
        QCOMPARE(host.readAllStandardError(), QByteArray());
        const QString path = QFile::decodeName(host.readAllStandardOutput().trimmed());
        QCOMPARE(QFileInfo(path).path(), m_base->filePath(expected));
    }

    void failureEverywhereIsReported()
    {
        qputenv("XDG_RUNTIME_DIR", "/nowhere");
        qputenv("TMPDIR", "/nowhere/else");
        try {
            const TemporaryFolder folder;
            QFAIL("made a folder where none can be made");
        } catch (const SystemError &error) {
            QVERIFY(error.description().startsWith("Could not make a temporary folder in "_L1));
            QVERIFY(error.description().endsWith(": No such file or directory"_L1));
        }
    }

    void folderIsRemovedWithAllThatIsInIt()
    {
        auto folder = std::make_unique<TemporaryFolder>();
        QVERIFY(QDir(folder->path()).mkpath(u"a/b"_s));
        QFile file(folder->path() + u"/a/b/.netrc_X"_s);
        QVERIFY(file.open(QIODevice::WriteOnly));
        folder.reset();
        QCOMPARE(foldersIn(m_runtime), QStringList());
    }

    void whatCrashedRunsLeftIsRemoved()
    {
        const QString first = makeAbandoned(m_runtime, kAppIdentifier + u"-abcdef"_s);
        const QString second = makeAbandoned(m_temporary, kAppIdentifier + u"-ABC123"_s);
        const TemporaryFolder folder;
        QVERIFY(!QFile::exists(first));
        QVERIFY(!QFile::exists(second));
        QVERIFY(QFile::exists(folder.path()));
    }

    void foldersOfLiveRunsStay()
    {
        const TemporaryFolder live;
        const TemporaryFile file(live.path() + u"/a"_s, "x");
        const TemporaryFolder next;
        QVERIFY(live.path() != next.path());
        QVERIFY(QFile::exists(file.path()));
    }

    void folderOfALiveRunInAnotherProcessStays()
    {
        const QString path = makeAbandoned(m_runtime, kAppIdentifier + u"-abcdef"_s);
        QProcess holder;
        holder.start(u"/usr/bin/flock"_s, {path, u"/bin/sh"_s, u"-c"_s, u"echo up; cat"_s});
        QVERIFY(holder.waitForReadyRead());
        {
            const TemporaryFolder folder;
            QVERIFY(QFile::exists(path));
        }
        holder.closeWriteChannel();
        QVERIFY(holder.waitForFinished());
        const TemporaryFolder folder;
        QVERIFY(!QFile::exists(path));
    }

    void othersFilesStay_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<unsigned>("mode");
        QTest::newRow("longer name") << QString(kAppIdentifier + u"-pictures"_s) << 0700U;
        QTest::newRow("no random part") << QString(kAppIdentifier) << 0700U;
        QTest::newRow("other name") << u"tessery-abcdef"_s << 0700U;
        QTest::newRow("not private") << QString(kAppIdentifier + u"-abcdef"_s) << 0755U;
    }
    void othersFilesStay()
    {
        QFETCH(QString, name);
        QFETCH(unsigned, mode);
        const QString path = makeAbandoned(m_runtime, name);
        ::chmod(QFile::encodeName(path).constData(), mode);
        const TemporaryFolder folder;
        QVERIFY(QFile::exists(path + u"/inner/.netrc_X"_s));
    }

    void linksAreNotFollowed()
    {
        const QString target = makeAbandoned(m_base->path(), u"precious"_s);
        QVERIFY(QFile::link(target, m_runtime + u'/' + kAppIdentifier + u"-abcdef"_s));
        const QString abandoned = makeAbandoned(m_runtime, kAppIdentifier + u"-ABCDEF"_s);
        QVERIFY(QFile::link(target, abandoned + u"/link"_s));
        const TemporaryFolder folder;
        QVERIFY(!QFile::exists(abandoned));
        QVERIFY(QFile::exists(target + u"/inner/.netrc_X"_s));
    }

private:
    std::optional<QTemporaryDir> m_base;
    QString m_runtime;
    QString m_temporary;
};

TESSERY_TEST_MAIN(QCoreApplication, TemporaryFolderTest)
#include "TemporaryFolderTest.moc"
