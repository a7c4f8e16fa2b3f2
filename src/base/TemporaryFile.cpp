#include "base/TemporaryFile.h"

#include "base/WholeFile.h"

#include <QFile>

#include <unistd.h>

// What goes with the program need not wait for the disk.
using WholeFile::Outlives;

TemporaryFile::TemporaryFile(const QString &path, const QByteArray &contents, Mode mode)
    : m_path(path), m_mode(mode)
{
    WholeFile::create(path, contents, static_cast<mode_t>(mode), Outlives::Program);
}

void TemporaryFile::replaceContents(const QByteArray &contents)
{
    WholeFile::replace(m_path, contents, static_cast<mode_t>(m_mode), Outlives::Program);
}

TemporaryFile::~TemporaryFile()
{
    ::unlink(QFile::encodeName(m_path).constData());
}
