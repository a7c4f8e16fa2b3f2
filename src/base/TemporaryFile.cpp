#include "base/TemporaryFile.h"

#include "base/SystemError.h"
#include "base/UniqueFd.h"

#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>

namespace {

void writeNewFile(const QString &path, const QByteArray &contents, TemporaryFile::Mode mode)
{
    const QByteArray name = QFile::encodeName(path);
    const auto bits = static_cast<mode_t>(mode);
    const UniqueFd file(::open(name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, bits));
    if (!file.isOpen())
        throw SystemError::fromErrno(QLatin1String("Could not create ") + path, errno);

    // The user's umask may have taken bits away; it cannot have added any.
    int error = ::fchmod(file.get(), bits) == 0 ? 0 : errno;
    for (qsizetype done = 0; error == 0 && done < contents.size();) {
        const ssize_t count = ::write(file.get(), contents.constData() + done,
                                      static_cast<std::size_t>(contents.size() - done));
        if (count >= 0)
            done += count;
        else if (errno != EINTR)
            error = errno;
    }
    if (error != 0) {
        ::unlink(name.constData());
        throw SystemError::fromErrno(QLatin1String("Could not write ") + path, error);
    }
}

} // namespace

TemporaryFile::TemporaryFile(const QString &path, const QByteArray &contents, Mode mode)
    : m_path(path), m_mode(mode)
{
    writeNewFile(path, contents, mode);
}

void TemporaryFile::replaceContents(const QByteArray &contents)
{
    const QString replacement = m_path + QLatin1String(".new");
    writeNewFile(replacement, contents, m_mode);
    if (::rename(QFile::encodeName(replacement).constData(), QFile::encodeName(m_path).constData())
        != 0) {
        const int error = errno;
        ::unlink(QFile::encodeName(replacement).constData());
        throw SystemError::fromErrno(QLatin1String("Could not write ") + m_path, error);
    }
}

TemporaryFile::~TemporaryFile()
{
    ::unlink(QFile::encodeName(m_path).constData());
}
