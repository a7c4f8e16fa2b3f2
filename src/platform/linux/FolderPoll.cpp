#include "platform/linux/FolderPoll.h"

#include "base/UniqueFd.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <chrono>
#include <utility>

using namespace std::chrono_literals;

FolderState FolderState::of(const QByteArray &path)
{
    struct stat status = {};
    if (::stat(path.constData(), &status) != 0 || !S_ISDIR(status.st_mode))
        return {};
    const auto nanoseconds = [](const timespec &time) {
        return time.tv_sec * std::int64_t(1'000'000'000) + time.tv_nsec;
    };
    return {.exists = true,
            .device = status.st_dev,
            .inode = status.st_ino,
            .modified = nanoseconds(status.st_mtim),
            .changed = nanoseconds(status.st_ctim)};
}

bool FolderState::isSameFolderAs(const FolderState &other) const
{
    return exists == other.exists && device == other.device && inode == other.inode;
}

bool FolderPoll::isPossible(const QByteArray &path)
{
    const UniqueFd folder(::open(path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return folder.isOpen() || errno == ENOENT || errno == ENOTDIR;
}

FolderPoll::FolderPoll(const QByteArray &path,
                       std::function<void(const FolderState &, const FolderState &)> onChange)
    : m_path(path), m_onChange(std::move(onChange)), m_state(FolderState::of(path))
{
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { look(); });
    m_timer.start(1s);
}

void FolderPoll::look()
{
    const FolderState before = std::exchange(m_state, FolderState::of(m_path));
    if (m_state != before)
        m_onChange(before, m_state);
}
