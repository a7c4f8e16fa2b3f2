#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>

#include <functional>
#include <memory>
#include <vector>

class FolderWatcher;
class StandardFolders;
class WatchedFolder;

/// Watches the user's Desktop folder and the desktop's own screenshot folders, and calls back once
/// for each new file whose name marks it as a screenshot. Screenshots that are there when it is
/// made are not new; one that is moved from one folder to another is new there. Main thread.
class ScreenshotMonitor {
public:
    /// Called from the event loop, half a second after the file was found.
    using Callback = std::function<void(const QUrl &fileURL)>;
    using WatcherFactory = std::function<std::unique_ptr<FolderWatcher>()>;

    /// Chooses the folders and notes the screenshots in them; does not watch yet. makeWatcher is
    /// called here, once for each folder, the Desktop first.
    ScreenshotMonitor(const StandardFolders &folders, const WatcherFactory &makeWatcher,
                      Callback callback);
    ~ScreenshotMonitor();
    ScreenshotMonitor(const ScreenshotMonitor &) = delete;
    ScreenshotMonitor &operator=(const ScreenshotMonitor &) = delete;

    /// Begins to watch. Called once. Gives the folders that cannot be watched; they leave the
    /// others alone.
    [[nodiscard]] QStringList start();

    /// Ends watching. May be called twice. Screenshots found already are still reported as long as
    /// the monitor lives.
    void stop();

    /// The Desktop folder.
    const QString &screenshotDirectory() const;

private:
    void reportLater(const QString &folder, const QString &name) const;

    /// Shared so that what is still to be reported can tell whether the monitor is alive.
    std::shared_ptr<const Callback> m_callback;
    std::vector<std::unique_ptr<WatchedFolder>> m_folders; ///< The Desktop first.
};
