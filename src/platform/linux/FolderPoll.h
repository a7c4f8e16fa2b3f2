#pragma once

#include <QByteArray>
#include <QTimer>

#include <sys/types.h>

#include <cstdint>
#include <functional>

/// Which folder a path leads to, and when its list of entries and its permissions changed last.
struct FolderState {
    bool exists = false;
    dev_t device = 0;
    ino_t inode = 0;
    /// Nanoseconds since 1970. Some file systems keep only the first; the second cannot be set
    /// back.
    std::int64_t modified = 0;
    std::int64_t changed = 0;

    static FolderState of(const QByteArray &path);

    bool isSameFolderAs(const FolderState &other) const;
    bool operator==(const FolderState &) const = default;
};

/// Looks once a second whether the folder at a path has changed, where nobody tells. Main thread.
class FolderPoll {
public:
    /// Whether the folder can be looked into, now or, if it is only missing, once it is there.
    static bool isPossible(const QByteArray &path);

    /// onChange is given the state before and after.
    FolderPoll(const QByteArray &path,
               std::function<void(const FolderState &, const FolderState &)> onChange);

private:
    void look();

    QByteArray m_path;
    std::function<void(const FolderState &, const FolderState &)> m_onChange;
    FolderState m_state;
    QTimer m_timer;
};
