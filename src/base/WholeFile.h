#pragma once

#include <QByteArray>
#include <QString>

#include <sys/types.h>

/// Files that are there whole or not at all, with their final mode, whatever the umask, from their
/// first instant. Each function throws SystemError, and leaves everything as it was, if it cannot
/// do what it is for.
namespace WholeFile {

/// What a file must outlive.
enum class Outlives {
    Program, ///< It never goes to the disk unless the system finds time for it.
    PowerCut, ///< It is on the disk before it has its name.
};

/// Makes a new file at path. It is an error if something is there already, be it a link.
void create(const QString &path, const QByteArray &contents, mode_t mode, Outlives outlives);

/// Puts a new file in the place of whatever file or link is at path; whoever has the old one open
/// still reads that. What a crash leaves behind, path and ".new", goes with the next replacement.
void replace(const QString &path, const QByteArray &contents, mode_t mode, Outlives outlives);

} // namespace WholeFile
