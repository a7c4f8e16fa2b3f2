#include "platform/linux/AutostartEntry.h"

#include "base/AppIdentifier.h"
#include "base/SystemError.h"
#include "base/WholeFile.h"

#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>

using namespace Qt::StringLiterals;

namespace {

const QString kExec = u"Exec"_s;
const QString kTryExec = u"TryExec"_s;
const QString kHidden = u"Hidden"_s;
const QString kEnabled = u"X-GNOME-Autostart-enabled"_s;
const QString kOnlyShowIn = u"OnlyShowIn"_s;
const QString kNotShowIn = u"NotShowIn"_s;

QString pathIn(const QString &configFolder)
{
    return configFolder + u"/autostart/"_s + kAppIdentifier + u".desktop"_s;
}

QString usersPath()
{
    return pathIn(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation));
}

/// The path of the system-wide entry; empty when there is none.
QString systemPath()
{
    const QStringList folders =
        QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation).mid(1);
    const auto found = std::find_if(folders.cbegin(), folders.cend(), [](const QString &folder) {
        return QFileInfo(pathIn(folder)).isFile();
    });
    return found == folders.cend() ? QString() : pathIn(*found);
}

/// The entry in the file; without a group when it cannot be read.
DesktopEntry read(const QString &path)
{
    QFile file(path);
    // Opening something like a pipe could block for ever.
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return DesktopEntry();
    return DesktopEntry(file.readAll());
}

/// Throws SystemError, and leaves what was there, if that is impossible.
void write(const QString &path, const DesktopEntry &entry)
{
    const QString folder = QFileInfo(path).path();
    std::error_code error;
    std::filesystem::create_directories(QFile::encodeName(folder).toStdString(), error);
    if (error)
        throw SystemError::fromErrno(u"Could not create "_s + folder, error.value());
    WholeFile::replace(path, entry.bytes(), S_IRUSR | S_IWUSR, WholeFile::Outlives::PowerCut);
}

/// The error's text; empty when there was none.
QString writeReporting(const QString &path, const DesktopEntry &entry)
{
    try {
        write(path, entry);
    } catch (const SystemError &error) {
        return error.description();
    }
    return {};
}

/// The file that a program's name or path stands for; empty when there is none.
QString executable(const QString &program)
{
    const QString path = QStandardPaths::findExecutable(program);
    return path.isEmpty() ? QString() : QFileInfo(path).canonicalFilePath();
}

/// The program that a command line starts, seen through env and the variables that it sets.
QString programOf(const QStringList &arguments)
{
    auto it = arguments.cbegin();
    if (it != arguments.cend() && QFileInfo(*it).fileName() == u"env") {
        do {
            ++it;
        } while (it != arguments.cend() && it->contains(u'='));
    }
    return it == arguments.cend() ? QString() : *it;
}

QString programOf(const DesktopEntry &entry)
{
    return programOf(execArguments(entry.value(kExec).value_or(QString())));
}

bool names(const QStringList &desktops)
{
    const QStringList running =
        qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':', Qt::SkipEmptyParts);
    return std::any_of(running.cbegin(), running.cend(),
                       [&](const QString &desktop) { return desktops.contains(desktop); });
}

bool isForOtherDesktops(const DesktopEntry &entry)
{
    return (entry.value(kOnlyShowIn) && !names(entry.list(kOnlyShowIn)))
        || names(entry.list(kNotShowIn));
}

bool isSwitchedOff(const DesktopEntry &entry)
{
    return !entry.isValid() || entry.isTrue(kHidden) || entry.value(kEnabled) == u"false"_s
        || isForOtherDesktops(entry);
}

bool isTryExecMissing(const DesktopEntry &entry)
{
    const QString program = entry.text(kTryExec);
    return !program.isEmpty() && executable(program).isEmpty();
}

} // namespace

AutostartEntry::AutostartEntry(const QString &program) : m_program(program)
{
}

bool AutostartEntry::isEnabled() const
{
    const QString users = usersPath();
    const DesktopEntry entry = read(QFileInfo(users).isFile() ? users : systemPath());
    return !isSwitchedOff(entry) && !isTryExecMissing(entry) && startsThisProgram(entry);
}

bool AutostartEntry::startsThisProgram(const DesktopEntry &entry) const
{
    const QString program = programOf(entry);
    const QString path = program.isEmpty() ? QString() : executable(program);
    return !path.isEmpty() && path == QFileInfo(m_program).canonicalFilePath();
}

/// The entry with what keeps it from starting this program put right.
DesktopEntry AutostartEntry::corrected(DesktopEntry entry) const
{
    if (!entry.isValid())
        entry = DesktopEntry(); // Desktops reject a file that begins with something else.
    const auto setIfMissing = [&](const QString &key, const QString &value) {
        if (!entry.value(key))
            entry.setValue(key, value);
    };
    setIfMissing(u"Type"_s, u"Application"_s);
    setIfMissing(u"Name"_s, u"Tessery"_s);
    if (!startsThisProgram(entry))
        entry.setValue(kExec, execValue(m_program));
    setIfMissing(u"Icon"_s, kAppIdentifier);
    setIfMissing(u"Terminal"_s, u"false"_s);
    entry.remove(kHidden);
    if (entry.value(kEnabled))
        entry.setValue(kEnabled, u"true"_s);
    if (isTryExecMissing(entry))
        entry.remove(kTryExec);
    if (isForOtherDesktops(entry)) {
        entry.remove(kOnlyShowIn);
        entry.remove(kNotShowIn);
    }
    return entry;
}

QString AutostartEntry::registerItem()
{
    return isEnabled() ? QString() : writeReporting(usersPath(), corrected(read(usersPath())));
}

QString AutostartEntry::unregisterItem()
{
    const QString path = usersPath();
    if (const QString system = systemPath(); !system.isEmpty()) {
        DesktopEntry entry = read(QFileInfo(path).isFile() ? path : system);
        entry.setValue(kHidden, u"true"_s);
        return writeReporting(path, entry);
    }
    if (::unlink(QFile::encodeName(path).constData()) == 0 || errno == ENOENT || errno == ENOTDIR)
        return {};
    return SystemError::fromErrno(u"Could not remove "_s + path, errno).description();
}

void AutostartEntry::followMovedProgram()
{
    const QString path = usersPath();
    const DesktopEntry entry = read(path);
    if (isSwitchedOff(entry))
        return;
    const QString program = programOf(entry);
    if (program.isEmpty() || executable(program).isEmpty())
        (void)writeReporting(path, corrected(entry)); // Nobody has asked: the item stays off.
}
