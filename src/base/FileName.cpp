#include "base/FileName.h"

namespace {

/// Where the dot before the extension stands, or -1.
qsizetype extensionDot(const QString &name)
{
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot > 0 && dot < name.size() - 1 ? dot : -1;
}

} // namespace

QString FileName::pathOf(const QUrl &fileURL)
{
    return fileURL.isLocalFile() ? fileURL.toLocalFile() : fileURL.path(QUrl::FullyDecoded);
}

QString FileName::lastPathComponent(const QString &path)
{
    qsizetype end = path.size();
    while (end > 1 && path.at(end - 1) == u'/')
        --end;
    const QString trimmed = path.left(end);
    return trimmed.mid(trimmed.lastIndexOf(u'/', -2) + 1);
}

QString FileName::pathExtension(const QString &path)
{
    const QString name = lastPathComponent(path);
    const qsizetype dot = extensionDot(name);
    return dot < 0 ? QString() : name.mid(dot + 1);
}

QString FileName::deletingPathExtension(const QString &name)
{
    const qsizetype dot = extensionDot(name);
    return dot < 0 ? name : name.left(dot);
}
