#pragma once

#include "base/UniqueFd.h"

#include <QString>

/// The private folder of this process for the files that it makes for itself: mode 0700, under the
/// user's runtime folder if programs may be started from there (the expect script is one), else
/// under the temporary folder. Removed with all that is in it when destroyed. Making it also
/// removes what crashed runs left behind; a live run keeps its folder locked.
class TemporaryFolder {
public:
    /// Throws SystemError if no folder can be made anywhere.
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;

    /// Absolute, without a slash at the end.
    const QString &path() const { return m_path; }

    /// True unless programs in folder cannot be started because of how its file system is mounted.
    /// False for a folder that is not there.
    static bool allowsExecution(const QString &folder);

private:
    QString m_path;
    UniqueFd m_lock;
};
