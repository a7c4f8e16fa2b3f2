#include "monitor/ScreenshotMonitor.h"

#include "support/CapturedOutput.h"
#include "support/FakeFolderWatcher.h"
#include "support/FakeStandardFolders.h"
#include "support/TestMain.h"

#include <QElapsedTimer>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <unistd.h>

#include <cstdio>
#include <memory>
#include <optional>

using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(FolderWatcher::Start)

namespace {

const QString kTriggered = u"📸 FSEvents triggered - checking for new screenshots..."_s;

QString found(int count)
{
    return u"📸 Found %1 files in directory"_s.arg(count);
}

QString detected(const QString &name)
{
    return u"✅ New screenshot detected: "_s + name;
}

QString triggering(const QString &name)
{
    return u"📤 Triggering upload callback for: "_s + name;
}

QString noMatch(const QString &name)
{
    return u"⚠️ File '%1' has image extension but doesn't match screenshot pattern"_s.arg(name);
}

} // namespace

class ScreenshotMonitorTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void desktopInTheHomeFolderComesFirst();
    void desktopOfTheUsersFoldersTakesOver();
    void startTellsWhatCameOfIt_data();
    void startTellsWhatCameOfIt();
    void existingScreenshotIsNeverReported();
    void existingImagesAreToldAtConstruction();
    void newScreenshotIsReportedHalfASecondLater();
    void otherImageIsToldOnEveryRescan();
    void extensionPlaysNoPart();
    void foldersAndHiddenFilesAreEntries();
    void screenshotMadeAgainIsNotReported();
    void equivalentNameIsNotReported();
    void equivalentNamesThatComeTogetherAreBothReported();
    void batchesInQuickSuccessionReportOnce();
    void linesFollowTheFoldersOrder();
    void releasedMonitorOnlyLogs();
    void stoppedMonitorStillReports();
    void stopBeforeStartDoesNothing();
    void callbackMayReleaseTheMonitor();
    void addressIsExact_data();
    void addressIsExact();
    void unreadableFolderAtConstructionMakesAllNew();
    void unreadableFolderIsTriedAgain();
    void invalidNameIsSkippedAndCounted();
    void controlCharactersDoNotBreakTheLine();

private:
    QString path(const QString &name) const { return m_folders.homePath + u"/Desktop/" + name; }
    void write(const QString &name) const;
    void write(const QByteArray &name) const;
    void makeMonitor();
    QStringList rescan();

    std::optional<CapturedOutput> m_output;
    std::optional<QTemporaryDir> m_home;
    FakeStandardFolders m_folders;
    FakeFolderWatcher *m_watcher = nullptr;
    std::unique_ptr<ScreenshotMonitor> m_monitor;
    QStringList m_reported;
    QElapsedTimer m_clock;
    qint64 m_reportedAfter = 0; ///< Of the last report, in milliseconds on m_clock.
};

void ScreenshotMonitorTest::init()
{
    TestSurroundings::failOnWarnings();
    m_home.emplace();
    m_folders.homePath = m_home->path();
    m_folders.desktopPath = m_home->filePath(u"elsewhere"_s);
    QVERIFY(QDir(m_home->path()).mkdir(u"Desktop"_s));
    m_reported.clear();
    m_clock.start();
    m_output.emplace();
}

void ScreenshotMonitorTest::cleanup()
{
    m_monitor.reset();
    // What is still to be reported would be logged in the next test.
    const auto count = [this](const QString &start) {
        return m_output->lines().filter(QRegularExpression(u'^' + start)).size();
    };
    QTRY_COMPARE(count(triggering({})), count(detected({})));
    m_home.reset();
}

void ScreenshotMonitorTest::write(const QString &name) const
{
    write(QFile::encodeName(name));
}

void ScreenshotMonitorTest::write(const QByteArray &name) const
{
    const QByteArray file = QFile::encodeName(path({})) + name;
    std::unique_ptr<FILE, int (*)(FILE *)> stream(std::fopen(file.constData(), "w"), &std::fclose);
    QVERIFY(stream);
}

void ScreenshotMonitorTest::makeMonitor()
{
    const auto makeWatcher = [this] {
        auto watcher = std::make_unique<FakeFolderWatcher>();
        m_watcher = watcher.get();
        return watcher;
    };
    m_monitor =
        std::make_unique<ScreenshotMonitor>(m_folders, makeWatcher, [this](const QUrl &fileURL) {
            QCOMPARE(QThread::currentThread(), QCoreApplication::instance()->thread());
            m_reported.append(fileURL.toLocalFile());
            m_reportedAfter = m_clock.elapsed();
        });
    QCOMPARE(m_monitor->start(), QStringList());
}

/// The lines of one rescan.
QStringList ScreenshotMonitorTest::rescan()
{
    const CapturedOutput output;
    m_watcher->deliverBatch();
    return output.lines();
}

void ScreenshotMonitorTest::desktopInTheHomeFolderComesFirst()
{
    QVERIFY(QDir().mkdir(m_folders.desktopPath));
    const CapturedOutput output;
    makeMonitor();
    const QString desktop = m_folders.homePath + u"/Desktop";
    QCOMPARE(m_monitor->screenshotDirectory(), desktop);
    QCOMPARE(m_watcher->watchedPath, desktop);
    QCOMPARE(output.lines().constFirst(), u"📸 Using real Desktop: "_s + desktop);
}

void ScreenshotMonitorTest::desktopOfTheUsersFoldersTakesOver()
{
    QVERIFY(QDir(m_folders.homePath).rmdir(u"Desktop"_s));
    const CapturedOutput output;
    makeMonitor();
    QCOMPARE(m_monitor->screenshotDirectory(), m_folders.desktopPath);
    QCOMPARE(m_watcher->watchedPath, m_folders.desktopPath);
    QCOMPARE(output.lines().constFirst(),
             u"📸 Using sandboxed Desktop: "_s + m_folders.desktopPath);
}

void ScreenshotMonitorTest::startTellsWhatCameOfIt_data()
{
    QTest::addColumn<FolderWatcher::Start>("outcome");
    QTest::addColumn<QString>("line");
    using Start = FolderWatcher::Start;
    QTest::newRow("running") << Start::Running << u"📸 FSEvents stream started: true"_s;
    QTest::newRow("idle") << Start::Idle << u"📸 FSEvents stream started: false"_s;
    QTest::newRow("failed") << Start::Failed << u"❌ Failed to create FSEvents stream"_s;
}

void ScreenshotMonitorTest::startTellsWhatCameOfIt()
{
    QFETCH(FolderWatcher::Start, outcome);
    QFETCH(QString, line);
    write(u"Screenshot 1.png"_s);
    write(u"Screenshot 2.png"_s);
    auto watcher = std::make_unique<FakeFolderWatcher>();
    FakeFolderWatcher &fake = *watcher;
    fake.outcome = outcome;
    ScreenshotMonitor monitor(
        m_folders, [&watcher] { return std::move(watcher); }, [](const QUrl &) {});
    QCOMPARE(fake.starts, 0);
    const CapturedOutput output;
    const QStringList failed = monitor.start();
    QCOMPARE(failed.isEmpty(), outcome != FolderWatcher::Start::Failed);
    QCOMPARE(output.lines(),
             QStringList({u"📸 Starting screenshot monitoring on: "_s + path({}).chopped(1),
                          u"📸 Known files at start: 2"_s, line}));
}

void ScreenshotMonitorTest::existingScreenshotIsNeverReported()
{
    write(u"Screenshot 2025-12-01 at 21.31.56.png"_s);
    makeMonitor();
    for (int i = 0; i < 3; ++i)
        QCOMPARE(rescan(), QStringList({kTriggered, found(1)}));
    // Reported after the existing one would have been.
    write(u"Screenshot 2.png"_s);
    rescan();
    QTRY_VERIFY(!m_reported.isEmpty());
    QCOMPARE(m_reported, QStringList({path(u"Screenshot 2.png"_s)}));
}

void ScreenshotMonitorTest::existingImagesAreToldAtConstruction()
{
    write(u"photo.png"_s);
    write(u"notes.txt"_s);
    const CapturedOutput output;
    makeMonitor();
    QCOMPARE(output.lines().at(1), noMatch(u"photo.png"_s));
    QCOMPARE(output.lines().size(), 5);
}

void ScreenshotMonitorTest::newScreenshotIsReportedHalfASecondLater()
{
    makeMonitor();
    const QString name = u"Bildschirmfoto 2025-12-01 um 10.00.00.png"_s;
    write(name);
    const CapturedOutput output;
    m_clock.start();
    m_watcher->deliverBatch();
    const QStringList lines = {kTriggered, found(1), detected(name)};
    QCOMPARE(output.lines(), lines);
    QVERIFY(m_reported.isEmpty());
    QTRY_VERIFY(!m_reported.isEmpty());
    QVERIFY2(m_reportedAfter >= 500, qPrintable(QString::number(m_reportedAfter)));
    QVERIFY2(m_reportedAfter < 1500, qPrintable(QString::number(m_reportedAfter)));
    QCOMPARE(m_reported, QStringList({path(name)}));
    QCOMPARE(output.lines(), lines + QStringList({triggering(name)}));
    QCOMPARE(rescan(), QStringList({kTriggered, found(1)}));
}

void ScreenshotMonitorTest::otherImageIsToldOnEveryRescan()
{
    makeMonitor();
    write(u"photo.png"_s);
    for (int i = 0; i < 3; ++i)
        QCOMPARE(rescan(), QStringList({kTriggered, found(1), noMatch(u"photo.png"_s)}));
    // Reported after the image would have been.
    write(u"Screenshot.png"_s);
    rescan();
    QTRY_VERIFY(!m_reported.isEmpty());
    QCOMPARE(m_reported, QStringList({path(u"Screenshot.png"_s)}));
}

void ScreenshotMonitorTest::extensionPlaysNoPart()
{
    makeMonitor();
    write(u"screenshot-list.txt"_s);
    rescan();
    QTRY_COMPARE(m_reported, QStringList({path(u"screenshot-list.txt"_s)}));
}

void ScreenshotMonitorTest::foldersAndHiddenFilesAreEntries()
{
    makeMonitor();
    QVERIFY(QDir(path({})).mkdir(u"Screenshots"_s));
    write(u".hidden"_s);
    write(u"..."_s);
    QCOMPARE(rescan(), QStringList({kTriggered, found(3), detected(u"Screenshots"_s)}));
    QTRY_COMPARE(m_reported, QStringList({path(u"Screenshots"_s)}));
}

void ScreenshotMonitorTest::screenshotMadeAgainIsNotReported()
{
    makeMonitor();
    write(u"Screenshot 1.png"_s);
    rescan();
    QVERIFY(QFile::remove(path(u"Screenshot 1.png"_s)));
    QCOMPARE(rescan(), QStringList({kTriggered, found(0)}));
    write(u"Screenshot 1.png"_s);
    QCOMPARE(rescan(), QStringList({kTriggered, found(1)}));
    write(u"Screenshot 2.png"_s);
    rescan();
    QTRY_COMPARE(m_reported,
                 QStringList({path(u"Screenshot 1.png"_s), path(u"Screenshot 2.png"_s)}));
}

void ScreenshotMonitorTest::equivalentNameIsNotReported()
{
    write(u"Capture d'e\u0301cran.png"_s);
    makeMonitor();
    QVERIFY(QFile::rename(path(u"Capture d'e\u0301cran.png"_s), path(u"Capture d'écran.png"_s)));
    QCOMPARE(rescan(), QStringList({kTriggered, found(1)}));
    QVERIFY(QFile::rename(path(u"Capture d'écran.png"_s), path(u"capture d'écran.png"_s)));
    QCOMPARE(rescan(), QStringList({kTriggered, found(1), detected(u"capture d'écran.png"_s)}));
}

void ScreenshotMonitorTest::equivalentNamesThatComeTogetherAreBothReported()
{
    makeMonitor();
    write(u"Capture d'e\u0301cran.png"_s);
    write(u"Capture d'écran.png"_s);
    QCOMPARE(rescan().size(), 4);
    QCOMPARE(rescan(), QStringList({kTriggered, found(2)}));
    QTRY_COMPARE(m_reported.size(), 2);
    QVERIFY(m_reported.contains(path(u"Capture d'e\u0301cran.png"_s)));
    QVERIFY(m_reported.contains(path(u"Capture d'écran.png"_s)));
}

void ScreenshotMonitorTest::batchesInQuickSuccessionReportOnce()
{
    makeMonitor();
    write(u"Screenshot 1.png"_s);
    rescan();
    write(u"Screenshot 2.png"_s);
    for (int i = 0; i < 5; ++i)
        rescan();
    write(u"Screenshot 3.png"_s);
    rescan();
    QTRY_VERIFY(m_reported.contains(path(u"Screenshot 3.png"_s)));
    QCOMPARE(m_reported,
             QStringList({path(u"Screenshot 1.png"_s), path(u"Screenshot 2.png"_s),
                          path(u"Screenshot 3.png"_s)}));
}

void ScreenshotMonitorTest::linesFollowTheFoldersOrder()
{
    makeMonitor();
    for (int i = 0; i < 20; ++i) {
        write(u"Screenshot %1.png"_s.arg(i));
        write(u"photo %1.png"_s.arg(i));
        write(u"notes %1.txt"_s.arg(i));
    }
    QStringList expected = {kTriggered, found(60)};
    QDir folder(path({}));
    for (const QString &name : folder.entryList(QDir::Files, QDir::Unsorted)) {
        if (name.startsWith(u"Screenshot"))
            expected << detected(name);
        else if (name.startsWith(u"photo"))
            expected << noMatch(name);
    }
    QCOMPARE(rescan(), expected);
}

void ScreenshotMonitorTest::releasedMonitorOnlyLogs()
{
    makeMonitor();
    write(u"Screenshot 1.png"_s);
    rescan();
    const CapturedOutput output;
    m_monitor.reset();
    QTRY_COMPARE(output.lines(), QStringList({triggering(u"Screenshot 1.png"_s)}));
    QVERIFY(m_reported.isEmpty());
}

void ScreenshotMonitorTest::stoppedMonitorStillReports()
{
    makeMonitor();
    write(u"Screenshot 1.png"_s);
    rescan();
    m_monitor->stop();
    m_monitor->stop();
    QTRY_COMPARE(m_reported, QStringList({path(u"Screenshot 1.png"_s)}));
}

void ScreenshotMonitorTest::stopBeforeStartDoesNothing()
{
    auto watcher = std::make_unique<FakeFolderWatcher>();
    FakeFolderWatcher &fake = *watcher;
    ScreenshotMonitor monitor(
        m_folders, [&watcher] { return std::move(watcher); }, [](const QUrl &) {});
    monitor.stop();
    QCOMPARE(monitor.start(), QStringList());
    QCOMPARE(fake.starts, 1);
}

void ScreenshotMonitorTest::callbackMayReleaseTheMonitor()
{
    bool isReleased = false;
    auto watcher = std::make_unique<FakeFolderWatcher>();
    m_watcher = watcher.get();
    m_monitor = std::make_unique<ScreenshotMonitor>(
        m_folders, [&watcher] { return std::move(watcher); },
        [this, &isReleased](const QUrl &) {
            m_monitor.reset();
            isReleased = true;
        });
    QCOMPARE(m_monitor->start(), QStringList());
    write(u"Screenshot 1.png"_s);
    rescan();
    QTRY_VERIFY(isReleased);
}

void ScreenshotMonitorTest::addressIsExact_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("reserved characters") << u"Screenshot 100% #1?&_;:\\ +.png"_s;
    QTest::newRow("already encoded") << u"Screenshot %20%2F.png"_s;
    QTest::newRow("decomposed") << u"Capture d'e\u0301cran.png"_s;
    QTest::newRow("precomposed") << u"Képernyőkép.png"_s;
    QTest::newRow("beyond the BMP") << u"截屏 \U0001F4F8.png"_s;
    QTest::newRow("narrow space") << u"Screenshot 9.41\u202FAM.png"_s;
}

void ScreenshotMonitorTest::addressIsExact()
{
    QFETCH(QString, name);
    makeMonitor();
    write(name);
    QCOMPARE(rescan().constLast(), detected(name));
    QTRY_COMPARE(m_reported, QStringList({path(name)}));
}

void ScreenshotMonitorTest::unreadableFolderAtConstructionMakesAllNew()
{
    QDir home(m_folders.homePath);
    QVERIFY(home.rmdir(u"Desktop"_s));
    const CapturedOutput output;
    makeMonitor();
    QCOMPARE(output.lines().size(), 4);
    QCOMPARE(output.lines().at(2), u"📸 Known files at start: 0"_s);
    QVERIFY(home.mkdir(u"Desktop"_s));
    write(u"Screenshot 1.png"_s);
    QVERIFY(home.rename(u"Desktop"_s, u"elsewhere"_s));
    QCOMPARE(rescan(), QStringList({kTriggered, found(1), detected(u"Screenshot 1.png"_s)}));
}

void ScreenshotMonitorTest::unreadableFolderIsTriedAgain()
{
    makeMonitor();
    QDir home(m_folders.homePath);
    QVERIFY(home.rename(u"Desktop"_s, u"away"_s));
    QCOMPARE(rescan(), QStringList({kTriggered, u"❌ Could not read directory contents"_s}));
    QVERIFY(home.rename(u"away"_s, u"Desktop"_s));
    write(u"Screenshot 1.png"_s);
    rescan();
    QTRY_COMPARE(m_reported, QStringList({path(u"Screenshot 1.png"_s)}));
}

void ScreenshotMonitorTest::invalidNameIsSkippedAndCounted()
{
    makeMonitor();
    write(QByteArray("Screenshot \xE9.png"));
    write(u"Screenshot é.png"_s);
    const QStringList lines = rescan();
    QCOMPARE(lines.size(), 4);
    QCOMPARE(lines.mid(0, 2), QStringList({kTriggered, found(2)}));
    QVERIFY(lines.contains(detected(u"Screenshot é.png"_s)));
    const QString skipped = u"⚠️ File 'Screenshot \\xE9.png' skipped: its name is not valid UTF-8"_s;
    QVERIFY(lines.contains(skipped));
    QCOMPARE(rescan(), QStringList({kTriggered, found(2), skipped}));
    QTRY_COMPARE(m_reported, QStringList({path(u"Screenshot é.png"_s)}));
    // Qt could not remove it.
    const QByteArray file = QFile::encodeName(path({})) + "Screenshot \xE9.png";
    QCOMPARE(::unlink(file.constData()), 0);
}

void ScreenshotMonitorTest::controlCharactersDoNotBreakTheLine()
{
    makeMonitor();
    write(u"Screenshot\n✅.png"_s);
    QCOMPARE(rescan().mid(2), QStringList({detected(u"Screenshot\\x0A✅.png"_s)}));
    const CapturedOutput output;
    QTRY_COMPARE(m_reported, QStringList({path(u"Screenshot\n✅.png"_s)}));
    QCOMPARE(output.lines(), QStringList({triggering(u"Screenshot\\x0A✅.png"_s)}));
}

TESSERY_TEST_MAIN(QCoreApplication, ScreenshotMonitorTest)
#include "ScreenshotMonitorTest.moc"
