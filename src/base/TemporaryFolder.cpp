#include "base/TemporaryFolder.h"

#include "base/AppIdentifier.h"
#include "base/SystemError.h"

#include <QDir>
#include <QFile>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statvfs.h>

#include <cerrno>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1String kRandomPart("XXXXXX");

/// The name of each such folder, up to its random part.
QString namePrefix()
{
    return kAppIdentifier + u'-';
}

bool isOurName(const QString &name)
{
    return name.startsWith(namePrefix()) && name.size() == namePrefix().size() + kRandomPart.size();
}

/// The folder at path, opened and locked; not open if another process holds it or if it is not one
/// that we make.
UniqueFd lockFolder(const QByteArray &path)
{
    UniqueFd folder(::open(path.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat opened = {};
    struct stat named = {};
    if (!folder.isOpen() || ::fstat(folder.get(), &opened) != 0 || opened.st_uid != ::geteuid()
        || (opened.st_mode & 0777) != S_IRWXU || ::flock(folder.get(), LOCK_EX | LOCK_NB) != 0)
        return {};
    // Whoever cleans up may have removed it between the opening and the locking.
    if (::lstat(path.constData(), &named) != 0 || named.st_ino != opened.st_ino)
        return {};
    return folder;
}

void removeAbandonedFolders(const QString &base)
{
    const QDir dir(base);
    // A name filter would bring in the machinery of regular expressions, half a megabyte of it.
    const QStringList names = dir.entryList(QDir::Dirs | QDir::NoSymLinks | QDir::Hidden);
    for (const QString &name : names) {
        if (!isOurName(name))
            continue;
        const QString path = dir.filePath(name);
        if (const UniqueFd lock = lockFolder(QFile::encodeName(path)); lock.isOpen())
            QDir(path).removeRecursively();
    }
}

/// The folders to try, the best first.
QStringList baseFolders()
{
    QStringList bases;
    const QString runtime = QDir::cleanPath(qEnvironmentVariable("XDG_RUNTIME_DIR"));
    if (runtime.startsWith(u'/') && TemporaryFolder::allowsExecution(runtime))
        bases << runtime;
    // QDir::tempPath() would give the root folder in the place of one that is not there.
    const QString temporary = QDir::cleanPath(qEnvironmentVariable("TMPDIR"));
    bases << (temporary.startsWith(u'/') ? temporary : u"/tmp"_s);
    return bases;
}

} // namespace

bool TemporaryFolder::allowsExecution(const QString &folder)
{
    struct statvfs system = {};
    return ::statvfs(QFile::encodeName(folder).constData(), &system) == 0
        && (system.f_flag & ST_NOEXEC) == 0;
}

TemporaryFolder::TemporaryFolder()
{
    const QStringList bases = baseFolders();
    int lastError = 0;
    for (const QString &base : bases)
        removeAbandonedFolders(base);
    for (const QString &base : bases) {
        // A second turn is needed only if another starting run took ours for an abandoned one.
        for (int turn = 0; turn < 10; ++turn) {
            QByteArray path = QFile::encodeName(base + u'/' + namePrefix() + kRandomPart);
            if (!::mkdtemp(path.data())) {
                lastError = errno;
                break;
            }
            ::chmod(path.constData(), S_IRWXU); // The umask may have taken bits away.
            m_lock = lockFolder(path);
            if (m_lock.isOpen()) {
                m_path = QFile::decodeName(path);
                return;
            }
        }
    }
    throw SystemError::fromErrno(u"Could not make a temporary folder in "_s + bases.join(u" or "_s),
                                 lastError);
}

TemporaryFolder::~TemporaryFolder()
{
    QDir(m_path).removeRecursively();
}
