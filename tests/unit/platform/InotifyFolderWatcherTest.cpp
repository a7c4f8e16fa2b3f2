#include "platform/linux/InotifyFolderWatcher.h"

#include "support/TestMain.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <sys/resource.h>
#include <sys/stat.h>

#include <functional>
#include <memory>
#include <optional>

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
    void overflowIsABatchAndFindsTheFolderAgain();
    void refusedInstanceIsAFailure();
    void batchMayEndTheWatching();
    void quietFolderWakesNobodyUp();

private:
    QString path(const QString &name = {}) const { return m_folder->filePath(name); }
    Start start() { return start(path(u"Desktop"_s)); }
    Start start(const QString &folder);
    /// Waits for the next batch; every test waits for all its batches, one by one.
    bool nextBatch();
    bool noBatch();

    std::optional<QTemporaryDir> m_folder;
    std::unique_ptr<InotifyFolderWatcher> m_watcher;
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
    m_watcher = std::make_unique<InotifyFolderWatcher>();
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

void InotifyFolderWatcherTest::overflowIsABatchAndFindsTheFolderAgain()
{
    QFile limitFile(u"/proc/sys/fs/inotify/max_queued_events"_s);
    QVERIFY(limitFile.open(QIODevice::ReadOnly));
    const int limit = limitFile.readAll().trimmed().toInt();
    QVERIFY(limit > 0);
    QCOMPARE(start(), Start::Running);
    // Nothing is read meanwhile, and no two events in a row are alike.
    const QByteArray names[] = {QFile::encodeName(path(u"Desktop/a"_s)),
                                QFile::encodeName(path(u"Desktop/b"_s))};
    for (int i = 0; i < limit / 2 + 1; ++i) {
        QCOMPARE(::mkdir(names[i % 2].constData(), 0700), 0);
        QCOMPARE(::rmdir(names[i % 2].constData()), 0);
    }
    // These events are lost.
    QVERIFY(renameOver(path(u"Desktop"_s), path(u"away"_s)));
    QVERIFY(QDir(path()).mkdir(u"Desktop"_s));
    QVERIFY(nextBatch());
    QVERIFY(write(path(u"Desktop/new"_s)));
    QVERIFY(nextBatch());
}

void InotifyFolderWatcherTest::refusedInstanceIsAFailure()
{
    m_watcher = std::make_unique<InotifyFolderWatcher>();
    rlimit old = {};
    QCOMPARE(::getrlimit(RLIMIT_NOFILE, &old), 0);
    rlimit none = old;
    none.rlim_cur = 0;
    QCOMPARE(::setrlimit(RLIMIT_NOFILE, &none), 0);
    const Start outcome = m_watcher->start(path(u"Desktop"_s), [](bool) {});
    QCOMPARE(::setrlimit(RLIMIT_NOFILE, &old), 0);
    QCOMPARE(outcome, Start::Failed);
}

void InotifyFolderWatcherTest::batchMayEndTheWatching()
{
    m_watcher = std::make_unique<InotifyFolderWatcher>();
    QCOMPARE(m_watcher->start(path(u"Desktop"_s), [this](bool) { m_watcher.reset(); }),
             Start::Running);
    QVERIFY(write(path(u"Desktop/new"_s)));
    QTRY_VERIFY(!m_watcher);
}

/// Counts how often the event loop had to wake up.
void InotifyFolderWatcherTest::quietFolderWakesNobodyUp()
{
    QCOMPARE(start(), Start::Running);
    rusage before = {};
    rusage after = {};
    QTimer end;
    end.setSingleShot(true);
    end.start(2500);
    QVERIFY(::getrusage(RUSAGE_THREAD, &before) == 0);
    while (end.isActive())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QVERIFY(::getrusage(RUSAGE_THREAD, &after) == 0);
    // The end of the wait itself is one.
    QVERIFY2(after.ru_nvcsw - before.ru_nvcsw <= 2,
             qPrintable(QString::number(after.ru_nvcsw - before.ru_nvcsw)));
}

TESSERY_TEST_MAIN(QCoreApplication, InotifyFolderWatcherTest)
#include "InotifyFolderWatcherTest.moc"
