#include "monitor/WatchedFolder.h"

#include "base/Log.h"
#include "base/LoggedName.h"
#include "monitor/ScreenshotName.h"

#include <QByteArray>
#include <QFile>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

/// Adds lines that each have a line break.
void addTo(Log::Batch &log, QByteArrayView lines)
{
    if (!lines.isEmpty())
        log.line(lines.chopped(1));
}

} // namespace

struct WatchedFolder::Listing {
    bool isComplete = false; ///< Else the folder could not be read, and nothing else counts.
    std::size_t count = 0; ///< Of entries of any kind.
    /// Screenshots that are new. Files whose names are canonically equivalent are each new if they
    /// come together.
    std::vector<std::string> found;
    /// Screenshots that were not known before, but came with the folder: they are not new.
    std::vector<std::string> old;
    /// What is to be logged about the entries, each line with its line break.
    QByteArray lines;
};

WatchedFolder::WatchedFolder(QString path, QString heading, std::unique_ptr<FolderWatcher> watcher,
                             Found found, const timespec &start)
    : m_path(std::move(path))
    , m_heading(std::move(heading))
    , m_watcher(std::move(watcher))
    , m_found(std::move(found))
    , m_start(start)
{
    loadExistingScreenshots();
}

bool WatchedFolder::start()
{
    Log::line(u"📸 Starting screenshot monitoring on: "_s + m_path);
    Log::line(u"📸 Known files at start: "_s + QString::number(m_knownFiles.count()));
    const FolderWatcher::Start outcome = m_watcher
        ? m_watcher->start(m_path, [this](bool mayBeAnother) { handleEvents(mayBeAnother); })
        : FolderWatcher::Start::Failed;
    switch (outcome) {
    case FolderWatcher::Start::Failed:
        Log::line(u"❌ Failed to create FSEvents stream"_s);
        m_watcher.reset();
        return false;
    case FolderWatcher::Start::Idle:
        Log::line(u"📸 FSEvents stream started: false"_s);
        break;
    case FolderWatcher::Start::Running:
        Log::line(u"📸 FSEvents stream started: true"_s);
        break;
    }
    m_isWatching = true;
    return true;
}

void WatchedFolder::stop()
{
    if (std::exchange(m_isWatching, false))
        m_watcher.reset();
}

void WatchedFolder::loadExistingScreenshots()
{
    const Listing listing = list(Occasion::Start);
    if (!listing.isComplete)
        return;
    Log::Batch log;
    addTo(log, listing.lines);
    insertAll(listing.old);
}

void WatchedFolder::handleEvents(bool mayBeAnother)
{
    if (mayBeAnother)
        m_folder.reset();
    Log::Batch log;
    log.line(u"📸 FSEvents triggered - checking for new screenshots..."_s);
    if (!m_heading.isEmpty())
        log.line(m_heading);
    const Listing listing = list(Occasion::Rescan);
    if (!listing.isComplete) {
        log.line(u"❌ Could not read directory contents"_s);
        return;
    }
    log.line(QString(u"📸 Found "_s + QString::number(listing.count) + u" files in directory"_s));
    addTo(log, listing.lines);
    insertAll(listing.old);
    insertAll(listing.found);
    for (const std::string &name : listing.found)
        m_found(QString::fromStdString(name));
}

void WatchedFolder::insertAll(const std::vector<std::string> &names)
{
    for (const std::string &name : names)
        m_knownFiles.insert(name);
}

WatchedFolder::Listing WatchedFolder::list(Occasion occasion)
{
    Listing listing;
    OpenFolder folder(QFile::encodeName(m_path).constData());
    // Asked of the folder that is read, since events may come too late to tell that it has become
    // another. Once it has been gone or could not be read, it counts as another.
    const auto before = std::exchange(m_folder, std::nullopt);
    if (!folder.isOpen())
        return listing;
    const auto identity = folder.identity();
    const bool isSame = identity && identity == before;
    bool areAllTold = true;
    // Empty if that cannot be told.
    const auto isNew = [&](std::string_view name) -> std::optional<bool> {
        if (occasion == Occasion::Start || isSame)
            return occasion != Occasion::Start;
        return folder.isSince(std::string(name), m_start);
    };
    m_knownFiles.beginPass();
    const auto visit = [&](std::string_view name) {
        ++listing.count;
        if (m_knownFiles.isNextAgain(name))
            return;
        if (!ScreenshotName::isAscii(name) && !QByteArrayView(name).isValidUtf8()) {
            listing.lines += "⚠️ File '" + LoggedName::ofInvalid(name)
                + "' skipped: its name is not valid UTF-8\n";
            return;
        }
        switch (ScreenshotName::kindOf(name)) {
        case ScreenshotName::Kind::Screenshot:
            if (m_knownFiles.contains(name))
                break;
            if (const auto answer = isNew(name); !answer.value_or(false)) {
                areAllTold &= answer.has_value();
                if (answer)
                    listing.old.emplace_back(name);
                break;
            }
            listing.lines += "✅ New screenshot detected: " + LoggedName::of(name) + '\n';
            listing.found.emplace_back(name);
            break;
        case ScreenshotName::Kind::OtherImage:
            listing.lines += "⚠️ File '" + LoggedName::of(name)
                + "' has image extension but doesn't match screenshot pattern\n";
            break;
        case ScreenshotName::Kind::Other:
            break;
        }
    };
    listing.isComplete = folder.visit(visit);
    // What could not be looked up is looked up again with the next events.
    if (listing.isComplete && areAllTold)
        m_folder = identity;
    return listing;
}
