#include "platform/linux/PathWatches.h"

#include <QList>

#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <utility>

namespace {

constexpr std::uint32_t kContents = IN_CREATE | IN_CLOSE_WRITE | IN_MOVED_FROM | IN_MOVED_TO
    | IN_DELETE | IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;
constexpr std::uint32_t kItself = IN_DELETE_SELF | IN_MOVE_SELF;
/// A folder that somebody still has open does not tell of its deletion, but its parent does.
constexpr std::uint32_t kReplaced = IN_DELETE | IN_MOVED_TO;
/// It also arrives when its permissions change so that it can be watched.
constexpr std::uint32_t kArrives = IN_CREATE | IN_MOVED_TO | IN_ATTRIB;
/// Told of every watch.
constexpr std::uint32_t kAlways = IN_UNMOUNT | IN_IGNORED;
/// What ends a watch or moves it to another path.
constexpr std::uint32_t kGone = IN_DELETE_SELF | IN_MOVE_SELF | kAlways;

/// As many links as the system itself follows.
constexpr int kMostLinks = 40;
/// The path is followed until nothing on it changes meanwhile; this bounds the attempts.
constexpr int kMostAttempts = 8;

QList<QByteArray> parts(const QByteArray &path)
{
    QList<QByteArray> names = path.split('/');
    names.removeIf([](const QByteArray &name) { return name.isEmpty() || name == "."; });
    return names;
}

QByteArray linkTarget(const QByteArray &path)
{
    std::array<char, PATH_MAX> buffer;
    const ssize_t size = ::readlink(path.constData(), buffer.data(), buffer.size());
    return size < 0 ? QByteArray() : QByteArray(buffer.data(), size);
}

} // namespace

PathWatches::PathWatches(std::shared_ptr<SharedInotify> inotify, const QByteArray &path)
    : m_path(path), m_inotify(std::move(inotify))
{
    m_inotify->addUser(this);
}

PathWatches::~PathWatches()
{
    const std::vector<Watch> old = std::exchange(m_watches, {});
    for (const Watch &watch : old)
        m_inotify->release(watch.descriptor);
    m_inotify->removeUser(this);
}

bool PathWatches::hasFolder() const
{
    return !m_watches.empty() && m_watches.back().role == Role::Contents;
}

void PathWatches::place()
{
    std::vector<Watch> old = std::exchange(m_watches, {});
    follow();
    for (int attempt = 0; attempt < kMostAttempts; ++attempt) {
        // Whatever changed before the watches were there shows when the path is followed again.
        const std::vector<Watch> before = std::exchange(m_watches, {});
        follow();
        if (m_watches == before && narrow())
            break;
        old.insert(old.end(), before.begin(), before.end());
    }
    for (const Watch &watch : old)
        m_inotify->release(watch.descriptor);
}

void PathWatches::follow()
{
    m_isOutOfWatches = false;
    m_isClosed = false;
    QList<QByteArray> rest = parts(m_path);
    QByteArray folder = "/";
    QByteArray parent = folder;
    QByteArray name;
    int links = 0;
    const auto childOf = [](const QByteArray &at, const QByteArray &entry) {
        return at.endsWith('/') ? QByteArray(at + entry) : QByteArray(at + '/' + entry);
    };
    while (!rest.isEmpty()) {
        name = rest.takeFirst();
        const QByteArray next = childOf(folder, name);
        struct stat status = {};
        const bool exists = ::lstat(next.constData(), &status) == 0;
        m_isClosed = !exists && errno == EACCES;
        const bool isLink = exists && S_ISLNK(status.st_mode);
        if (!exists || !(isLink || S_ISDIR(status.st_mode)) || (isLink && ++links > kMostLinks)) {
            m_lastFolder = folder;
            m_isClosed |= add(folder, kArrives, Role::Entry, name) == Added::NotPossible;
            return;
        }
        if (isLink) {
            add(next, kItself | IN_ATTRIB, Role::Link);
            const QByteArray target = linkTarget(next);
            rest = parts(target) + rest;
            if (target.startsWith('/'))
                folder = "/";
            continue;
        }
        // A folder that may be passed but not read cannot be watched; nothing to do about it.
        add(next, kItself | IN_ONLYDIR, Role::Itself);
        parent = folder;
        folder = next;
    }
    m_lastFolder = folder;
    add(parent, kReplaced, Role::Entry, name);
    m_isClosed = add(folder, kContents, Role::Contents) == Added::NotPossible;
    if (m_isClosed)
        add(parent, kArrives, Role::Entry, name);
}

PathWatches::Added PathWatches::add(const QByteArray &path, std::uint32_t events, Role role,
                                    const QByteArray &entry)
{
    // One folder can stand on the path more than once; the roles add up.
    const int descriptor = m_inotify->isOpen() ? m_inotify->watch(path, events) : -1;
    if (descriptor >= 0) {
        m_watches.push_back({descriptor, events, path, role, entry});
        return Added::Yes;
    }
    if (m_inotify->isOpen() && errno != ENOSPC && errno != ENOMEM)
        return Added::NotPossible;
    m_isOutOfWatches = true;
    return Added::NoWatchLeft;
}

bool PathWatches::narrow() const
{
    return std::ranges::all_of(m_watches, [this](const Watch &watch) {
        return m_inotify->narrow(watch.descriptor, watch.path);
    });
}

PathWatches::Events PathWatches::read()
{
    if (m_inotify->isOpen())
        m_inotify->read();
    const Events events = std::exchange(m_events, {});
    m_inotify->eventsTaken();
    return events;
}

std::uint32_t PathWatches::wanted(int descriptor) const
{
    std::uint32_t events = 0;
    for (const Watch &watch : m_watches) {
        if (watch.descriptor == descriptor)
            events |= watch.events;
    }
    return events;
}

void PathWatches::note(int descriptor, std::uint32_t events, const char *entry)
{
    if ((events & IN_Q_OVERFLOW) != 0) {
        m_events = {.folder = true, .path = true};
        return;
    }
    for (const Watch &watch : m_watches) {
        // Others may want more of it.
        if (watch.descriptor != descriptor || (events & (watch.events | kAlways)) == 0)
            continue;
        switch (watch.role) {
        case Role::Contents:
            m_events.folder = true;
            break;
        case Role::Itself:
            break;
        case Role::Link:
            m_events.path = true;
            break;
        case Role::Entry:
            m_events.path |= watch.entry == entry;
            break;
        }
        m_events.path |= (events & kGone) != 0;
    }
}
