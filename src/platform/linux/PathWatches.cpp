#include "platform/linux/PathWatches.h"

#include <QList>

#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstring>
#include <utility>

namespace {

constexpr std::uint32_t kContents = IN_CREATE | IN_CLOSE_WRITE | IN_MOVED_FROM | IN_MOVED_TO
    | IN_DELETE | IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;
constexpr std::uint32_t kItself = IN_DELETE_SELF | IN_MOVE_SELF;
/// A folder that somebody still has open does not tell of its deletion, but its parent does.
constexpr std::uint32_t kReplaced = IN_DELETE | IN_MOVED_TO;
/// It also arrives when its permissions change so that it can be watched.
constexpr std::uint32_t kArrives = IN_CREATE | IN_MOVED_TO | IN_ATTRIB;
/// What ends a watch or moves it to another path.
constexpr std::uint32_t kGone = IN_DELETE_SELF | IN_MOVE_SELF | IN_UNMOUNT | IN_IGNORED;

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

PathWatches::PathWatches(const QByteArray &path)
    : m_path(path), m_inotify(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
{
}

bool PathWatches::hasFolder() const
{
    return !m_watches.empty() && m_watches.back().role == Role::Contents;
}

void PathWatches::place()
{
    for (int attempt = 0; attempt < kMostAttempts; ++attempt) {
        removeAll();
        follow();
        // Whatever changed before the watches were there shows when the path is followed again.
        const std::vector<Watch> before = std::exchange(m_watches, {});
        follow();
        if (m_watches == before)
            return;
        m_watches.insert(m_watches.begin(), before.begin(), before.end());
    }
}

void PathWatches::follow()
{
    m_isOutOfWatches = false;
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
        const bool isLink = exists && S_ISLNK(status.st_mode);
        if (!exists || !(isLink || S_ISDIR(status.st_mode)) || (isLink && ++links > kMostLinks)) {
            m_lastFolder = folder;
            add(folder, kArrives, Role::Entry, name);
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
    if (add(folder, kContents, Role::Contents) == Added::NotPossible)
        add(parent, kArrives, Role::Entry, name);
}

PathWatches::Added PathWatches::add(const QByteArray &path, std::uint32_t mask, Role role,
                                    const QByteArray &entry)
{
    // One folder can stand on the path more than once; the roles add up.
    const int descriptor =
        ::inotify_add_watch(m_inotify.get(), path.constData(), mask | IN_DONT_FOLLOW | IN_MASK_ADD);
    if (descriptor >= 0) {
        m_watches.push_back({descriptor, role, entry});
        return Added::Yes;
    }
    if (errno != ENOSPC && errno != ENOMEM)
        return Added::NotPossible;
    m_isOutOfWatches = true;
    return Added::NoWatchLeft;
}

void PathWatches::removeAll()
{
    // A watch that is gone already cannot be removed, which is just as well.
    for (const Watch &watch : std::exchange(m_watches, {}))
        ::inotify_rm_watch(m_inotify.get(), watch.descriptor);
}

PathWatches::Events PathWatches::read()
{
    Events events;
    alignas(inotify_event) std::array<std::byte, 16 * 1024> buffer;
    for (;;) {
        const ssize_t size = ::read(m_inotify.get(), buffer.data(), buffer.size());
        if (size < 0 && errno == EINTR)
            continue;
        if (size <= 0)
            return events;
        for (ssize_t offset = 0; offset < size;) {
            inotify_event event = {};
            std::memcpy(&event, buffer.data() + offset, sizeof event);
            const char *const name =
                reinterpret_cast<const char *>(buffer.data() + offset + sizeof event);
            note(event.wd, event.mask, event.len > 0 ? name : "", events);
            offset += static_cast<ssize_t>(sizeof event + event.len);
        }
    }
}

void PathWatches::note(int descriptor, std::uint32_t mask, const char *entry, Events &events) const
{
    if ((mask & IN_Q_OVERFLOW) != 0) {
        events.folder = true;
        events.path = true;
        return;
    }
    for (const Watch &watch : m_watches) {
        if (watch.descriptor != descriptor)
            continue;
        switch (watch.role) {
        case Role::Contents:
            events.folder = true;
            break;
        case Role::Itself:
            break;
        case Role::Link:
            events.path = true;
            break;
        case Role::Entry:
            events.path |= watch.entry == entry;
            break;
        }
        events.path |= (mask & kGone) != 0;
    }
}
