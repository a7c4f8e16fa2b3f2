#include "monitor/ScreenshotMonitor.h"

#include "support/CapturedOutput.h"
#include "support/FakeFolderWatcher.h"
#include "support/FakeStandardFolders.h"
#include "support/TestMain.h"

#include <QFile>
#include <QHash>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <optional>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

const QString kTriggered = u"📸 FSEvents triggered - checking for new screenshots..."_s;
const QString kDetected = u"✅ New screenshot detected: "_s;
const QString kTriggering = u"📤 Triggering upload callback for: "_s;

} // namespace

/// The desktop's own screenshot folders beside the Desktop.
class ScreenshotFoldersTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void eachFolderIsWatchedByItself();
    void logTellsEachFolder();
    void batchConcernsItsFolderOnly();
    void folderIsCountedOnce_data();
    void folderIsCountedOnce();
    void knownNamesAreKeptPerFolder();
    void movedScreenshotIsNewWhereItCame();
    void failingStartLeavesTheOthersAlone();
    void folderThatVanishesComesBack();
    void stopEndsAll();
    void missingDesktopLeavesTheOthersAlone();

private:
    QString path(const QString &name) const { return m_home->filePath(name); }
    void write(const QString &name) const;
    void makeMonitor();
    QStringList batch(const QString &folder);

    std::optional<CapturedOutput> m_output;
    std::optional<QTemporaryDir> m_home;
    FakeStandardFolders m_folders;
    QHash<QString, FolderWatcher::Start> m_outcomes; ///< By folder; else Running.
    std::vector<FakeFolderWatcher *> m_watchers; ///< In the order in which they were made.
    std::unique_ptr<ScreenshotMonitor> m_monitor;
    QStringList m_failed; ///< The folders that could not be watched.
    QStringList m_reported;
};

void ScreenshotFoldersTest::init()
{
    TestSurroundings::failOnWarnings();
    m_home.emplace();
    m_folders.homePath = m_home->path();
    m_folders.desktopPath = path(u"Desktop"_s);
    m_folders.screenshotPaths = {path(u"Shots"_s), path(u"Pictures/Screenshots"_s)};
    QDir home(m_home->path());
    QVERIFY(home.mkdir(u"Desktop"_s) && home.mkdir(u"Shots"_s)
            && home.mkpath(u"Pictures/Screenshots"_s));
    m_outcomes.clear();
    m_watchers.clear();
    m_reported.clear();
    m_output.emplace();
}

void ScreenshotFoldersTest::cleanup()
{
    m_monitor.reset();
    QCOMPARE(m_watchers.size(), 0U);
    // What is still to be reported would be logged in the next test.
    const auto count = [this](const QString &start) {
        return m_output->lines().filter(QRegularExpression(u'^' + start)).size();
    };
    QTRY_COMPARE(count(kTriggering), count(kDetected));
    m_home.reset();
}

void ScreenshotFoldersTest::write(const QString &name) const
{
    QFile file(path(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
}

void ScreenshotFoldersTest::makeMonitor()
{
    /// Is known to the test as long as it lives.
    class Watcher final : public FakeFolderWatcher {
    public:
        explicit Watcher(ScreenshotFoldersTest &test) : m_test(test)
        {
            m_test.m_watchers.push_back(this);
        }
        ~Watcher() override { std::erase(m_test.m_watchers, this); }
        Start start(const QString &path, OnBatch onBatch) override
        {
            outcome = m_test.m_outcomes.value(path, Start::Running);
            return FakeFolderWatcher::start(path, std::move(onBatch));
        }

    private:
        ScreenshotFoldersTest &m_test;
    };
    const auto makeWatcher = [this] {
        return std::make_unique<Watcher>(*this);
    };
    m_monitor =
        std::make_unique<ScreenshotMonitor>(m_folders, makeWatcher, [this](const QUrl &fileURL) {
            m_reported.append(fileURL.toLocalFile());
        });
    m_failed = m_monitor->start();
}

/// The lines of a batch of the folder's.
QStringList ScreenshotFoldersTest::batch(const QString &folder)
{
    const CapturedOutput output;
    for (FakeFolderWatcher *watcher : m_watchers) {
        if (watcher->watchedPath == path(folder))
            watcher->deliverBatch();
    }
    return output.lines();
}

void ScreenshotFoldersTest::eachFolderIsWatchedByItself()
{
    makeMonitor();
    QStringList watched;
    for (const FakeFolderWatcher *watcher : m_watchers)
        watched << watcher->watchedPath;
    QCOMPARE(watched,
             QStringList({path(u"Desktop"_s), path(u"Shots"_s), path(u"Pictures/Screenshots"_s)}));
    QCOMPARE(m_monitor->screenshotDirectory(), path(u"Desktop"_s));
}

void ScreenshotFoldersTest::logTellsEachFolder()
{
    m_folders.screenshotPaths.removeLast();
    write(u"Shots/Screenshot 1.png"_s);
    const CapturedOutput output;
    makeMonitor();
    QCOMPARE(output.lines(),
             QStringList({
                 u"📸 Using real Desktop: "_s + path(u"Desktop"_s),
                 u"📸 Using screenshot folder: "_s + path(u"Shots"_s),
                 u"📸 Starting screenshot monitoring on: "_s + path(u"Desktop"_s),
                 u"📸 Known files at start: 0"_s,
                 u"📸 FSEvents stream started: true"_s,
                 u"📸 Starting screenshot monitoring on: "_s + path(u"Shots"_s),
                 u"📸 Known files at start: 1"_s,
                 u"📸 FSEvents stream started: true"_s,
             }));
}

void ScreenshotFoldersTest::batchConcernsItsFolderOnly()
{
    makeMonitor();
    write(u"Desktop/Screenshot 1.png"_s);
    write(u"Shots/Screenshot 2.png"_s);
    write(u"Pictures/Screenshots/photo.png"_s);
    QCOMPARE(batch(u"Shots"_s),
             QStringList({kTriggered, u"📸 In folder: "_s + path(u"Shots"_s),
                          u"📸 Found 1 files in directory"_s, kDetected + u"Screenshot 2.png"}));
    QTRY_COMPARE(m_reported, QStringList({path(u"Shots/Screenshot 2.png"_s)}));
    QCOMPARE(batch(u"Desktop"_s),
             QStringList({kTriggered, u"📸 Found 1 files in directory"_s,
                          kDetected + u"Screenshot 1.png"}));
    QCOMPARE(batch(u"Pictures/Screenshots"_s).constLast(),
             u"⚠️ File 'photo.png' has image extension but doesn't match screenshot pattern"_s);
    QTRY_COMPARE(
        m_reported,
        QStringList({path(u"Shots/Screenshot 2.png"_s), path(u"Desktop/Screenshot 1.png"_s)}));
}

void ScreenshotFoldersTest::folderIsCountedOnce_data()
{
    QTest::addColumn<QStringList>("paths");
    QTest::addColumn<QStringList>("watched");
    const QStringList shots = {u"Desktop"_s, u"Shots"_s};
    QTest::newRow("none") << QStringList() << QStringList({u"Desktop"_s});
    QTest::newRow("the Desktop") << QStringList({u"Desktop"_s}) << QStringList({u"Desktop"_s});
    QTest::newRow("link to the Desktop")
        << QStringList({u"LinkToDesktop"_s}) << QStringList({u"Desktop"_s});
    QTest::newRow("twice") << QStringList({u"Shots"_s, u"Shots"_s}) << shots;
    QTest::newRow("by another name") << QStringList({u"Shots"_s, u"Pictures/../Shots/"_s}) << shots;
    QTest::newRow("link") << QStringList({u"Shots"_s, u"LinkToShots"_s}) << shots;
    QTest::newRow("link alone") << QStringList({u"LinkToShots"_s})
                                << QStringList({u"Desktop"_s, u"LinkToShots"_s});
    QTest::newRow("gone") << QStringList({u"Gone"_s, u"Shots"_s}) << shots;
}

void ScreenshotFoldersTest::folderIsCountedOnce()
{
    QFETCH(QStringList, paths);
    QFETCH(QStringList, watched);
    QVERIFY(QFile::link(path(u"Desktop"_s), path(u"LinkToDesktop"_s)));
    QVERIFY(QFile::link(path(u"Shots"_s), path(u"LinkToShots"_s)));
    m_folders.screenshotPaths.clear();
    for (const QString &name : paths)
        m_folders.screenshotPaths << m_home->path() + u'/' + name;
    makeMonitor();
    QStringList seen;
    for (const FakeFolderWatcher *watcher : m_watchers)
        seen << watcher->watchedPath;
    QStringList expected;
    for (const QString &name : watched)
        expected << path(name);
    QCOMPARE(seen, expected);
}

void ScreenshotFoldersTest::knownNamesAreKeptPerFolder()
{
    write(u"Desktop/Screenshot 1.png"_s);
    makeMonitor();
    write(u"Shots/Screenshot 1.png"_s);
    batch(u"Desktop"_s);
    batch(u"Shots"_s);
    write(u"Pictures/Screenshots/Screenshot 1.png"_s);
    batch(u"Pictures/Screenshots"_s);
    QTRY_COMPARE(m_reported,
                 QStringList({path(u"Shots/Screenshot 1.png"_s),
                              path(u"Pictures/Screenshots/Screenshot 1.png"_s)}));
    QCOMPARE(batch(u"Shots"_s).size(), 3);
}

void ScreenshotFoldersTest::movedScreenshotIsNewWhereItCame()
{
    makeMonitor();
    write(u"Shots/Screenshot 1.png"_s);
    batch(u"Shots"_s);
    QVERIFY(QFile::rename(path(u"Shots/Screenshot 1.png"_s), path(u"Desktop/Screenshot 1.png"_s)));
    batch(u"Shots"_s);
    batch(u"Desktop"_s);
    QTRY_COMPARE(
        m_reported,
        QStringList({path(u"Shots/Screenshot 1.png"_s), path(u"Desktop/Screenshot 1.png"_s)}));
    // Back again it is known.
    QVERIFY(QFile::rename(path(u"Desktop/Screenshot 1.png"_s), path(u"Shots/Screenshot 1.png"_s)));
    QCOMPARE(batch(u"Shots"_s).constLast(), u"📸 Found 1 files in directory"_s);
}

void ScreenshotFoldersTest::failingStartLeavesTheOthersAlone()
{
    m_outcomes[path(u"Desktop"_s)] = FolderWatcher::Start::Failed;
    m_outcomes[path(u"Shots"_s)] = FolderWatcher::Start::Failed;
    const CapturedOutput output;
    makeMonitor();
    QCOMPARE(output.lines().filter(u"❌ Failed to create FSEvents stream"_s).size(), 2);
    QCOMPARE(output.lines().constLast(), u"📸 FSEvents stream started: true"_s);
    QCOMPARE(m_failed, QStringList({path(u"Desktop"_s), path(u"Shots"_s)}));
    QCOMPARE(m_watchers.size(), 1U);
    write(u"Pictures/Screenshots/Screenshot 1.png"_s);
    batch(u"Pictures/Screenshots"_s);
    QTRY_COMPARE(m_reported, QStringList({path(u"Pictures/Screenshots/Screenshot 1.png"_s)}));
}

void ScreenshotFoldersTest::folderThatVanishesComesBack()
{
    makeMonitor();
    QDir home(m_home->path());
    QVERIFY(home.rename(u"Shots"_s, u"away"_s));
    QCOMPARE(batch(u"Shots"_s),
             QStringList({kTriggered, u"📸 In folder: "_s + path(u"Shots"_s),
                          u"❌ Could not read directory contents"_s}));
    write(u"Desktop/Screenshot 1.png"_s);
    batch(u"Desktop"_s);
    QVERIFY(home.rename(u"away"_s, u"Shots"_s));
    write(u"Shots/Screenshot 2.png"_s);
    batch(u"Shots"_s);
    QTRY_COMPARE(
        m_reported,
        QStringList({path(u"Desktop/Screenshot 1.png"_s), path(u"Shots/Screenshot 2.png"_s)}));
}

void ScreenshotFoldersTest::stopEndsAll()
{
    makeMonitor();
    QCOMPARE(m_watchers.size(), 3U);
    m_monitor->stop();
    QCOMPARE(m_watchers.size(), 0U);
    m_monitor->stop();
}

void ScreenshotFoldersTest::missingDesktopLeavesTheOthersAlone()
{
    QVERIFY(QDir(m_home->path()).rmdir(u"Desktop"_s));
    makeMonitor();
    write(u"Shots/Screenshot 1.png"_s);
    batch(u"Shots"_s);
    QTRY_COMPARE(m_reported, QStringList({path(u"Shots/Screenshot 1.png"_s)}));
}

TESSERY_TEST_MAIN(QCoreApplication, ScreenshotFoldersTest)
#include "ScreenshotFoldersTest.moc"
