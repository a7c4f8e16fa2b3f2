#include "monitor/WatchedFolder.h"

#include "support/CapturedOutput.h"
#include "support/FakeFolderWatcher.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <fcntl.h>
#include <sys/stat.h>

#include <ctime>
#include <memory>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

/// In nanoseconds since 1970.
qint64 read(clockid_t clock)
{
    timespec time = {};
    ::clock_gettime(clock, &time);
    return time.tv_sec * qint64(1'000'000'000) + time.tv_nsec;
}

} // namespace

/// The path of a watched folder leads to another folder than before.
class ChangedFolderTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void oldScreenshotsOfAReplacementStayKnown();
    void newScreenshotInAReplacementIsFound();
    void screenshotMovedIntoAReplacementIsFound();
    void oldFileWhoseStatusChangesStaysOld();
    void folderThatMayBeAnotherIsLookedAt();
    void folderThatAppearsBringsNoOldScreenshots();
    void whatAFileSaysOfItsAgeDoesNotCount();
    void knownScreenshotsOfTheFirstFolderStayKnown();
    void retargetedLinkBringsNoOldScreenshots();
    void fileMadeRightAtTheStartIsNew();

private:
    QString path(const QString &name) const { return m_base->filePath(name); }
    void make(const QString &folder) const { QVERIFY(QDir(m_base->path()).mkpath(folder)); }
    void move(const QString &from, const QString &to) const;
    void write(const QString &name) const;
    /// Watches the folder, once everything that there is is old; begin is when monitoring began, if
    /// not now.
    void start(const QString &folder = u"Desktop"_s, const std::optional<timespec> &begin = {});
    /// What a rescan finds.
    QStringList rescan(bool mayBeAnother = false);

    std::optional<QTemporaryDir> m_base;
    FakeFolderWatcher *m_watcher = nullptr;
    std::unique_ptr<WatchedFolder> m_folder;
    QStringList m_found;
};

void ChangedFolderTest::init()
{
    TestSurroundings::failOnWarnings();
    m_base.emplace();
    m_found.clear();
}

void ChangedFolderTest::cleanup()
{
    m_folder.reset();
    m_base.reset();
}

void ChangedFolderTest::move(const QString &from, const QString &to) const
{
    QVERIFY(QDir(m_base->path()).rename(from, to));
}

void ChangedFolderTest::write(const QString &name) const
{
    QFile file(path(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
}

void ChangedFolderTest::start(const QString &folder, const std::optional<timespec> &begin)
{
    // Files are stamped by a clock that goes in steps.
    const qint64 now = read(CLOCK_REALTIME);
    QVERIFY(QTest::qWaitFor([now] { return read(CLOCK_REALTIME_COARSE) > now; }));
    auto watcher = std::make_unique<FakeFolderWatcher>();
    m_watcher = watcher.get();
    m_folder = std::make_unique<WatchedFolder>(
        path(folder), QString(), std::move(watcher),
        [this](const QString &name) { m_found.append(name); }, begin.value_or(OpenFolder::now()));
    QVERIFY(m_folder->start());
}

QStringList ChangedFolderTest::rescan(bool mayBeAnother)
{
    m_found.clear();
    m_watcher->deliverBatch(mayBeAnother);
    m_found.sort();
    return m_found;
}

void ChangedFolderTest::oldScreenshotsOfAReplacementStayKnown()
{
    make(u"Desktop"_s);
    make(u"other"_s);
    write(u"other/Screenshot old.png"_s);
    start();
    move(u"Desktop"_s, u"away"_s);
    move(u"other"_s, u"Desktop"_s);
    const CapturedOutput output;
    QCOMPARE(rescan(), QStringList());
    QCOMPARE(output.lines(),
             QStringList({u"📸 FSEvents triggered - checking for new screenshots..."_s,
                          u"📸 Found 1 files in directory"_s}));
    QCOMPARE(rescan(), QStringList());
    write(u"Desktop/Screenshot new.png"_s);
    QCOMPARE(rescan(), QStringList({u"Screenshot new.png"_s}));
}

void ChangedFolderTest::newScreenshotInAReplacementIsFound()
{
    make(u"Desktop"_s);
    make(u"other"_s);
    write(u"other/Screenshot old.png"_s);
    start();
    write(u"other/Screenshot new.png"_s);
    move(u"Desktop"_s, u"away"_s);
    move(u"other"_s, u"Desktop"_s);
    write(u"Desktop/Screenshot newer.png"_s);
    QCOMPARE(rescan(), QStringList({u"Screenshot new.png"_s, u"Screenshot newer.png"_s}));
    QCOMPARE(rescan(), QStringList());
}

void ChangedFolderTest::screenshotMovedIntoAReplacementIsFound()
{
    make(u"Desktop"_s);
    make(u"other"_s);
    start();
    write(u"partial"_s);
    move(u"Desktop"_s, u"away"_s);
    move(u"other"_s, u"Desktop"_s);
    move(u"partial"_s, u"Desktop/Screenshot.png"_s);
    QCOMPARE(rescan(), QStringList({u"Screenshot.png"_s}));
}

void ChangedFolderTest::oldFileWhoseStatusChangesStaysOld()
{
    make(u"Desktop"_s);
    make(u"other"_s);
    write(u"other/Screenshot old.png"_s);
    start();
    QVERIFY(QFile(path(u"other/Screenshot old.png"_s)).setPermissions(QFile::ReadOwner));
    move(u"Desktop"_s, u"away"_s);
    move(u"other"_s, u"Desktop"_s);
    QCOMPARE(rescan(), QStringList());
}

void ChangedFolderTest::folderThatMayBeAnotherIsLookedAt()
{
    make(u"Desktop"_s);
    // As if all that is made here were from before the start.
    start(u"Desktop"_s, timespec{.tv_sec = ::time(nullptr) + 3600, .tv_nsec = 0});
    write(u"Desktop/Screenshot 1.png"_s);
    QCOMPARE(rescan(), QStringList({u"Screenshot 1.png"_s}));
    write(u"Desktop/Screenshot 2.png"_s);
    QCOMPARE(rescan(true), QStringList());
    write(u"Desktop/Screenshot 3.png"_s);
    QCOMPARE(rescan(), QStringList({u"Screenshot 3.png"_s}));
}

void ChangedFolderTest::folderThatAppearsBringsNoOldScreenshots()
{
    make(u"other"_s);
    write(u"other/Screenshot old.png"_s);
    start();
    move(u"other"_s, u"Desktop"_s);
    write(u"Desktop/Screenshot new.png"_s);
    QCOMPARE(rescan(), QStringList({u"Screenshot new.png"_s}));
    QCOMPARE(rescan(), QStringList());
}

/// Copies keep it.
void ChangedFolderTest::whatAFileSaysOfItsAgeDoesNotCount()
{
    make(u"other"_s);
    start();
    const timespec longAgo[] = {{.tv_sec = 1, .tv_nsec = 0}, {.tv_sec = 1, .tv_nsec = 0}};
    write(u"other/Screenshot.png"_s);
    QCOMPARE(::utimensat(AT_FDCWD, QFile::encodeName(path(u"other/Screenshot.png"_s)).constData(),
                         longAgo, 0),
             0);
    move(u"other"_s, u"Desktop"_s);
    QCOMPARE(rescan(), QStringList({u"Screenshot.png"_s}));
}

void ChangedFolderTest::knownScreenshotsOfTheFirstFolderStayKnown()
{
    make(u"Desktop"_s);
    make(u"other"_s);
    write(u"Desktop/Screenshot old.png"_s);
    start();
    write(u"Desktop/Screenshot new.png"_s);
    QCOMPARE(rescan(), QStringList({u"Screenshot new.png"_s}));
    move(u"Desktop"_s, u"away"_s);
    move(u"other"_s, u"Desktop"_s);
    QCOMPARE(rescan(), QStringList());
    write(u"away/Screenshot newer.png"_s);
    move(u"Desktop"_s, u"other"_s);
    move(u"away"_s, u"Desktop"_s);
    QCOMPARE(rescan(), QStringList({u"Screenshot newer.png"_s}));
}

void ChangedFolderTest::retargetedLinkBringsNoOldScreenshots()
{
    make(u"one"_s);
    make(u"two"_s);
    write(u"two/Screenshot old.png"_s);
    QVERIFY(QFile::link(u"one"_s, path(u"Desktop"_s)));
    start();
    QVERIFY(QFile::remove(path(u"Desktop"_s)));
    QVERIFY(QFile::link(u"two"_s, path(u"Desktop"_s)));
    QCOMPARE(rescan(), QStringList());
    // From now on this is the folder, and what comes there is new.
    QVERIFY(QFile::rename(path(u"two/Screenshot old.png"_s), path(u"two/Screenshot of old.png"_s)));
    QCOMPARE(rescan(), QStringList({u"Screenshot of old.png"_s}));
}

void ChangedFolderTest::fileMadeRightAtTheStartIsNew()
{
    for (int i = 0; i < 50; ++i) {
        start();
        make(u"other"_s);
        write(u"other/Screenshot %1.png"_s.arg(i));
        move(u"other"_s, u"Desktop"_s);
        QCOMPARE(rescan(), QStringList({u"Screenshot %1.png"_s.arg(i)}));
        QVERIFY(QDir(path(u"Desktop"_s)).removeRecursively());
    }
}

TESSERY_TEST_MAIN(QCoreApplication, ChangedFolderTest)
#include "ChangedFolderTest.moc"
