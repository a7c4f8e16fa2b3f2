#pragma once

#include "monitor/KnownFiles.h"
#include "platform/FolderWatcher.h"

#include <QString>
#include <QUrl>

#include <functional>
#include <memory>

class StandardFolders;

/// Watches the user's Desktop folder and calls back once for each new file whose name marks it as a
/// screenshot. Screenshots that are there when it is made are not new. Main thread.
class ScreenshotMonitor {
public:
    /// Called from the event loop, half a second after the file was found.
    using Callback = std::function<void(const QUrl &fileURL)>;

    /// Chooses the folder and notes the screenshots in it; does not watch yet.
    ScreenshotMonitor(const StandardFolders &folders, std::unique_ptr<FolderWatcher> watcher,
                      Callback callback);
    ~ScreenshotMonitor();
    ScreenshotMonitor(const ScreenshotMonitor &) = delete;
    ScreenshotMonitor &operator=(const ScreenshotMonitor &) = delete;

    /// Begins to watch. Called once. Failures are logged.
    void start();

    /// Ends watching. May be called twice. Screenshots found already are still reported as long as
    /// the monitor lives.
    void stop();

    /// The watched folder.
    const QString &screenshotDirectory() const { return m_screenshotDirectory; }

private:
    struct Listing;

    void loadExistingScreenshots();
    void handleEvents();
    /// Goes through the folder. unknownHeading begins the log line of each unknown screenshot; null
    /// for no line.
    Listing list(const char *unknownHeading = nullptr);
    void reportLater(const QString &name) const;

    QString m_screenshotDirectory;
    std::unique_ptr<FolderWatcher> m_watcher;
    bool m_isWatching = false;
    /// Shared so that what is still to be reported can tell whether the monitor is alive.
    std::shared_ptr<const Callback> m_callback;
    KnownFiles m_knownFiles;
};
