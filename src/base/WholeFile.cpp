#include "base/WholeFile.h"

#include "base/SystemError.h"
#include "base/UniqueFd.h"

#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>

using WholeFile::Outlives;

namespace {

/// The number of the error; 0 when all is written.
int writeAll(int file, const QByteArray &contents)
{
    for (qsizetype done = 0; done < contents.size();) {
        const ssize_t count = ::write(file, contents.constData() + done,
                                      static_cast<std::size_t>(contents.size() - done));
        if (count >= 0)
            done += count;
        else if (errno != EINTR)
            return errno;
    }
    return 0;
}

void createFile(const QString &path, const QByteArray &contents, mode_t mode, Outlives outlives)
{
    const QByteArray name = QFile::encodeName(path);
    const UniqueFd file(::open(name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
    if (!file.isOpen()) {
        const int error = errno;
        throw SystemError::fromErrno(QLatin1String("Could not create ") + path, error);
    }

    // The user's umask may have taken bits away; it cannot have added any.
    int error = ::fchmod(file.get(), mode) == 0 ? 0 : errno;
    if (error == 0)
        error = writeAll(file.get(), contents);
    if (error == 0 && outlives == Outlives::PowerCut && ::fsync(file.get()) != 0)
        error = errno;
    if (error != 0) {
        ::unlink(name.constData());
        throw SystemError::fromErrno(QLatin1String("Could not write ") + path, error);
    }
}

/// Has the disk learn which names the folder of path holds.
void syncFolderOf(const QString &path)
{
    const QByteArray folder = QFile::encodeName(QFileInfo(path).path());
    const UniqueFd names(::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    // Some file systems cannot. The name stands for one of two whole files even then.
    if (names.isOpen())
        ::fsync(names.get());
}

} // namespace

void WholeFile::create(const QString &path, const QByteArray &contents, mode_t mode)
{
    createFile(path, contents, mode, Outlives::Program);
}

void WholeFile::replace(const QString &path, const QByteArray &contents, mode_t mode,
                        Outlives outlives)
{
    const QString replacement = path + QLatin1String(".new");
    const QByteArray name = QFile::encodeName(replacement);
    ::unlink(name.constData()); // Left behind by a run that crashed.
    createFile(replacement, contents, mode, outlives);
    if (::rename(name.constData(), QFile::encodeName(path).constData()) != 0) {
        const int error = errno;
        ::unlink(name.constData());
        throw SystemError::fromErrno(QLatin1String("Could not write ") + path, error);
    }
    if (outlives == Outlives::PowerCut)
        syncFolderOf(path);
}
