#pragma once

#include "app/NotificationDelegate.h"
#include "base/TaskScope.h"
#include "settings/UploadSettings.h"
#include "upload/UploadService.h"

#include <QCoro/QCoroTask>
#include <QObject>
#include <QString>
#include <QUrl>

#include <map>
#include <memory>

class Clock;
class ScreenshotMonitor;
class EventTap;
class SecureRandom;
class TemporaryFile;
struct KeyPress;
struct Platform;

/// The one long-lived object of the application: it owns the settings in force, starts and stops
/// monitoring, runs uploads and reports what came of them. The menu and the settings window observe
/// it. Main thread.
class AppState : public QObject {
    Q_OBJECT

public:
    /// Loads the settings and asks for permission to notify; starts nothing else. The platform,
    /// clock and random source are not owned and must outlive it. The stop token of environment is
    /// replaced by that of tasks().
    AppState(Platform &platform, UploadService::Environment environment, const Clock &clock,
             SecureRandom &random);
    /// No operation may be under way: await tasks().drained() before.
    ~AppState() override;

    /// Whether the screenshot folder is being watched.
    bool isMonitoring() const { return m_isMonitoring; }
    /// One line: the last step taken by any operation.
    const QString &lastUploadStatus() const { return m_lastUploadStatus; }
    /// The settings in force.
    const UploadSettings &settings() const { return m_settings; }
    /// Puts other settings in force; does not store them. Monitoring goes on as it was.
    void setSettings(const UploadSettings &settings);

    void startMonitoring();
    void stopMonitoring();

    /// Has the global shortcut of the settings heard from now on, instead of any other. Logs; where
    /// the desktop refuses, everything else works.
    void setupGlobalHotkey();

    /// Tells that there is nothing to be done before the settings are complete.
    void askForSettings();

    /// Starts the upload of what the clipboard holds and returns at once.
    void uploadClipboard();

    /// The operations under way. Quitting asks them to end and waits for them.
    TaskScope &tasks() { return m_tasks; }

Q_SIGNALS:
    /// Something that observers show is about to change; it has changed once control is back in
    /// the event loop.
    void objectWillChange();

private:
    void setLastUploadStatus(const QString &status);
    void setIsMonitoring(bool isMonitoring);

    void requestDesktopAccess();
    void screenshotArrived(const QUrl &fileURL);
    [[nodiscard]] QCoro::Task<> handleNewScreenshot(QUrl fileURL);
    [[nodiscard]] QCoro::Task<> uploadFile(QUrl fileURL, QString remoteFileName,
                                           QString displayName);

    [[nodiscard]] QCoro::Task<> handleUploadClipboard();
    [[nodiscard]] QCoro::Task<> uploadClipboardAddress(QUrl address);
    [[nodiscard]] QCoro::Task<> uploadClipboardText(QString text);
    [[nodiscard]] QCoro::Task<> uploadClipboardImage(QByteArray image);
    /// The file of this second for the clipboard's content, shared with the uploads that began in
    /// the same second, so that none of them takes it away from another.
    std::shared_ptr<const TemporaryFile> clipboardFile(const QString &suffix,
                                                       const QByteArray &contents);

    void cleanupEventTap();
    bool keyPressed(const KeyPress &press);

    [[nodiscard]] QCoro::Task<> reportSuccess(QString url, QString displayName);
    void reportFailure(const QString &error);
    QString generateRemoteFilename(const QUrl &fileURL) const;

    void setupNotifications();
    void sendNotification(const QString &title, const QString &body, bool isError);

    Platform &m_platform;
    const Clock &m_clock;
    SecureRandom &m_random;
    TaskScope m_tasks;
    NotificationDelegate m_notificationDelegate;
    bool m_isMonitoring = false;
    QString m_lastUploadStatus;
    UploadSettings m_settings;
    QString m_temporaryFolder;
    UploadService m_uploadService;
    std::unique_ptr<ScreenshotMonitor> m_screenshotMonitor;
    std::unique_ptr<EventTap> m_eventTap;
    std::map<QString, std::weak_ptr<TemporaryFile>> m_clipboardFiles; ///< By path.
};
