#pragma once

#include <QString>
#include <QUrl>

/// The parts of a file's name. A name's extension is what follows its last dot; a name that only
/// begins with a dot (".profile") or ends with one ("a.") has none.
namespace FileName {

/// The path of the file at fileURL. What is no local file has its path on wherever it is, which is
/// good for its name only.
QString pathOf(const QUrl &fileURL);

/// The part of path after its last slash ("/a/b.png" and "/a/b.png/" give "b.png").
QString lastPathComponent(const QString &path);

/// The extension of path's last component, without the dot; empty when there is none.
QString pathExtension(const QString &path);

/// name without its extension and the dot before it.
QString deletingPathExtension(const QString &name);

} // namespace FileName
