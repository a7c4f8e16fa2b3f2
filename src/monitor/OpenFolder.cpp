#include "monitor/OpenFolder.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <tuple>

namespace {

/// STATX_MNT_ID_UNIQUE, which older headers lack. Older systems give their number instead.
constexpr unsigned kUniqueMount = 0x4000;

} // namespace

OpenFolder::OpenFolder(const char *path) : m_folder(::opendir(path))
{
}

std::optional<OpenFolder::Identity> OpenFolder::identity() const
{
    struct statx facts = {};
    if (::statx(::dirfd(m_folder.get()), "", AT_EMPTY_PATH, STATX_INO | STATX_MNT_ID | kUniqueMount,
                &facts)
        != 0)
        return std::nullopt;
    return Identity{.deviceMajor = facts.stx_dev_major,
                    .deviceMinor = facts.stx_dev_minor,
                    .inode = facts.stx_ino,
                    .mount = facts.stx_mnt_id};
}

timespec OpenFolder::now()
{
    timespec time = {};
    ::clock_gettime(CLOCK_REALTIME_COARSE, &time);
    return time;
}

std::optional<bool> OpenFolder::isSince(const std::string &name, const timespec &time) const
{
    struct statx facts = {};
    if (::statx(::dirfd(m_folder.get()), name.c_str(), AT_SYMLINK_NOFOLLOW,
                STATX_CTIME | STATX_BTIME, &facts)
        != 0)
        return std::nullopt;
    const auto isLater = [&time](const statx_timestamp &stamp) {
        return std::make_tuple(time_t(stamp.tv_sec), long(stamp.tv_nsec))
            >= std::tie(time.tv_sec, time.tv_nsec);
    };
    return isLater(facts.stx_ctime)
        && ((facts.stx_mask & STATX_BTIME) == 0 || isLater(facts.stx_btime));
}
