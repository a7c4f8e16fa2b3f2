#pragma once

#include "base/UniqueFd.h"

#include <QByteArray>

#include <cstdint>
#include <vector>

/// The inotify watches that follow one folder by its path: on what is in the folder, and on
/// whatever decides which folder the path leads to, links included. Nothing else wakes the program
/// up, except that the folder's parent (or, while the folder is missing, the last folder on the way
/// to it) also tells of other entries that come and go.
class PathWatches {
public:
    /// path is absolute.
    explicit PathWatches(const QByteArray &path);

    /// False if the system gives no inotify instance; then nothing else may be called.
    bool isOpen() const { return m_inotify.isOpen(); }

    /// Readable when there is something to read().
    int descriptor() const { return m_inotify.get(); }

    /// Follows the path anew.
    void place();

    /// The folder exists and is watched.
    bool hasFolder() const;
    /// The system had no watch left for a part of the path.
    bool isOutOfWatches() const { return m_isOutOfWatches; }
    /// The last folder on the path that exists: the folder itself if that does.
    const QByteArray &lastFolder() const { return m_lastFolder; }

    struct Events {
        bool folder = false; ///< Something in the folder changed.
        bool path = false; ///< The path may lead elsewhere now: it is time to place() anew.
    };
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
        Role role = Role::Contents;
        QByteArray entry;

        bool operator==(const Watch &) const = default;
    };
    enum class Added {
        Yes,
        NoWatchLeft,
        NotPossible,
    };

    void follow();
    Added add(const QByteArray &path, std::uint32_t mask, Role role, const QByteArray &entry = {});
    void removeAll();
    void note(int descriptor, std::uint32_t mask, const char *entry, Events &events) const;

    QByteArray m_path;
    QByteArray m_lastFolder;
    UniqueFd m_inotify;
    std::vector<Watch> m_watches;
    bool m_isOutOfWatches = false;
};
