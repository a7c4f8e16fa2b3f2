#include "platform/linux/InotifyFolderWatcher.h"

#include "platform/linux/NetworkFileSystem.h"

#include <QFile>

#include <fcntl.h>

#include <chrono>
#include <utility>

using namespace std::chrono_literals;

namespace {

/// From the first event since the last batch to the next batch.
constexpr auto kLatency = 1s;

} // namespace

FolderWatcher::Start InotifyFolderWatcher::start(const QString &path, OnBatch onBatch)
{
    m_path = QFile::encodeName(path);
    m_onBatch = std::move(onBatch);
    m_watches.emplace(m_path);
    if (!m_watches->isOpen())
        return Start::Failed;
    m_batch.setSingleShot(true);
    m_batch.setTimerType(Qt::PreciseTimer);
    QObject::connect(&m_batch, &QTimer::timeout, &m_batch, [this] { deliver(); });
    m_readable = std::make_unique<QSocketNotifier>(m_watches->descriptor(), QSocketNotifier::Read);
    QObject::connect(m_readable.get(), &QSocketNotifier::activated, m_readable.get(),
                     [this] { readEvents(); });
    watchMounts();
    place();
    return m_watches->hasFolder() || (m_poll && m_folder.exists) ? Start::Running : Start::Idle;
}

void InotifyFolderWatcher::place()
{
    m_watches->place();
    m_folder = FolderState::of(m_path);
    if (!m_watches->isOutOfWatches() && !NetworkFileSystem::holds(m_watches->lastFolder())) {
        m_poll.reset();
    } else if (!m_poll) {
        m_poll = std::make_unique<FolderPoll>(
            m_path, [this](const FolderState &before, const FolderState &now) {
                schedule({.folder = true, .path = !now.isSameFolderAs(before)});
            });
    }
}

void InotifyFolderWatcher::readEvents()
{
    schedule(m_watches->read());
}

void InotifyFolderWatcher::schedule(PathWatches::Events events)
{
    m_pending.folder |= events.folder;
    m_pending.path |= events.path;
    if ((!m_pending.folder && !m_pending.path) || m_batch.isActive())
        return;
    m_batch.start(kLatency);
    // What comes until then belongs to the same batch, so a busy folder need not wake us up.
    m_readable->setEnabled(false);
}

void InotifyFolderWatcher::deliver()
{
    const PathWatches::Events latest = m_watches->read();
    const bool isPathChanged = std::exchange(m_pending, {}).path || latest.path;
    const bool wasThere = m_folder.exists;
    if (isPathChanged)
        place();
    m_readable->setEnabled(true);
    // On the way to a folder that is still missing, nothing has happened for the caller.
    if (!wasThere && !m_folder.exists)
        return;
    // Last, and from a copy, so that the caller may end the watching.
    const OnBatch onBatch = m_onBatch;
    onBatch(isPathChanged);
}

/// What is mounted over the folder, or over a folder above it, is not told by inotify.
void InotifyFolderWatcher::watchMounts()
{
    m_mounts = UniqueFd(::open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC));
    if (!m_mounts.isOpen())
        return;
    m_mountsChanged = std::make_unique<QSocketNotifier>(m_mounts.get(), QSocketNotifier::Exception);
    QObject::connect(m_mountsChanged.get(), &QSocketNotifier::activated, m_mountsChanged.get(),
                     [this] { checkMounts(); });
}

void InotifyFolderWatcher::checkMounts()
{
    if (!FolderState::of(m_path).isSameFolderAs(m_folder))
        schedule({.folder = false, .path = true});
}
