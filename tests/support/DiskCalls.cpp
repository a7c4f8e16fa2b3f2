#include "support/DiskCalls.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <map>

namespace {

struct Notes {
    bool isTaking = false;
    int error = 0;
    std::map<ino_t, off_t> synced = {}; ///< The sizes of the files when they were.
    QByteArrayList all = {};
};

Notes &notes()
{
    static Notes notes;
    return notes;
}

QByteArray lastPartOf(const QByteArray &path)
{
    return path.mid(path.lastIndexOf('/') + 1);
}

int sync(long call, int file)
{
    struct stat status = {};
    if (notes().isTaking && ::fstat(file, &status) == 0) {
        if (S_ISDIR(status.st_mode)) {
            QByteArray path(PATH_MAX, '\0');
            const QByteArray link = "/proc/self/fd/" + QByteArray::number(file);
            path.resize(
                ::readlink(link.constData(), path.data(), static_cast<std::size_t>(path.size())));
            notes().all << lastPartOf(path) + "/: synced";
        } else if (notes().error != 0) {
            errno = notes().error;
            return -1;
        } else {
            notes().synced[status.st_ino] = status.st_size;
        }
    }
    return static_cast<int>(::syscall(call, file));
}

/// The result, noted with the name that the file has now, if it is one.
int named(int result, int folder, const char *name)
{
    struct stat status = {};
    if (notes().isTaking && result == 0 && ::fstatat(folder, name, &status, 0) == 0) {
        const auto synced = notes().synced.find(status.st_ino);
        const bool isWhole = synced != notes().synced.end() && synced->second == status.st_size;
        notes().all << lastPartOf(name) + (isWhole ? ": synced" : ": not synced");
    }
    return result;
}

} // namespace

DiskCalls::DiskCalls(int error)
{
    notes() = {.isTaking = true, .error = error};
}

DiskCalls::~DiskCalls()
{
    notes() = {};
}

QByteArrayList DiskCalls::all() const
{
    return notes().all;
}

extern "C" {

int fsync(int file)
{
    return sync(SYS_fsync, file);
}

int fdatasync(int file)
{
    return sync(SYS_fdatasync, file);
}

int rename(const char *from, const char *to) noexcept
{
    return named(::renameat(AT_FDCWD, from, AT_FDCWD, to), AT_FDCWD, to);
}

int linkat(int fromFolder, const char *from, int toFolder, const char *to, int flags) noexcept
{
    return named(static_cast<int>(::syscall(SYS_linkat, fromFolder, from, toFolder, to, flags)),
                 toFolder, to);
}
}
