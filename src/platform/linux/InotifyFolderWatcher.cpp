#include "platform/linux/InotifyFolderWatcher.h"

#include "base/Log.h"
#include "platform/linux/NetworkFileSystem.h"

#include <QFile>

#include <fcntl.h>

#include <chrono>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// From the first event since the last batch to the next batch.
constexpr auto kLatency = 1s;

} // namespace

std::function<std::unique_ptr<FolderWatcher>()> InotifyFolderWatcher::factory()
{
    return [last = std::weak_ptr<SharedInotify>()]() mutable {
        std::shared_ptr<SharedInotify> inotify = last.lock();
        if (!inotify)
            last = inotify = std::make_shared<SharedInotify>();
        return std::make_unique<InotifyFolderWatcher>(std::move(inotify));
    };
}

InotifyFolderWatcher::InotifyFolderWatcher(std::shared_ptr<SharedInotify> inotify)
    : m_inotify(std::move(inotify))
{
}

FolderWatcher::Start InotifyFolderWatcher::start(const QString &path, OnBatch onBatch)
{
    m_path = QFile::encodeName(path);
    m_onBatch = std::move(onBatch);
    m_watches.emplace(m_inotify, m_path);
    m_batch.setSingleShot(true);
    m_batch.setTimerType(Qt::PreciseTimer);
    QObject::connect(&m_batch, &QTimer::timeout, &m_batch, [this] { deliver(); });
    QObject::connect(m_inotify.get(), &SharedInotify::told, &m_batch, [this] { schedule(); });
    watchMounts();
    place();
    if (m_watches->isOutOfWatches() && !FolderPoll::isPossible(m_path))
        return Start::Failed;
    tellOfPolling();
    return m_watches->hasFolder() || (m_poll && m_folder.exists) ? Start::Running : Start::Idle;
}

void InotifyFolderWatcher::place()
{
    m_watches->place();
    m_folder = FolderState::of(m_path);
    if (!m_watches->isOutOfWatches() && !m_watches->isClosed()
        && !NetworkFileSystem::holds(m_watches->lastFolder())) {
        m_poll.reset();
    } else if (!m_poll) {
        m_poll = std::make_unique<FolderPoll>(
            m_path, [this](const FolderState &before, const FolderState &now) {
                m_pending.folder = true;
                // It may have been opened, too.
                m_pending.path |= !now.isSameFolderAs(before) || m_watches->isClosed();
                schedule();
            });
    }
}

void InotifyFolderWatcher::tellOfPolling()
{
    if (m_watches->isOutOfWatches() && !std::exchange(m_hasToldOfPolling, true)) {
        Log::line(u"⚠️ No inotify watch left for "_s + QFile::decodeName(m_path)
                  + u": looking at it every second instead"_s);
    }
}

void InotifyFolderWatcher::schedule()
{
    const bool isPending =
        m_pending.folder || m_pending.path || m_haveMountsChanged || m_watches->hasEvents();
    if (isPending && !m_batch.isActive())
        m_batch.start(kLatency);
}

void InotifyFolderWatcher::deliver()
{
    PathWatches::Events events = m_watches->read();
    // What has come until now belongs to this batch.
    m_batch.stop();
    events.folder |= m_pending.folder;
    events.path |= m_pending.path;
    m_pending = {};
    const bool haveMountsChanged = std::exchange(m_haveMountsChanged, false);
    if (m_mountsChanged)
        m_mountsChanged->setEnabled(true);
    const FolderState before = m_folder;
    if (events.path || haveMountsChanged) {
        place();
        tellOfPolling();
    }
    // Most mounts have nothing to do with the folder, even if they are on the way to it.
    events.path |= !m_folder.isSameFolderAs(before);
    // On the way to a folder that is still missing, nothing has happened for the caller.
    if ((!before.exists && !m_folder.exists) || !(events.folder || events.path))
        return;
    // Last, and from a copy, so that the caller may end the watching.
    const OnBatch onBatch = m_onBatch;
    onBatch(events.path);
}

/// What is mounted over the folder, or over a folder on the way to it, is not told by inotify.
void InotifyFolderWatcher::watchMounts()
{
    m_mounts = UniqueFd(::open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC));
    if (!m_mounts.isOpen())
        return;
    m_mountsChanged = std::make_unique<QSocketNotifier>(m_mounts.get(), QSocketNotifier::Exception);
    QObject::connect(m_mountsChanged.get(), &QSocketNotifier::activated, m_mountsChanged.get(),
                     [this] {
                         m_haveMountsChanged = true;
                         m_mountsChanged->setEnabled(false);
                         schedule();
                     });
}
