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
    constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;
    return {.exists = true,
            .device = status.st_dev,
            .inode = status.st_ino,
            .modified = status.st_mtim.tv_sec * kNanosecondsPerSecond + status.st_mtim.tv_nsec};
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
