#include "AppStateCase.h"
#include "support/CapturedOutput.h"

#include <QSignalSpy>

namespace {

const QString kShot = u"Screenshot 2025-12-01 at 21.31.56.png"_s;

} // namespace

class AppStateTest : public AppStateCase {
    Q_OBJECT

private Q_SLOTS:
    void firstStartIsReadyWithTheDefaultsAndDoesNotMonitor()
    {
        makeState();
        QCOMPARE(m_state->settings(), UploadSettings());
        QCOMPARE(m_state->isMonitoring(), false);
        QCOMPARE(m_state->lastUploadStatus(), u"Ready"_s);
        QCOMPARE(m_platform->watchersMade, 0);
    }

    void startWithStoredValidSettingsDoesNotMonitorEither()
    {
        validSettings().save();
        makeState();
        QCOMPARE(m_state->settings(), validSettings());
        QVERIFY(m_state->settings().isValid());
        QCOMPARE(m_state->isMonitoring(), false);
        QCOMPARE(m_platform->watchersMade, 0);
    }

    void startAsksToUnlockTheKeyringAndTellsObserversWhenItIs()
    {
        makeState();
        QCOMPARE(m_platform->fakeSecrets->unlocksAsked, 1);
        const QSignalSpy changes(m_state.get(), &AppState::objectWillChange);
        m_platform->fakeSecrets->onChanged();
        QCOMPARE(changes.size(), 1);
    }

    void unlockingAfterTheStateIsGoneDoesNothing()
    {
        makeState();
        m_state.reset();
        m_platform->fakeSecrets->onChanged();
        QVERIFY(m_platform->fakeNotifications->delegate == nullptr);
    }

    void permissionAnswerIsLogged_data()
    {
        QTest::addColumn<bool>("granted");
        QTest::addColumn<QString>("error");
        QTest::addColumn<QString>("line");
        QTest::newRow("granted") << true << QString() << u"✅ Notification permission granted"_s;
        QTest::newRow("denied") << false << QString() << u"❌ Notification permission denied"_s;
        QTest::newRow("error") << false << u"no service"_s
                               << u"❌ Notification permission error: no service"_s;
    }

    void permissionAnswerIsLogged()
    {
        QFETCH(const bool, granted);
        QFETCH(const QString, error);
        QFETCH(const QString, line);
        m_platform->fakeNotifications->granted = granted;
        m_platform->fakeNotifications->authorizationError = error;
        CapturedOutput output;
        makeState();
        QVERIFY(output.lines().contains(line));
    }

    void startMonitoringLogsItsStepsInOrder()
    {
        makeState(validSettings());
        CapturedOutput output;
        m_state->startMonitoring();
        const QStringList lines = output.lines();
        QCOMPARE(lines.mid(0, 3),
                 QStringList({u"🚀 Starting monitoring..."_s, u"🚀 Settings valid: true"_s,
                              u"🚀 Server: 127.0.0.1"_s}));
        QCOMPARE(lines.last(), u"✅ Monitoring started successfully"_s);
        QCOMPARE(m_state->isMonitoring(), true);
        QCOMPARE(m_state->lastUploadStatus(), u"Monitoring for screenshots..."_s);
    }

    void folderThatCannotBeWatchedIsToldOf()
    {
        m_platform->makeFolderWatcher = [] {
            auto watcher = std::make_unique<FakeFolderWatcher>();
            watcher->outcome = FolderWatcher::Start::Failed;
            return watcher;
        };
        makeState(validSettings());
        CapturedOutput output;
        m_state->startMonitoring();
        QCOMPARE(output.lines().last(), u"❌ Failed to create FSEvents stream"_s);
        const auto &sent = m_platform->fakeNotifications->delivered;
        QCOMPARE(sent.size(), 1U);
        QCOMPARE(sent[0].title, u"❌ Monitoring Failed"_s);
        QCOMPARE(sent[0].body,
                 u"Cannot watch for screenshots in: "_s + m_folder->filePath(u"Desktop"_s));
        QCOMPARE(sent[0].sound, UserNotification::Sound::Critical);
        QCOMPARE(m_state->isMonitoring(), true);
        m_state->stopMonitoring();
        QCOMPARE(m_state->isMonitoring(), false);
    }

    void startingTwiceLogsTheSkipAndKeepsTheFirstMonitor()
    {
        makeState(validSettings());
        m_state->startMonitoring();
        CapturedOutput output;
        m_state->startMonitoring();
        QCOMPARE(output.lines(), QStringList{u"⚠️ Already monitoring, skipping start"_s});
        QCOMPARE(m_platform->watchersMade, 1);
    }

    void monitoringStartsWithInvalidSettingsToo()
    {
        makeState();
        CapturedOutput output;
        m_state->startMonitoring();
        QVERIFY(output.lines().contains(u"🚀 Settings valid: false"_s));
        QCOMPARE(m_state->isMonitoring(), true);
    }

    void stoppingWithoutMonitoringSetsTheStatusAndLogsNothing()
    {
        makeState();
        CapturedOutput output;
        m_state->stopMonitoring();
        QCOMPARE(output.lines(), QStringList());
        QCOMPARE(m_state->lastUploadStatus(), u"Monitoring stopped"_s);
        QCOMPARE(m_state->isMonitoring(), false);
    }

    void observersAreToldBeforeAChangeApplies()
    {
        makeState();
        QList<bool> seen;
        connect(m_state.get(), &AppState::objectWillChange, this,
                [this, &seen] { seen << m_state->isMonitoring(); });
        m_state->startMonitoring();
        QVERIFY(!seen.isEmpty());
        QCOMPARE(seen.first(), false);
        QCOMPARE(m_state->isMonitoring(), true);
    }

    void settingsChangeTellsObserversFirst()
    {
        makeState();
        QStringList seen;
        connect(m_state.get(), &AppState::objectWillChange, this,
                [this, &seen] { seen << m_state->settings().hostname; });
        m_state->setSettings(validSettings());
        QCOMPARE(seen, QStringList{QString()});
        QCOMPARE(m_state->settings().hostname, u"127.0.0.1"_s);
    }

    void missingDesktopAsksForAccessAndStartsAllTheSame()
    {
        QVERIFY(QDir(m_folder->filePath(u"Desktop"_s)).removeRecursively());
        m_platform->fakeFolders->desktopPath = m_folder->filePath(u"elsewhere"_s);
        makeState(validSettings());
        CapturedOutput output;
        m_state->startMonitoring();
        QVERIFY(output.lines().contains(u"⚠️ No access to Desktop, requesting permission..."_s));
        const FakeFolderAccessPanel &panel = *m_platform->fakeFolderAccessPanel;
        QCOMPARE(panel.asked, 1);
        QCOMPARE(panel.message,
                 u"Please select your Desktop folder to allow screenshot monitoring"_s);
        QCOMPARE(panel.confirmButton, u"Grant Access"_s);
        QCOMPARE(m_state->isMonitoring(), true);
        panel.completion(true);
        QCOMPARE(output.lines().last(), u"✅ Desktop access granted"_s);
        panel.completion(false);
        QCOMPARE(output.lines().last(), u"❌ Desktop access denied"_s);
    }

    void readableDesktopIsNotAskedFor()
    {
        makeState(validSettings());
        m_state->startMonitoring();
        QCOMPARE(m_platform->fakeFolderAccessPanel->asked, 0);
    }

    void screenshotIsUploadedAndItsAddressIsOnTheClipboard()
    {
        makeState(validSettings());
        m_state->startMonitoring();
        CapturedOutput output;
        screenshotAppears(kShot);
        QTRY_COMPARE(m_state->lastUploadStatus(), u"✅ Uploaded: "_s + kShot);
        const QString url = u"https://x.org/shots/"_s + kShot;
        QCOMPARE(m_platform->fakePasteboard->text, url);

        const auto &sent = m_platform->fakeNotifications->delivered;
        QCOMPARE(sent.size(), 2U);
        QCOMPARE(sent[0].title, u"Uploading Screenshot"_s);
        QCOMPARE(sent[0].body, kShot);
        QCOMPARE(sent[1].title, u"✅ Screenshot Uploaded"_s);
        QCOMPARE(sent[1].body, u"URL copied to clipboard: "_s + url);
        QCOMPARE(sent[1].sound, UserNotification::Sound::Default);
        QVERIFY(sent[0].identifier != sent[1].identifier);

        const QStringList lines = output.lines();
        const qsizetype callback =
            lines.indexOf(u"📸 Screenshot callback received for: "_s + kShot);
        QVERIFY(callback >= 0);
        QCOMPARE(lines.at(callback + 1), u"🎯 handleNewScreenshot called for: "_s + kShot);
    }

    void statusNamesTheLocalFileWhileItIsUploaded()
    {
        curlDoes("exec /usr/bin/sleep 60");
        makeState(validSettings());
        m_state->startMonitoring();
        screenshotAppears(kShot);
        QTRY_COMPARE(m_state->lastUploadStatus(), u"📤 Uploading "_s + kShot + u"..."_s);
    }

    void screenshotWithInvalidSettingsGivesOneErrorAndNoTransfer()
    {
        curlDoes("touch \"$(dirname \"$0\")/ran\"");
        makeState();
        m_state->startMonitoring();
        CapturedOutput output;
        screenshotAppears(kShot);
        QTRY_COMPARE(m_state->lastUploadStatus(), u"Error: Settings not configured"_s);
        QVERIFY(output.lines().contains(u"❌ Settings not valid"_s));
        const auto &sent = m_platform->fakeNotifications->delivered;
        QCOMPARE(sent.size(), 1U);
        QCOMPARE(sent[0].title, u"Upload Error"_s);
        QCOMPARE(sent[0].body, u"Please configure server settings first"_s);
        QCOMPARE(sent[0].sound, UserNotification::Sound::Critical);
        QCOMPARE(m_state->tasks().running(), 0);
        QVERIFY(!QFile::exists(m_folder->filePath(u"ran"_s)));
    }

    void failingTransferLeavesTheClipboardAndSaysWhy()
    {
        curlDoes("echo '< 530 Login incorrect.' >&2; exit 67");
        m_platform->fakePasteboard->text = u"earlier"_s;
        makeState(validSettings());
        m_state->startMonitoring();
        screenshotAppears(kShot);
        QTRY_COMPARE(m_state->lastUploadStatus(), u"❌ Upload failed: Authentication failed"_s);
        QCOMPARE(m_platform->fakePasteboard->text, u"earlier"_s);
        const UserNotification &last = m_platform->fakeNotifications->delivered.back();
        QCOMPARE(last.title, u"❌ Upload Failed"_s);
        QCOMPARE(last.body, u"Authentication failed"_s);
        QCOMPARE(last.sound, UserNotification::Sound::Critical);
        QCOMPARE(m_state->isMonitoring(), true);
    }

    void missingToolIsReportedWithTheSystemsText()
    {
        QVERIFY(QFile::remove(m_folder->filePath(u"curl"_s)));
        makeState(validSettings());
        m_state->startMonitoring();
        screenshotAppears(kShot);
        QTRY_VERIFY(m_state->lastUploadStatus().startsWith(u"❌ Upload failed: "_s));
        QVERIFY(m_state->lastUploadStatus().contains(u"No such file or directory"_s));
    }

    void unwritableClipboardIsNotReportedAsCopied()
    {
        m_platform->fakePasteboard->isWritable = false;
        makeState(validSettings());
        m_state->startMonitoring();
        CapturedOutput output;
        screenshotAppears(kShot);
        QTRY_COMPARE(m_state->lastUploadStatus(), u"✅ Uploaded: "_s + kShot);
        const UserNotification &last = m_platform->fakeNotifications->delivered.back();
        QVERIFY(!last.body.contains(u"URL copied"_s));
        QVERIFY(last.body.endsWith(u"https://x.org/shots/"_s + kShot));
        QCOMPARE(last.sound, UserNotification::Sound::Critical);
        QVERIFY(output.lines().contains(u"❌ Could not write to the clipboard"_s));
    }

    void successIsToldOnlyOnceTheClipboardHasTheAddress()
    {
        OneShot written;
        m_platform->fakePasteboard->writingEnds = &written;
        makeState(validSettings());
        m_state->startMonitoring();
        screenshotAppears(kShot);
        QTRY_COMPARE(m_platform->fakePasteboard->text, u"https://x.org/shots/"_s + kShot);
        QCOMPARE(m_state->lastUploadStatus(), u"📤 Uploading "_s + kShot + u"..."_s);
        QCOMPARE(m_platform->fakeNotifications->delivered.back().title, u"Uploading Screenshot"_s);
        written.fire();
        QTRY_COMPARE(m_state->lastUploadStatus(), u"✅ Uploaded: "_s + kShot);
        QCOMPARE(m_platform->fakeNotifications->delivered.back().title,
                 u"✅ Screenshot Uploaded"_s);
    }

    void refusedNotificationsAreLoggedAndTheUploadCompletes()
    {
        m_platform->fakeNotifications->granted = false;
        m_platform->fakeNotifications->deliveryError = u"nobody there"_s;
        makeState(validSettings());
        m_state->startMonitoring();
        CapturedOutput output;
        screenshotAppears(kShot);
        QTRY_COMPARE(m_state->lastUploadStatus(), u"✅ Uploaded: "_s + kShot);
        QVERIFY(output.lines().contains(u"❌ Failed to send notification: nobody there"_s));
        QVERIFY(m_platform->fakePasteboard->text.endsWith(kShot));
    }

    void uploadInFlightSurvivesTheEndOfMonitoring()
    {
        curlDoes("while ! test -e \"$(dirname \"$0\")/go\"; do /usr/bin/sleep 0.02; done");
        makeState(validSettings());
        m_state->startMonitoring();
        screenshotAppears(kShot);
        QTRY_COMPARE(m_state->lastUploadStatus(), u"📤 Uploading "_s + kShot + u"..."_s);
        m_state->stopMonitoring();
        QCOMPARE(m_state->lastUploadStatus(), u"Monitoring stopped"_s);
        QVERIFY(QFile(m_folder->filePath(u"go"_s)).open(QIODevice::WriteOnly));
        QTRY_COMPARE(m_state->lastUploadStatus(), u"✅ Uploaded: "_s + kShot);
    }

    void settingsSavedInMidUploadDoNotChangeItsAddress()
    {
        curlDoes("while ! test -e \"$(dirname \"$0\")/go\"; do /usr/bin/sleep 0.02; done");
        makeState(validSettings());
        m_state->startMonitoring();
        screenshotAppears(kShot);
        QTRY_COMPARE(m_state->lastUploadStatus(), u"📤 Uploading "_s + kShot + u"..."_s);
        UploadSettings others = validSettings();
        others.publicURLBase = u"https://y.org/elsewhere"_s;
        m_state->setSettings(others);
        QVERIFY(QFile(m_folder->filePath(u"go"_s)).open(QIODevice::WriteOnly));
        QTRY_COMPARE(m_state->lastUploadStatus(), u"✅ Uploaded: "_s + kShot);
        QCOMPARE(m_platform->fakePasteboard->text, u"https://x.org/shots/"_s + kShot);
    }

    void savedSettingsMakeWhatWasLearnedOfServersForgotten()
    {
        UploadSettings settings = validSettings();
        settings.serverType = UploadSettings::ServerType::ftps;
        makeState(settings);
        m_learned->setWantsAuthTls(settings, true);
        m_state->setSettings(settings);
        QVERIFY(!m_learned->wantsAuthTls(settings));
    }

    void twoScreenshotsAtOnceAreTwoUploads()
    {
        makeState(validSettings());
        m_state->startMonitoring();
        addFile(u"Screenshot 1.png"_s);
        screenshotAppears(u"Screenshot 2.png"_s);
        QTRY_COMPARE(m_platform->fakeNotifications->delivered.size(), 4U);
        QStringList bodies;
        for (const UserNotification &sent : m_platform->fakeNotifications->delivered)
            bodies << sent.body;
        QVERIFY(
            bodies.contains(u"URL copied to clipboard: https://x.org/shots/Screenshot 1.png"_s));
        QVERIFY(
            bodies.contains(u"URL copied to clipboard: https://x.org/shots/Screenshot 2.png"_s));
    }

    void remoteNameFollowsTheNamingRules()
    {
        UploadSettings settings = validSettings();
        settings.filenameStyle = UploadSettings::FilenameStyle::timestamp;
        settings.addDateToFilename = true;
        makeState(settings);
        m_state->startMonitoring();
        screenshotAppears(kShot);
        const QString seconds = QString::number(m_clock.now().toSecsSinceEpoch());
        QTRY_COMPARE(m_platform->fakePasteboard->text,
                     u"https://x.org/shots/"_s + seconds + u"_"_s
                         + m_clock.now().toString(u"yyyy-MM-dd"_s) + u".png"_s);
    }

    void stoppingTheTasksEndsAnUploadAndSaysSo()
    {
        curlDoes("exec /usr/bin/sleep 60");
        makeState(validSettings());
        m_state->startMonitoring();
        screenshotAppears(kShot);
        QTRY_COMPARE(m_state->tasks().running(), 1);
        m_state->tasks().requestStop();
        QTRY_COMPARE(m_state->tasks().running(), 0);
        QCOMPARE(m_state->lastUploadStatus(),
                 u"❌ Upload failed: Upload failed: Cancelled because Tessery is quitting"_s);
        QCOMPARE(m_platform->fakePasteboard->text, QString());
    }

private:
    void addFile(const QString &name)
    {
        QFile file(m_folder->filePath(u"Desktop/"_s + name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("picture");
    }

    void screenshotAppears(const QString &name)
    {
        addFile(name);
        m_platform->fakeFolderWatcher->deliverBatch();
    }
};

TESSERY_TEST_MAIN(QCoreApplication, AppStateTest)
#include "AppStateTest.moc"
