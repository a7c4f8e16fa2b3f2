#include "platform/linux/PathWatches.h"

#include "base/UniqueFd.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <fcntl.h>
#include <poll.h>

#include <cstdio>
#include <memory>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

class PathWatchesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void eventInTheFolderLeavesThePath();
    void nothingElseOnTheWayWakesUp();
    void siblingsOfTheFolderDoNotCount();
    void deletedFolderIsNoticed();
    void folderDeletedWhileOpenIsNoticed();
    void folderRenamedOverIsNoticed();
    void folderMovedAwayIsNoticedAndForgotten();
    void movedAncestorIsNoticed();
    void arrivalIsNoticedAtEveryLevel();
    void fileInTheFoldersPlaceIsNoFolder();
    void deletedAndRetargetedLinksAreNoticed_data();
    void deletedAndRetargetedLinksAreNoticed();
    void targetOfALinkIsFollowedByItsOwnPath();
    void linkToAMissingFolderWaitsForIt();
    void circleOfLinksIsNoFolder();
    void folderMayBeOnItsOwnPath();
    void widerWatchesEndWithTheirPurpose();
    void rootCanBeWatched();
    void placingLosesNoEvent();
    void eachHearsOfItsOwnFolder();
    void sharedFolderTellsEach();
    void leavingKeepsTheWatchesOfOthers();
    void sharedWatchesEndWithTheLastUser();
    void sharedParentIsNarrowedAgain();
    void otherUsersWishesAreNotTold();

private:
    QString path(const QString &name = {}) const { return m_folder->filePath(name); }
    void make(const QString &name) { QVERIFY(QDir(path()).mkpath(name)); }
    void move(const QString &from, const QString &to);
    void link(const QString &target, const QString &name);
    void write(const QString &name);
    void watch(const QString &name);
    bool isReadable() const;
    /// How many files and folders the instance watches.
    qsizetype watchCount() const;

    std::optional<QTemporaryDir> m_folder;
    std::shared_ptr<SharedInotify> m_inotify;
    std::optional<PathWatches> m_watches;
};

#define COMPARE_EVENTS(expectedFolder, expectedPath)                                               \
    do {                                                                                           \
        const PathWatches::Events events = m_watches->read();                                      \
        QCOMPARE(events.folder, expectedFolder);                                                   \
        QCOMPARE(events.path, expectedPath);                                                       \
    } while (false)

/// Follows the path anew and leaves no event behind.
#define COMPARE_PLACED(expectedFolder)                                                             \
    do {                                                                                           \
        m_watches->place();                                                                        \
        QCOMPARE(m_watches->hasFolder(), expectedFolder);                                          \
        COMPARE_EVENTS(false, false);                                                              \
    } while (false)

void PathWatchesTest::init()
{
    TestSurroundings::failOnWarnings();
    m_folder.emplace();
    m_inotify = std::make_shared<SharedInotify>();
}

void PathWatchesTest::cleanup()
{
    m_watches.reset();
    m_inotify.reset();
    m_folder.reset();
}

void PathWatchesTest::move(const QString &from, const QString &to)
{
    QCOMPARE(std::rename(QFile::encodeName(path(from)).constData(),
                         QFile::encodeName(path(to)).constData()),
             0);
}

void PathWatchesTest::link(const QString &target, const QString &name)
{
    QVERIFY(QFile::link(target, path(name)));
}

void PathWatchesTest::write(const QString &name)
{
    QFile file(path(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
}

void PathWatchesTest::watch(const QString &name)
{
    m_watches.emplace(m_inotify, QFile::encodeName(path(name)));
    m_watches->place();
}

bool PathWatchesTest::isReadable() const
{
    pollfd ready = {.fd = m_inotify->descriptor(), .events = POLLIN, .revents = 0};
    return ::poll(&ready, 1, 0) == 1;
}

qsizetype PathWatchesTest::watchCount() const
{
    QFile facts(u"/proc/self/fdinfo/%1"_s.arg(m_inotify->descriptor()));
    return facts.open(QIODevice::ReadOnly) ? facts.readAll().count("inotify wd:") : -1;
}

void PathWatchesTest::eventInTheFolderLeavesThePath()
{
    make(u"a/Desktop"_s);
    watch(u"a/Desktop"_s);
    QVERIFY(m_watches->hasFolder());
    QCOMPARE(m_watches->lastFolder(), QFile::encodeName(path(u"a/Desktop"_s)));
    COMPARE_EVENTS(false, false);
    write(u"a/Desktop/new"_s);
    COMPARE_EVENTS(true, false);
    QVERIFY(QFile::setPermissions(path(u"a/Desktop"_s),
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner
                                      | QFile::ReadOther));
    COMPARE_EVENTS(true, false);
    COMPARE_EVENTS(false, false);
}

void PathWatchesTest::nothingElseOnTheWayWakesUp()
{
    make(u"a/b/Desktop/below"_s);
    watch(u"a/b/Desktop"_s);
    write(u"beside"_s);
    write(u"a/beside"_s);
    move(u"a/beside"_s, u"a/moved"_s);
    write(u"a/b/beside"_s);
    write(u"a/b/Desktop/below/deep"_s);
    QVERIFY(QFile::setPermissions(
        path(u"a"_s), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ReadOther));
    QVERIFY(QDir(path(u"a/b/Desktop"_s)).entryList().contains(u"below"_s));
    QVERIFY(!isReadable());
}

void PathWatchesTest::siblingsOfTheFolderDoNotCount()
{
    make(u"a/Desktop"_s);
    watch(u"a/Desktop"_s);
    write(u"a/beside"_s);
    move(u"a/beside"_s, u"a/moved"_s);
    QVERIFY(QFile::remove(path(u"a/moved"_s)));
    COMPARE_EVENTS(false, false);
    QVERIFY(QDir(path(u"a"_s)).rmdir(u"Desktop"_s));
    m_watches->place();
    m_watches->read();
    write(u"a/Desktop2"_s);
    COMPARE_EVENTS(false, false);
}

void PathWatchesTest::deletedFolderIsNoticed()
{
    make(u"Desktop"_s);
    watch(u"Desktop"_s);
    QVERIFY(QDir(path()).rmdir(u"Desktop"_s));
    COMPARE_EVENTS(true, true);
    COMPARE_PLACED(false);
    QCOMPARE(m_watches->lastFolder(), QFile::encodeName(path()));
    make(u"Desktop"_s);
    COMPARE_EVENTS(false, true);
    COMPARE_PLACED(true);
    write(u"Desktop/new"_s);
    COMPARE_EVENTS(true, false);
}

void PathWatchesTest::folderDeletedWhileOpenIsNoticed()
{
    make(u"Desktop"_s);
    const UniqueFd open(::open(QFile::encodeName(path(u"Desktop"_s)).constData(),
                               O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    QVERIFY(open.isOpen());
    watch(u"Desktop"_s);
    QVERIFY(QDir(path()).rmdir(u"Desktop"_s));
    COMPARE_EVENTS(false, true);
    COMPARE_PLACED(false);
}

void PathWatchesTest::folderRenamedOverIsNoticed()
{
    make(u"Desktop"_s);
    make(u"other"_s);
    watch(u"Desktop"_s);
    move(u"other"_s, u"Desktop"_s);
    QVERIFY(m_watches->read().path);
    COMPARE_PLACED(true);
    write(u"Desktop/new"_s);
    COMPARE_EVENTS(true, false);
}

void PathWatchesTest::folderMovedAwayIsNoticedAndForgotten()
{
    make(u"Desktop"_s);
    watch(u"Desktop"_s);
    move(u"Desktop"_s, u"away"_s);
    COMPARE_EVENTS(true, true);
    make(u"Desktop"_s);
    COMPARE_PLACED(true);
    write(u"away/new"_s);
    COMPARE_EVENTS(false, false);
    write(u"Desktop/new"_s);
    COMPARE_EVENTS(true, false);
}

void PathWatchesTest::movedAncestorIsNoticed()
{
    make(u"a/b/c/Desktop"_s);
    for (const auto &[name, before] :
         {std::pair{u"a"_s, u""_s}, {u"b"_s, u"a/"_s}, {u"c"_s, u"a/b/"_s}}) {
        watch(u"a/b/c/Desktop"_s);
        QVERIFY(m_watches->hasFolder());
        move(before + name, before + u"away");
        QVERIFY(m_watches->read().path);
        COMPARE_PLACED(false);
        write(before
              + (name == u"a"       ? u"away/b/c"_s
                     : name == u"b" ? u"away/c"_s
                                    : u"away"_s)
              + u"/Desktop/new");
        COMPARE_EVENTS(false, false);
        move(before + u"away", before + name);
        QVERIFY(m_watches->read().path);
        COMPARE_PLACED(true);
    }
}

void PathWatchesTest::arrivalIsNoticedAtEveryLevel()
{
    watch(u"a/b/Desktop"_s);
    QVERIFY(!m_watches->hasFolder());
    for (const QString &name : {u"a"_s, u"a/b"_s, u"a/b/Desktop"_s}) {
        QVERIFY(!m_watches->hasFolder());
        make(name);
        COMPARE_EVENTS(false, true);
        m_watches->place();
        QCOMPARE(m_watches->lastFolder(), QFile::encodeName(path(name)));
        COMPARE_EVENTS(false, false);
    }
    QVERIFY(m_watches->hasFolder());
}

void PathWatchesTest::fileInTheFoldersPlaceIsNoFolder()
{
    write(u"Desktop"_s);
    watch(u"Desktop"_s);
    QVERIFY(!m_watches->hasFolder());
    QVERIFY(QFile::remove(path(u"Desktop"_s)));
    make(u"Desktop"_s);
    QVERIFY(m_watches->read().path);
    COMPARE_PLACED(true);
}

void PathWatchesTest::deletedAndRetargetedLinksAreNoticed_data()
{
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<QString>("watched");
    QTest::newRow("the folder, relative") << u""_s << u"link"_s;
    QTest::newRow("the folder, absolute") << u"/"_s << u"link"_s;
    QTest::newRow("its parent") << u""_s << u"link/Desktop"_s;
}

void PathWatchesTest::deletedAndRetargetedLinksAreNoticed()
{
    QFETCH(QString, prefix);
    QFETCH(QString, watched);
    const QString start = prefix.isEmpty() ? prefix : path() + prefix;
    make(u"one/Desktop"_s);
    make(u"two/Desktop"_s);
    const QString below = watched.mid(4);
    link(start + u"one", u"link"_s);
    link(start + u"two", u"newLink"_s);
    watch(watched);
    QVERIFY(m_watches->hasFolder());
    write(u"one"_s + below + u"/new");
    COMPARE_EVENTS(true, false);
    move(u"newLink"_s, u"link"_s);
    QVERIFY(m_watches->read().path);
    COMPARE_PLACED(true);
    write(u"one"_s + below + u"/newer");
    COMPARE_EVENTS(false, false);
    write(u"two"_s + below + u"/new");
    COMPARE_EVENTS(true, false);
    QVERIFY(QFile::remove(path(u"link"_s)));
    QVERIFY(m_watches->read().path);
    COMPARE_PLACED(false);
    link(start + u"one", u"link"_s);
    QVERIFY(m_watches->read().path);
    COMPARE_PLACED(true);
}

void PathWatchesTest::targetOfALinkIsFollowedByItsOwnPath()
{
    make(u"a/target"_s);
    link(u"a/target"_s, u"link"_s);
    watch(u"link"_s);
    QVERIFY(m_watches->hasFolder());
    QCOMPARE(m_watches->lastFolder(), QFile::encodeName(path(u"a/target"_s)));
    move(u"a"_s, u"away"_s);
    QVERIFY(m_watches->read().path);
    COMPARE_PLACED(false);
    make(u"a/target"_s);
    QVERIFY(m_watches->read().path);
    COMPARE_PLACED(true);
}

void PathWatchesTest::linkToAMissingFolderWaitsForIt()
{
    make(u"a"_s);
    link(u"a/../b//./c"_s, u"link"_s);
    watch(u"link"_s);
    QVERIFY(!m_watches->hasFolder());
    make(u"b/c"_s);
    QVERIFY(m_watches->read().path);
    COMPARE_PLACED(true);
    write(u"b/c/new"_s);
    COMPARE_EVENTS(true, false);
}

void PathWatchesTest::circleOfLinksIsNoFolder()
{
    link(u"two"_s, u"one"_s);
    link(u"one"_s, u"two"_s);
    watch(u"one"_s);
    QVERIFY(!m_watches->hasFolder());
    QVERIFY(QFile::remove(path(u"one"_s)));
    make(u"one"_s);
    QVERIFY(m_watches->read().path);
    COMPARE_PLACED(true);
}

void PathWatchesTest::folderMayBeOnItsOwnPath()
{
    link(path(), u"link"_s);
    watch(u"link"_s);
    QVERIFY(m_watches->hasFolder());
    COMPARE_EVENTS(false, false);
    write(u"new"_s);
    COMPARE_EVENTS(true, false);
    QVERIFY(QFile::remove(path(u"link"_s)));
    QVERIFY(m_watches->read().path);
    COMPARE_PLACED(false);
}

/// While the folder is missing, what is created beside it is told; once it is there, no more.
void PathWatchesTest::widerWatchesEndWithTheirPurpose()
{
    watch(u"Desktop"_s);
    write(u"beside"_s);
    QVERIFY(isReadable());
    COMPARE_EVENTS(false, false);
    make(u"Desktop"_s);
    COMPARE_EVENTS(false, true);
    COMPARE_PLACED(true);
    write(u"besides"_s);
    QVERIFY(!isReadable());
}

void PathWatchesTest::rootCanBeWatched()
{
    m_watches.emplace(m_inotify, "/");
    m_watches->place();
    QVERIFY(m_watches->hasFolder());
}

void PathWatchesTest::placingLosesNoEvent()
{
    make(u"Desktop"_s);
    watch(u"Desktop"_s);
    write(u"Desktop/new"_s);
    m_watches->place();
    COMPARE_EVENTS(true, false);
}

void PathWatchesTest::eachHearsOfItsOwnFolder()
{
    make(u"Desktop"_s);
    make(u"Shots"_s);
    watch(u"Desktop"_s);
    PathWatches shots(m_inotify, QFile::encodeName(path(u"Shots"_s)));
    shots.place();
    write(u"Shots/new"_s);
    // Whoever reads, reads for all.
    COMPARE_EVENTS(false, false);
    QVERIFY(shots.hasEvents());
    QVERIFY(shots.read().folder);
    QVERIFY(!shots.hasEvents());
    write(u"Desktop/new"_s);
    QVERIFY(!shots.read().folder);
    COMPARE_EVENTS(true, false);
}

void PathWatchesTest::sharedFolderTellsEach()
{
    make(u"Shots"_s);
    link(u"Shots"_s, u"Desktop"_s);
    watch(u"Desktop"_s);
    PathWatches shots(m_inotify, QFile::encodeName(path(u"Shots"_s)));
    shots.place();
    write(u"Shots/new"_s);
    COMPARE_EVENTS(true, false);
    QVERIFY(shots.read().folder);
    QVERIFY(QFile::remove(path(u"Desktop"_s)));
    QVERIFY(!shots.read().path);
    COMPARE_EVENTS(false, true);
    move(u"Shots"_s, u"away"_s);
    QVERIFY(shots.read().path);
}

void PathWatchesTest::leavingKeepsTheWatchesOfOthers()
{
    make(u"Shots"_s);
    watch(u"Shots"_s);
    std::optional<PathWatches> other(std::in_place, m_inotify, QFile::encodeName(path(u"Shots"_s)));
    other->place();
    m_watches.reset();
    write(u"Shots/new"_s);
    QVERIFY(other->read().folder);
    move(u"Shots"_s, u"away"_s);
    QVERIFY(other->read().path);
}

void PathWatchesTest::sharedWatchesEndWithTheLastUser()
{
    make(u"Desktop"_s);
    make(u"Shots"_s);
    watch(u"Desktop"_s);
    const qsizetype alone = watchCount();
    QVERIFY(alone > 0);
    std::optional<PathWatches> shots(std::in_place, m_inotify, QFile::encodeName(path(u"Shots"_s)));
    shots->place();
    QCOMPARE(watchCount(), alone + 1);
    m_watches->place();
    QCOMPARE(watchCount(), alone + 1);
    m_watches.reset();
    QCOMPARE(watchCount(), alone);
    shots.reset();
    QCOMPARE(watchCount(), 0);
}

/// What one has waited for in a folder does not wake the program up once it is there, although
/// another goes on watching that folder.
void PathWatchesTest::sharedParentIsNarrowedAgain()
{
    make(u"Shots"_s);
    PathWatches shots(m_inotify, QFile::encodeName(path(u"Shots"_s)));
    shots.place();
    watch(u"Desktop"_s);
    make(u"Desktop"_s);
    COMPARE_EVENTS(false, true);
    COMPARE_PLACED(true);
    write(u"beside"_s);
    QVERIFY(!isReadable());
    QVERIFY(QDir(path()).rmdir(u"Shots"_s));
    QVERIFY(shots.read().path);
}

void PathWatchesTest::otherUsersWishesAreNotTold()
{
    make(u"a/b"_s);
    PathWatches missing(m_inotify, QFile::encodeName(path(u"a/Desktop"_s)));
    missing.place();
    watch(u"a/b"_s);
    // The one that waits hears of attributes in their parent.
    QVERIFY(QFile::setPermissions(
        path(u"a/b"_s), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ReadOther));
    COMPARE_EVENTS(true, false);
}

TESSERY_TEST_MAIN(QCoreApplication, PathWatchesTest)
#include "PathWatchesTest.moc"
