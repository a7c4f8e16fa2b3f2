#include "monitor/ScreenshotMonitor.h"

#include "base/Log.h"
#include "base/LoggedName.h"
#include "monitor/OpenFolder.h"
#include "monitor/WatchedFolder.h"
#include "platform/FolderWatcher.h"
#include "platform/StandardFolders.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTimer>

#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// Gives whoever writes the screenshot time to finish.
constexpr auto kReportDelay = 500ms;

QString chooseDesktop(const StandardFolders &folders)
{
    const QString real = QDir(folders.home()).filePath(u"Desktop"_s);
    if (QFileInfo::exists(real)) {
        Log::line(u"📸 Using real Desktop: "_s + real);
        return real;
    }
    const QString desktop = folders.desktop();
    if (desktop.isEmpty())
        qFatal("The desktop environment names no desktop folder");
    Log::line(u"📸 Using sandboxed Desktop: "_s + desktop);
    return desktop;
}

/// What makes a folder the same folder, whatever it is called: links and mounts give it further
/// names.
struct Identity {
    dev_t device = 0;
    ino_t inode = 0;

    bool operator==(const Identity &) const = default;
};

/// Empty if there is no folder at path.
std::optional<Identity> identityOf(const QString &path)
{
    struct stat facts = {};
    if (::stat(QFile::encodeName(path).constData(), &facts) != 0)
        return std::nullopt;
    return Identity{.device = facts.st_dev, .inode = facts.st_ino};
}

/// Those of paths that are neither the folder desktop nor one that comes before them, by whatever
/// name.
QStringList otherFolders(const QStringList &paths, const QString &desktop)
{
    std::vector<std::optional<Identity>> known = {identityOf(desktop)};
    QStringList others;
    for (const QString &path : paths) {
        const std::optional<Identity> identity = identityOf(path);
        if (!identity || std::ranges::find(known, identity) != known.end())
            continue;
        known.push_back(identity);
        others.append(path);
    }
    return others;
}

} // namespace

ScreenshotMonitor::ScreenshotMonitor(const StandardFolders &folders,
                                     const WatcherFactory &makeWatcher, Callback callback)
    : m_callback(std::make_shared<const Callback>(std::move(callback)))
{
    const timespec start = OpenFolder::now();
    const auto watch = [this, &makeWatcher, &start](const QString &path, const QString &heading) {
        const auto found = [this, path](const QString &name) {
            reportLater(path, name);
        };
        m_folders.push_back(
            std::make_unique<WatchedFolder>(path, heading, makeWatcher(), found, start));
    };
    const QString desktop = chooseDesktop(folders);
    watch(desktop, {});
    for (const QString &path : otherFolders(folders.screenshots(), desktop)) {
        Log::line(u"📸 Using screenshot folder: "_s + path);
        watch(path, u"📸 In folder: "_s + path);
    }
}

ScreenshotMonitor::~ScreenshotMonitor() = default;

QStringList ScreenshotMonitor::start()
{
    QStringList failed;
    for (const std::unique_ptr<WatchedFolder> &folder : m_folders) {
        if (!folder->start())
            failed.append(folder->path());
    }
    return failed;
}

void ScreenshotMonitor::stop()
{
    for (const std::unique_ptr<WatchedFolder> &folder : m_folders)
        folder->stop();
}

const QString &ScreenshotMonitor::screenshotDirectory() const
{
    return m_folders.front()->path();
}

void ScreenshotMonitor::reportLater(const QString &folder, const QString &name) const
{
    const auto report = [monitorCallback = std::weak_ptr(m_callback), name,
                         fileURL = QUrl::fromLocalFile(folder + u'/' + name)] {
        Log::line(u"📤 Triggering upload callback for: "_s + LoggedName::of(name));
        if (const auto callback = monitorCallback.lock())
            (*callback)(fileURL);
    };
    // The line is due even when the monitor is gone by then, so this belongs to the application.
    QTimer::singleShot(kReportDelay, Qt::PreciseTimer, QCoreApplication::instance(), report);
}
