#include "platform/linux/SharedInotify.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstring>

using namespace std::chrono_literals;

namespace {

/// After reading, when somebody waits for more.
constexpr auto kRest = 100ms;

} // namespace

SharedInotify::SharedInotify() : m_inotify(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
{
    if (!isOpen())
        return;
    m_rest.setSingleShot(true);
    connect(&m_rest, &QTimer::timeout, this, &SharedInotify::updateNotifier);
    m_readable = std::make_unique<QSocketNotifier>(descriptor(), QSocketNotifier::Read);
    connect(m_readable.get(), &QSocketNotifier::activated, this, &SharedInotify::readFromEventLoop);
}

void SharedInotify::addUser(User *user)
{
    m_users.push_back(user);
    updateNotifier();
}

void SharedInotify::removeUser(User *user)
{
    std::erase(m_users, user);
    updateNotifier();
}

int SharedInotify::watch(const QByteArray &path, std::uint32_t events)
{
    const int watch =
        ::inotify_add_watch(descriptor(), path.constData(), events | IN_DONT_FOLLOW | IN_MASK_ADD);
    if (watch >= 0)
        m_watches[watch] |= events & IN_ALL_EVENTS;
    return watch;
}

bool SharedInotify::narrow(int watch, const QByteArray &path)
{
    const std::uint32_t events = wanted(watch);
    if (m_watches[watch] == events)
        return true;
    // The system knows a watch's folder by its path only.
    const int changed =
        ::inotify_add_watch(descriptor(), path.constData(), events | IN_DONT_FOLLOW);
    if (changed < 0)
        return false;
    m_watches[changed] = events;
    if (changed == watch)
        return true;
    // Something else is there by now. Whoever watches that still wants what they did.
    if (const std::uint32_t others = wanted(changed); others != 0)
        this->watch(path, others);
    release(changed);
    return false;
}

void SharedInotify::release(int watch)
{
    // A watch that is gone already cannot be removed, which is just as well.
    if (wanted(watch) == 0 && m_watches.erase(watch) > 0)
        ::inotify_rm_watch(descriptor(), watch);
}

void SharedInotify::read()
{
    alignas(inotify_event) std::array<std::byte, 16 * 1024> buffer;
    for (;;) {
        const ssize_t size = ::read(descriptor(), buffer.data(), buffer.size());
        if (size < 0 && errno == EINTR)
            continue;
        if (size <= 0)
            break;
        for (ssize_t offset = 0; offset < size;) {
            inotify_event event = {};
            std::memcpy(&event, buffer.data() + offset, sizeof event);
            const char *const name =
                reinterpret_cast<const char *>(buffer.data() + offset + sizeof event);
            dispatch(event.wd, event.mask, event.len > 0 ? name : "");
            offset += static_cast<ssize_t>(sizeof event + event.len);
        }
    }
    Q_EMIT told();
}

void SharedInotify::dispatch(int watch, std::uint32_t events, const char *entry)
{
    for (User *const user : m_users)
        user->note(watch, events, entry);
    if ((events & IN_IGNORED) != 0)
        m_watches.erase(watch);
}

void SharedInotify::readFromEventLoop()
{
    read();
    if (!areAllUsersWaiting())
        m_rest.start(kRest);
    updateNotifier();
}

void SharedInotify::updateNotifier()
{
    if (m_readable)
        m_readable->setEnabled(!m_rest.isActive() && !areAllUsersWaiting());
}

bool SharedInotify::areAllUsersWaiting() const
{
    return std::ranges::all_of(m_users, [](const User *user) { return user->hasEvents(); });
}

std::uint32_t SharedInotify::wanted(int watch) const
{
    std::uint32_t events = 0;
    for (const User *const user : m_users)
        events |= user->wanted(watch);
    return events & IN_ALL_EVENTS;
}
