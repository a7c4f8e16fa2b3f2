#include "platform/linux/InotifyFolderWatcher.h"

#include "support/CapturedOutput.h"
#include "support/TestMain.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QTimer>

#include <sys/resource.h>
#include <sys/stat.h>

#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <system_error>
#include <utility>

using namespace Qt::StringLiterals;

using Start = FolderWatcher::Start;

namespace {

/// Long enough for a batch, where the claim is that none comes.
constexpr int kQuietTime = 1500;

bool write(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Append) && file.write("x") == 1;
}

bool renameOver(const QString &from, const QString &to)
{
    return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

bool link(const QString &target, const QString &path)
{
    return QFile::link(target, path);
}

/// How many inotify instances this process has.
qsizetype instances()
{
    qsizetype count = 0;
    for (const auto &file : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        count += std::filesystem::read_symlink(file, gone) == "anon_inode:inotify" ? 1 : 0;
    }
    return count;
}

/// Runs the current test, with its data, where a limit of the system is zero; gives the exit status
/// and what was printed.
std::pair<int, QByteArray> runBeyond(const QString &limit)
{
    qputenv("TEST_LIMIT", limit.toUtf8());
    QProcess child;
    child.setProcessChannelMode(QProcess::MergedChannels);
    child.start(u"/usr/bin/unshare"_s,
                {u"--user"_s, u"--map-root-user"_s, u"/bin/sh"_s, u"-ec"_s,
                 u"echo 0 >/proc/sys/user/$TEST_LIMIT; exec \"$0\" \"$1\""_s,
                 QCoreApplication::applicationFilePath(),
                 QLatin1String(QTest::currentTestFunction()) + u':'
                     + QLatin1String(QTest::currentDataTag())});
    const bool hasEnded = child.waitForFinished();
    qunsetenv("TEST_LIMIT");
    return {hasEnded && child.exitStatus() == QProcess::NormalExit ? child.exitCode() : -1,
            child.readAll()};
}

/// How often the event loop has to wake up in two and a half seconds.
long wakeUps()
{
    rusage before = {};
    rusage after = {};
    QTimer end;
    end.setSingleShot(true);
    end.start(2500);
    ::getrusage(RUSAGE_THREAD, &before);
    while (end.isActive())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    ::getrusage(RUSAGE_THREAD, &after);
    return after.ru_nvcsw - before.ru_nvcsw;
}

} // namespace

class InotifyFolderWatcherTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void eachKindOfEventGivesABatch_data();
    void eachKindOfEventGivesABatch();
    void batchComesASecondAfterTheFirstEvent();
    void laterEventsGiveAnotherBatch();
    void eventsBeforeStartDoNotCount();
    void whatHappensBesideTheFolderDoesNotCount();
    void missingFolderIsPickedUp();
    void missingFolderBelowMissingFoldersIsPickedUp();
    void deletedFolderIsPickedUpAgain();
    void folderRenamedOverIsPickedUp();
    void folderMovedAwayIsPickedUpWhenItComesBack();
    void retargetedLinkIsFollowed();
    void overflowIsABatchForAllAndFindsTheFolderAgain();
    void pollingTakesOverBeyondALimit_data();
    void pollingTakesOverBeyondALimit();
    void folderThatCannotEvenBePolledIsAFailure();
    void batchMayEndTheWatching();
    void quietFolderWakesNobodyUp();
    void foldersShareOneInstance();
    void busyFolderNeitherDelaysAnotherNorWakesMuch();

private:
    QString path(const QString &name = {}) const { return m_folder->filePath(name); }
    Start start() { return start(path(u"Desktop"_s)); }
    Start start(const QString &folder);
    /// Waits for the next batch; every test waits for all its batches, one by one.
    bool nextBatch();
    bool noBatch();
    /// Makes more events in the folder than the system keeps. Nothing is read meanwhile.
    bool overflow() const;

    std::optional<QTemporaryDir> m_folder;
    const std::function<std::unique_ptr<FolderWatcher>()> m_makeWatcher =
        InotifyFolderWatcher::factory();
    std::unique_ptr<FolderWatcher> m_watcher;
    int m_batches = 0;
    int m_expected = 0;
    bool m_mayBeAnother = false; ///< As the last batch told.
};

void InotifyFolderWatcherTest::init()
{
    TestSurroundings::failOnWarnings();
    m_folder.emplace();
    m_batches = 0;
    m_expected = 0;
    QVERIFY(QDir(path()).mkdir(u"Desktop"_s));
}

void InotifyFolderWatcherTest::cleanup()
{
    m_watcher.reset();
    m_folder.reset();
}

Start InotifyFolderWatcherTest::start(const QString &folder)
{
    m_watcher = m_makeWatcher();
    return m_watcher->start(folder, [this](bool mayBeAnother) {
        ++m_batches;
        m_mayBeAnother = mayBeAnother;
    });
}

bool InotifyFolderWatcherTest::nextBatch()
{
    ++m_expected;
    return QTest::qWaitFor([this] { return m_batches >= m_expected; }, 5000)
        && m_batches == m_expected;
}

bool InotifyFolderWatcherTest::overflow() const
{
    QFile limitFile(u"/proc/sys/fs/inotify/max_queued_events"_s);
    const int limit =
        limitFile.open(QIODevice::ReadOnly) ? limitFile.readAll().trimmed().toInt() : 0;
    // No two events in a row are alike.
    const QByteArray names[] = {QFile::encodeName(path(u"Desktop/a"_s)),
                                QFile::encodeName(path(u"Desktop/b"_s))};
    for (int i = 0; i < limit / 2 + 1; ++i) {
        if (::mkdir(names[i % 2].constData(), 0700) != 0 || ::rmdir(names[i % 2].constData()) != 0)
            return false;
    }
    return limit > 0;
}

bool InotifyFolderWatcherTest::noBatch()
{
    return !QTest::qWaitFor([this] { return m_batches != m_expected; }, kQuietTime);
}

void InotifyFolderWatcherTest::eachKindOfEventGivesABatch_data()
{
    QTest::addColumn<std::function<bool()>>("action");
    const auto row = [](const char *name, const std::function<bool()> &action) {
        QTest::newRow(name) << action;
    };
    row("creation", [this] { return link(u"nowhere"_s, path(u"Desktop/new"_s)); });
    row("new folder", [this] { return QDir(path(u"Desktop"_s)).mkdir(u"new"_s); });
    row("close after write", [this] { return write(path(u"Desktop/old"_s)); });
    row("rename in", [this] { return renameOver(path(u"beside"_s), path(u"Desktop/new"_s)); });
    row("rename out", [this] { return renameOver(path(u"Desktop/old"_s), path(u"new"_s)); });
    row("rename within",
        [this] { return renameOver(path(u"Desktop/old"_s), path(u"Desktop/new"_s)); });
    row("hard link", [this] {
        return ::link(QFile::encodeName(path(u"beside"_s)).constData(),
                      QFile::encodeName(path(u"Desktop/new"_s)).constData())
            == 0;
    });
    row("deletion", [this] { return QFile::remove(path(u"Desktop/old"_s)); });
    row("attribute change",
        [this] { return QFile::setPermissions(path(u"Desktop/old"_s), QFile::ReadOwner); });
    row("attribute change of the folder", [this] {
        return QFile::setPermissions(path(u"Desktop"_s),
                                     QFile::ReadOwner | QFile::ExeOwner | QFile::WriteOwner);
    });
}

void InotifyFolderWatcherTest::eachKindOfEventGivesABatch()
{
    QFETCH(std::function<bool()>, action);
    QVERIFY(write(path(u"Desktop/old"_s)));
    QVERIFY(write(path(u"beside"_s)));
    QVERIFY(QFile::setPermissions(path(u"Desktop/old"_s), QFile::ReadOwner | QFile::WriteOwner));
    QCOMPARE(start(), Start::Running);
    QVERIFY(action());
    QVERIFY(nextBatch());
    QVERIFY(!m_mayBeAnother);
}

void InotifyFolderWatcherTest::batchComesASecondAfterTheFirstEvent()
{
    QCOMPARE(start(), Start::Running);
    QElapsedTimer timer;
    timer.start();
    QVERIFY(write(path(u"Desktop/0"_s)));
    for (int i = 1; i < 9; ++i)
        QTimer::singleShot(100 * i, this, [this, i] { write(path(u"Desktop/%1"_s.arg(i))); });
    QVERIFY(nextBatch());
    QVERIFY2(timer.elapsed() >= 1000, qPrintable(QString::number(timer.elapsed())));
    QVERIFY2(timer.elapsed() < 2000, qPrintable(QString::number(timer.elapsed())));
    QVERIFY(noBatch());
}

void InotifyFolderWatcherTest::laterEventsGiveAnotherBatch()
{
    QCOMPARE(start(), Start::Running);
    for (int i = 0; i < 3; ++i) {
        QElapsedTimer timer;
        timer.start();
        QVERIFY(write(path(u"Desktop/%1"_s.arg(i))));
        QVERIFY(nextBatch());
        QVERIFY2(timer.elapsed() >= 1000, qPrintable(QString::number(timer.elapsed())));
    }
}

void InotifyFolderWatcherTest::eventsBeforeStartDoNotCount()
{
    QVERIFY(write(path(u"Desktop/before"_s)));
    QCOMPARE(start(), Start::Running);
    QVERIFY(noBatch());
}

void InotifyFolderWatcherTest::whatHappensBesideTheFolderDoesNotCount()
{
    QVERIFY(QDir(path(u"Desktop"_s)).mkdir(u"below"_s));
    QCOMPARE(start(), Start::Running);
    QVERIFY(write(path(u"beside"_s)));
    QVERIFY(renameOver(path(u"beside"_s), path(u"besides"_s)));
    QVERIFY(QFile::remove(path(u"besides"_s)));
    QVERIFY(write(path(u"Desktop/below/deep"_s)));
    QVERIFY(noBatch());
}

void InotifyFolderWatcherTest::missingFolderIsPickedUp()
{
    QVERIFY(QDir(path()).rmdir(u"Desktop"_s));
    QCOMPARE(start(), Start::Idle);
    QVERIFY(write(path(u"beside"_s)));
    QVERIFY(noBatch());
    QVERIFY(QDir(path()).mkdir(u"Desktop"_s));
    QVERIFY(nextBatch());
    QVERIFY(write(path(u"Desktop/new"_s)));
    QVERIFY(nextBatch());
}

void InotifyFolderWatcherTest::missingFolderBelowMissingFoldersIsPickedUp()
{
    QCOMPARE(start(path(u"a/b/Desktop"_s)), Start::Idle);
    QVERIFY(QDir(path()).mkdir(u"a"_s));
    QVERIFY(noBatch());
    QVERIFY(QDir(path()).mkpath(u"a/b/Desktop"_s));
    QVERIFY(nextBatch());
    QVERIFY(write(path(u"a/b/Desktop/new"_s)));
    QVERIFY(nextBatch());
}

void InotifyFolderWatcherTest::deletedFolderIsPickedUpAgain()
{
    QCOMPARE(start(), Start::Running);
    QVERIFY(QDir(path()).rmdir(u"Desktop"_s));
    QVERIFY(nextBatch());
    QVERIFY(QDir(path()).mkdir(u"Desktop"_s));
    QVERIFY(nextBatch());
    // Both at once.
    QVERIFY(QDir(path(u"Desktop"_s)).removeRecursively());
    QVERIFY(QDir(path()).mkdir(u"Desktop"_s));
    QVERIFY(nextBatch());
    QVERIFY(write(path(u"Desktop/new"_s)));
    QVERIFY(nextBatch());
}

void InotifyFolderWatcherTest::folderRenamedOverIsPickedUp()
{
    QVERIFY(QDir(path()).mkdir(u"other"_s));
    QCOMPARE(start(), Start::Running);
    QVERIFY(renameOver(path(u"other"_s), path(u"Desktop"_s)));
    QVERIFY(nextBatch());
    QVERIFY(m_mayBeAnother);
    QVERIFY(write(path(u"Desktop/new"_s)));
    QVERIFY(nextBatch());
}

void InotifyFolderWatcherTest::folderMovedAwayIsPickedUpWhenItComesBack()
{
    QCOMPARE(start(), Start::Running);
    QVERIFY(renameOver(path(u"Desktop"_s), path(u"away"_s)));
    QVERIFY(nextBatch());
    QVERIFY(write(path(u"away/new"_s)));
    QVERIFY(noBatch());
    QVERIFY(renameOver(path(u"away"_s), path(u"Desktop"_s)));
    QVERIFY(nextBatch());
    QVERIFY(write(path(u"Desktop/newer"_s)));
    QVERIFY(nextBatch());
}

void InotifyFolderWatcherTest::retargetedLinkIsFollowed()
{
    QVERIFY(QDir(path()).mkdir(u"other"_s));
    QVERIFY(link(u"Desktop"_s, path(u"link"_s)));
    QVERIFY(link(u"other"_s, path(u"newLink"_s)));
    QCOMPARE(start(path(u"link"_s)), Start::Running);
    QVERIFY(renameOver(path(u"newLink"_s), path(u"link"_s)));
    QVERIFY(nextBatch());
    QVERIFY(write(path(u"Desktop/new"_s)));
    QVERIFY(noBatch());
    QVERIFY(write(path(u"other/new"_s)));
    QVERIFY(nextBatch());
}

void InotifyFolderWatcherTest::overflowIsABatchForAllAndFindsTheFolderAgain()
{
    QVERIFY(QDir(path()).mkdir(u"Shots"_s));
    QCOMPARE(start(), Start::Running);
    const std::unique_ptr<FolderWatcher> other = m_makeWatcher();
    int batches = 0;
    QCOMPARE(other->start(path(u"Shots"_s), [&batches](bool) { ++batches; }), Start::Running);
    QVERIFY(overflow());
    // These events are lost.
    QVERIFY(renameOver(path(u"Desktop"_s), path(u"away"_s)));
    QVERIFY(QDir(path()).mkdir(u"Desktop"_s));
    QVERIFY(nextBatch());
    QTRY_COMPARE(batches, 1);
    QVERIFY(write(path(u"Desktop/new"_s)));
    QVERIFY(nextBatch());
}

void InotifyFolderWatcherTest::pollingTakesOverBeyondALimit_data()
{
    QTest::addColumn<QString>("limit");
    QTest::newRow("instances") << u"max_inotify_instances"_s;
    QTest::newRow("watches") << u"max_inotify_watches"_s;
}

void InotifyFolderWatcherTest::pollingTakesOverBeyondALimit()
{
    QFETCH(QString, limit);
    if (qEnvironmentVariable("TEST_LIMIT") != limit) {
        const auto [status, output] = runBeyond(limit);
        QVERIFY2(status == 0, output.constData());
        return;
    }
    const CapturedOutput output;
    QCOMPARE(start(), Start::Running);
    QVERIFY(write(path(u"Desktop/new"_s)));
    QVERIFY(nextBatch());
    QVERIFY(!m_mayBeAnother);
    QVERIFY(QDir(path(u"Desktop"_s)).removeRecursively());
    QVERIFY(nextBatch());
    QVERIFY(QDir(path()).mkdir(u"Desktop"_s));
    QVERIFY(nextBatch());
    QVERIFY(m_mayBeAnother);
    const QString line = u"⚠️ No inotify watch left for "_s + path(u"Desktop"_s)
        + u": looking at it every second instead";
    QCOMPARE(output.lines(), QStringList({line}));
    QVERIFY(QDir(path()).rmdir(u"Desktop"_s));
    QCOMPARE(start(), Start::Idle);
    QVERIFY(QDir(path()).mkdir(u"Desktop"_s));
    m_expected = m_batches;
    QVERIFY(nextBatch());
    QCOMPARE(output.lines(), QStringList({line, line}));
}

void InotifyFolderWatcherTest::folderThatCannotEvenBePolledIsAFailure()
{
    rlimit old = {};
    QCOMPARE(::getrlimit(RLIMIT_NOFILE, &old), 0);
    rlimit none = old;
    none.rlim_cur = 0;
    QCOMPARE(::setrlimit(RLIMIT_NOFILE, &none), 0);
    const CapturedOutput output;
    const Start outcome = start();
    QCOMPARE(::setrlimit(RLIMIT_NOFILE, &old), 0);
    QCOMPARE(outcome, Start::Failed);
    QCOMPARE(output.lines(), QStringList());
}

void InotifyFolderWatcherTest::batchMayEndTheWatching()
{
    m_watcher = m_makeWatcher();
    QCOMPARE(m_watcher->start(path(u"Desktop"_s), [this](bool) { m_watcher.reset(); }),
             Start::Running);
    QVERIFY(write(path(u"Desktop/new"_s)));
    QTRY_VERIFY(!m_watcher);
}

void InotifyFolderWatcherTest::quietFolderWakesNobodyUp()
{
    QCOMPARE(start(), Start::Running);
    const std::unique_ptr<FolderWatcher> other = m_makeWatcher();
    QVERIFY(QDir(path()).mkdir(u"Shots"_s));
    QCOMPARE(other->start(path(u"Shots"_s), [](bool) {}), Start::Running);
    const long count = wakeUps();
    // The end of the wait itself is one.
    QVERIFY2(count <= 2, qPrintable(QString::number(count)));
}

void InotifyFolderWatcherTest::foldersShareOneInstance()
{
    const qsizetype before = instances();
    QVERIFY(QDir(path()).mkdir(u"Shots"_s));
    QCOMPARE(start(), Start::Running);
    std::unique_ptr<FolderWatcher> other = m_makeWatcher();
    int batches = 0;
    QCOMPARE(other->start(path(u"Shots"_s), [&batches](bool) { ++batches; }), Start::Running);
    QCOMPARE(instances(), before + 1);
    QVERIFY(write(path(u"Desktop/new"_s)));
    QVERIFY(nextBatch());
    QCOMPARE(batches, 0);
    m_watcher.reset();
    QVERIFY(write(path(u"Shots/new"_s)));
    QTRY_COMPARE(batches, 1);
    other.reset();
    QCOMPARE(instances(), before);
    QCOMPARE(start(), Start::Running);
    QCOMPARE(instances(), before + 1);
}

void InotifyFolderWatcherTest::busyFolderNeitherDelaysAnotherNorWakesMuch()
{
    QVERIFY(QDir(path()).mkdir(u"Shots"_s));
    QCOMPARE(start(), Start::Running);
    const std::unique_ptr<FolderWatcher> other = m_makeWatcher();
    QElapsedTimer timer;
    qint64 batchAfter = 0;
    QCOMPARE(other->start(path(u"Shots"_s), [&](bool) { batchAfter = timer.elapsed(); }),
             Start::Running);
    std::atomic<bool> isOver = false;
    const std::unique_ptr<QThread> busy(QThread::create([this, &isOver] {
        for (int i = 0; !isOver; ++i) {
            write(path(u"Desktop/%1"_s.arg(i % 10)));
            QThread::msleep(1);
        }
    }));
    busy->start();
    QVERIFY(nextBatch());
    QTimer::singleShot(300, Qt::PreciseTimer, this, [&] {
        write(path(u"Shots/new"_s));
        timer.start();
    });
    const long count = wakeUps();
    isOver = true;
    QVERIFY(busy->wait());
    QVERIFY2(batchAfter >= 995 && batchAfter < 1500, qPrintable(QString::number(batchAfter)));
    // In two and a half seconds: ten readings each, as many ends of rests, and the batches.
    QVERIFY2(count <= 70, qPrintable(QString::number(count)));
}

TESSERY_TEST_MAIN(QCoreApplication, InotifyFolderWatcherTest)
#include "InotifyFolderWatcherTest.moc"
