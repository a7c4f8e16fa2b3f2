#pragma once

#include "base/UniqueFd.h"
#include "platform/FolderWatcher.h"
#include "platform/linux/FolderPoll.h"
#include "platform/linux/PathWatches.h"

#include <QByteArray>
#include <QSocketNotifier>
#include <QTimer>

#include <memory>
#include <optional>

/// FolderWatcher on inotify. A folder whose file system may be written to from elsewhere is polled
/// as well; so is one for which the system has no watch left.
class InotifyFolderWatcher final : public FolderWatcher {
public:
    Start start(const QString &path, OnBatch onBatch) override;

private:
    void place();
    void readEvents();
    void schedule(PathWatches::Events events);
    void deliver();
    void watchMounts();
    void checkMounts();

    QByteArray m_path;
    OnBatch m_onBatch;
    std::optional<PathWatches> m_watches;
    std::unique_ptr<QSocketNotifier> m_readable;
    UniqueFd m_mounts;
    std::unique_ptr<QSocketNotifier> m_mountsChanged;
    std::unique_ptr<FolderPoll> m_poll;
    QTimer m_batch;
    PathWatches::Events m_pending;
    FolderState m_folder;
};
