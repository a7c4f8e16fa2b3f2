#pragma once

#include "monitor/KnownFiles.h"
#include "monitor/OpenFolder.h"
#include "platform/FolderWatcher.h"

#include <QString>

#include <ctime>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// One folder that screenshots are written to: tells once of each new file whose name marks it as a
/// screenshot. Screenshots that are there when it is made are not new. When the path leads to
/// another folder than before, what was made before the start is not new there either. Main thread.
class WatchedFolder {
public:
    /// Called for each new screenshot, with its name, when the folder has been gone through.
    using Found = std::function<void(const QString &name)>;

    /// Notes the screenshots in the folder at path; does not watch yet. heading, unless empty, is
    /// logged whenever something happened in the folder, to tell it from others. Without a watcher,
    /// starting fails. start is when monitoring began, by OpenFolder::now().
    WatchedFolder(QString path, QString heading, std::unique_ptr<FolderWatcher> watcher,
                  Found found, const timespec &start);
    WatchedFolder(const WatchedFolder &) = delete;
    WatchedFolder &operator=(const WatchedFolder &) = delete;

    /// Begins to watch. Called once. False, with a line in the log, if the folder cannot be
    /// watched.
    [[nodiscard]] bool start();

    /// Ends watching. May be called twice.
    void stop();

    const QString &path() const { return m_path; }

private:
    struct Listing;
    enum class Occasion { Start, Rescan };

    void loadExistingScreenshots();
    void handleEvents(bool mayBeAnother);
    void insertAll(const std::vector<std::string> &names);
    /// Goes through the folder.
    Listing list(Occasion occasion);

    QString m_path;
    QString m_heading;
    std::unique_ptr<FolderWatcher> m_watcher;
    bool m_isWatching = false;
    Found m_found;
    timespec m_start = {};
    /// That was gone through last; empty if that failed, or if it may be another by now.
    std::optional<OpenFolder::Identity> m_folder;
    KnownFiles m_knownFiles;
};
