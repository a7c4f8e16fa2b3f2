#pragma once

#include <QString>

#include <functional>

/// Tells that something happened in one folder: one batch about a second after the first event
/// since the last batch. Main thread. Watching ends with the object. Not available: start() fails.
class FolderWatcher {
public:
    virtual ~FolderWatcher() = default;
    FolderWatcher() = default;
    FolderWatcher(const FolderWatcher &) = delete;
    FolderWatcher &operator=(const FolderWatcher &) = delete;

    /// What came of start().
    enum class Start {
        Failed, ///< There is no way to watch it; the object is of no further use.
        Idle, ///< Made, but it delivers nothing yet, for instance because the folder is missing.
        Running,
    };

    /// Told whether the folder may be another one than before, even if it looks the same.
    using OnBatch = std::function<void(bool mayBeAnother)>;

    /// Begins to watch the folder at path, from now on; onBatch is called from the event loop. A
    /// folder that is missing, replaced, moved away or unmounted is picked up when it comes back,
    /// which counts as an event. Called once.
    virtual Start start(const QString &path, OnBatch onBatch) = 0;
};
