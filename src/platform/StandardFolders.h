#pragma once

#include <QString>
#include <QStringList>

/// The folders that the desktop gives every user. Absolute paths without a slash at the end.
class StandardFolders {
public:
    virtual ~StandardFolders() = default;
    StandardFolders() = default;
    StandardFolders(const StandardFolders &) = delete;
    StandardFolders &operator=(const StandardFolders &) = delete;

    /// The user's home folder.
    virtual QString home() const = 0;

    /// The user's desktop folder as the desktop has it configured; need not exist.
    virtual QString desktop() const = 0;

    /// The folders of its own into which the desktop's tools write screenshots, as far as they
    /// exist now; may be empty. Some may be the same folder by another name, and the desktop folder
    /// may be among them.
    virtual QStringList screenshots() const = 0;
};
