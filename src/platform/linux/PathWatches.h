#pragma once

#include "platform/linux/SharedInotify.h"

#include <QByteArray>

#include <cstdint>
#include <memory>
#include <vector>

/// The inotify watches that follow one folder by its path: on what is in the folder, and on
/// whatever decides which folder the path leads to, links included. Nothing else wakes the program
/// up, except that the folder's parent (or, while the folder is missing, the last folder on the way
/// to it) also tells of other entries that come and go.
class PathWatches final : private SharedInotify::User {
public:
    /// path is absolute. An instance that is not open counts as one that has no watch left.
    PathWatches(std::shared_ptr<SharedInotify> inotify, const QByteArray &path);
    ~PathWatches();
    PathWatches(const PathWatches &) = delete;
    PathWatches &operator=(const PathWatches &) = delete;

    /// Follows the path anew. No event is lost by it.
    void place();

    /// The folder exists and is watched.
    bool hasFolder() const;
    /// The system had no watch left for a part of the path.
    bool isOutOfWatches() const { return m_isOutOfWatches; }
    /// The folder, or one on the way to it, may not be looked into: nothing tells when that ends.
    bool isClosed() const { return m_isClosed; }
    /// The last folder on the path that exists: the folder itself if that does.
    const QByteArray &lastFolder() const { return m_lastFolder; }

    struct Events {
        bool folder = false; ///< Something in the folder changed.
        bool path = false; ///< The path may lead elsewhere now: it is time to place() anew.
    };
    /// The instance has told something, which read() gives.
    bool hasEvents() const override { return m_events.folder || m_events.path; }
    /// What has happened since the last time.
    Events read();

private:
    enum class Role {
        Contents, ///< The folder.
        Itself, ///< A folder on the way, which may be moved or deleted.
        Link, ///< A symbolic link on the way.
        Entry, ///< One entry of a folder on the way.
    };
    struct Watch {
        int descriptor = -1;
        std::uint32_t events = 0;
        QByteArray path;
        Role role = Role::Contents;
        QByteArray entry;

        bool operator==(const Watch &) const = default;
    };
    enum class Added {
        Yes,
        NoWatchLeft,
        NotPossible,
    };

    std::uint32_t wanted(int descriptor) const override;
    void note(int descriptor, std::uint32_t events, const char *entry) override;
    void follow();
    Added add(const QByteArray &path, std::uint32_t events, Role role,
              const QByteArray &entry = {});
    bool narrow() const;

    QByteArray m_path;
    QByteArray m_lastFolder;
    std::shared_ptr<SharedInotify> m_inotify;
    std::vector<Watch> m_watches;
    bool m_isOutOfWatches = false;
    bool m_isClosed = false;
    Events m_events;
};
