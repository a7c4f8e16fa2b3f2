#pragma once

#include "base/UniqueFd.h"

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

/// One inotify instance for all folders that are watched, since a person's programs may have only a
/// few together. The same file or folder is one watch for all its users. Main thread.
///
/// It is read from the event loop, at most ten times a second, and not at all while every user has
/// events that it has not taken yet: a busy folder does not keep the program awake.
class SharedInotify : public QObject {
    Q_OBJECT

public:
    /// Whoever has watches.
    class User {
    public:
        /// Which events of the watch it wants; 0 for none.
        virtual std::uint32_t wanted(int watch) const = 0;
        /// A watch tells something, be it wanted or not; entry may be empty. With IN_Q_OVERFLOW,
        /// events of any watch have been lost.
        virtual void note(int watch, std::uint32_t events, const char *entry) = 0;
        /// It has noted events that it wants, and will take them later.
        virtual bool hasEvents() const = 0;

    protected:
        ~User() = default;
    };

    SharedInotify();

    /// False if the system gives no instance; then there are no watches.
    bool isOpen() const { return m_inotify.isOpen(); }

    /// Readable when there is something to read().
    int descriptor() const { return m_inotify.get(); }

    /// Tells user from now on, until removeUser().
    void addUser(User *user);
    void removeUser(User *user);

    /// Watches what is at path, itself if it is a link, for more events than it may be watched for
    /// already. Gives the watch, or -1 and errno.
    int watch(const QByteArray &path, std::uint32_t events);
    /// Ends events that no user wants any more of a watch that somebody wants, on what is at path.
    /// False if something else is at path by now; then the path must be followed anew.
    bool narrow(int watch, const QByteArray &path);
    /// Ends the watch if no user wants it.
    void release(int watch);

    /// Tells the users of what has happened since the last time.
    void read();
    /// A user has taken its events.
    void eventsTaken() { updateNotifier(); }

Q_SIGNALS:
    /// The users have been told.
    void told();

private:
    void readFromEventLoop();
    void updateNotifier();
    void dispatch(int watch, std::uint32_t events, const char *entry);
    bool areAllUsersWaiting() const;
    std::uint32_t wanted(int watch) const;

    UniqueFd m_inotify;
    std::unique_ptr<QSocketNotifier> m_readable; ///< Null without an instance.
    QTimer m_rest;
    std::vector<User *> m_users;
    std::unordered_map<int, std::uint32_t> m_watches; ///< With the events that are told.
};
