#include "base/TemporaryFile.h"

#include "base/WholeFile.h"

#include <QFile>

#include <unistd.h>

TemporaryFile::TemporaryFile(const QString &path, const QByteArray &contents, Mode mode)
    : m_path(path), m_mode(mode)
{
    WholeFile::create(path, contents, static_cast<mode_t>(mode));
}

void TemporaryFile::replaceContents(const QByteArray &contents)
{
    // What goes with the program need not wait for the disk.
    WholeFile::replace(m_path, contents, static_cast<mode_t>(m_mode), WholeFile::Outlives::Program);
}

TemporaryFile::~TemporaryFile()
{
    ::unlink(QFile::encodeName(m_path).constData());
}
