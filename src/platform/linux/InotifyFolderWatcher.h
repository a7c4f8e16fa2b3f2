#pragma once

#include "base/UniqueFd.h"
#include "platform/FolderWatcher.h"
#include "platform/linux/FolderPoll.h"
#include "platform/linux/PathWatches.h"
#include "platform/linux/SharedInotify.h"

#include <QByteArray>
#include <QSocketNotifier>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>

/// FolderWatcher on inotify. A folder whose file system may be written to from elsewhere is polled
/// as well; so is one for which the system has no instance or watch left, which one line of the log
/// tells.
class InotifyFolderWatcher final : public FolderWatcher {
public:
    /// Gives watchers that share one inotify instance, which there is as long as one of them lives.
    static std::function<std::unique_ptr<FolderWatcher>()> factory();

    explicit InotifyFolderWatcher(std::shared_ptr<SharedInotify> inotify);
    Start start(const QString &path, OnBatch onBatch) override;

private:
    void place();
    void tellOfPolling();
    void schedule();
    void deliver();
    void watchMounts();

    std::shared_ptr<SharedInotify> m_inotify;
    QByteArray m_path;
    OnBatch m_onBatch;
    std::optional<PathWatches> m_watches;
    UniqueFd m_mounts;
    std::unique_ptr<QSocketNotifier> m_mountsChanged;
    std::unique_ptr<FolderPoll> m_poll;
    bool m_hasToldOfPolling = false;
    QTimer m_batch;
    PathWatches::Events m_pending; ///< That the instance does not tell.
    bool m_haveMountsChanged = false; ///< Anywhere.
    FolderState m_folder; ///< When the path was followed last.
};
