#include "platform/linux/NetworkFileSystem.h"

#include <linux/magic.h>
#include <sys/vfs.h>

#include <algorithm>
#include <array>

namespace {

// Not in all versions of linux/magic.h.
constexpr std::uint32_t kCifs = 0xFF534D42;
constexpr std::uint32_t kSmb2 = 0xFE534D42;
constexpr std::uint32_t kCeph = 0x00C36400;
constexpr std::uint32_t kFuse = 0x65735546;
constexpr std::uint32_t kGfs2 = 0x01161970;
constexpr std::uint32_t kLustre = 0x0BD00BD0;

constexpr std::array<std::uint32_t, 14> kTypes = {
    NFS_SUPER_MAGIC,   SMB_SUPER_MAGIC, kCifs, kSmb2,
    AFS_SUPER_MAGIC,   AFS_FS_MAGIC,    kCeph, kFuse,
    CODA_SUPER_MAGIC,  NCP_SUPER_MAGIC, kGfs2, kLustre,
    OCFS2_SUPER_MAGIC, V9FS_MAGIC,
};

} // namespace

bool NetworkFileSystem::isOne(std::uint32_t type)
{
    return std::ranges::find(kTypes, type) != kTypes.end();
}

bool NetworkFileSystem::holds(const QByteArray &path)
{
    struct statfs status = {};
    return ::statfs(path.constData(), &status) == 0
        && isOne(static_cast<std::uint32_t>(status.f_type));
}
