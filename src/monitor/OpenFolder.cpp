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

bool OpenFolder::hasChangedSince(const std::string &name, const timespec &time) const
{
    struct stat facts = {};
    return ::fstatat(::dirfd(m_folder.get()), name.c_str(), &facts, AT_SYMLINK_NOFOLLOW) == 0
        && std::tie(facts.st_ctim.tv_sec, facts.st_ctim.tv_nsec)
        >= std::tie(time.tv_sec, time.tv_nsec);
}
