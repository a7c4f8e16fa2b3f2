#pragma once

#include "monitor/KnownFiles.h"
#include "platform/FolderWatcher.h"

#include <QString>

#include <functional>
#include <memory>

/// One folder that screenshots are written to: tells once of each new file whose name marks it as a
/// screenshot. Screenshots that are there when it is made are not new. Main thread.
class WatchedFolder {
public:
    /// Called for each new screenshot, with its name, when the folder has been gone through.
    using Found = std::function<void(const QString &name)>;

    /// Notes the screenshots in the folder at path; does not watch yet. heading, unless empty, is
    /// logged whenever something happened in the folder, to tell it from others. Without a watcher,
    /// starting fails.
    WatchedFolder(QString path, QString heading, std::unique_ptr<FolderWatcher> watcher,
                  Found found);
    WatchedFolder(const WatchedFolder &) = delete;
    WatchedFolder &operator=(const WatchedFolder &) = delete;

    /// Begins to watch. Called once. Failures are logged.
    void start();

    /// Ends watching. May be called twice.
    void stop();

    const QString &path() const { return m_path; }

private:
    struct Listing;

    void loadExistingScreenshots();
    void handleEvents();
    /// Goes through the folder. unknownHeading begins the log line of each unknown screenshot; null
    /// for no line.
    Listing list(const char *unknownHeading = nullptr);

    QString m_path;
    QString m_heading;
    std::unique_ptr<FolderWatcher> m_watcher;
    bool m_isWatching = false;
    Found m_found;
    KnownFiles m_knownFiles;
};
