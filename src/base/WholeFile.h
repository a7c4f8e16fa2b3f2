#pragma once

#include <QByteArray>
#include <QString>

#include <sys/types.h>

/// Writing files whole. Nobody whom the mode forbids to open such a file could do so at any
/// instant. Each function throws SystemError, and leaves everything as it was, if it cannot do what
/// it is for.
namespace WholeFile {

/// Makes a new file at path. It is an error if something is there already, be it a link.
void create(const QString &path, const QByteArray &contents, mode_t mode);

/// What a file must outlive.
enum class Outlives {
    Program, ///< It goes to the disk when the system finds time for it.
    PowerCut, ///< It is on the disk before it has its name.
};

/// Puts a new file in the place of whatever file or link is at path, where there is the old one or
/// the new one at any instant; whoever has the old one open still reads that. What a crash leaves
/// behind, path and ".new", goes with the next replacement.
void replace(const QString &path, const QByteArray &contents, mode_t mode, Outlives outlives);

} // namespace WholeFile
