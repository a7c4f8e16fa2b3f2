#pragma once

#include <QByteArray>
#include <QString>

/// A file that the program makes for itself, with its final mode from its first instant, removed
/// when destroyed.
class TemporaryFile {
public:
    /// Access of the owner; nobody else ever has any.
    enum class Mode {
        ReadWrite = 0600,
        ReadWriteExecute = 0700,
    };

    /// Makes a new file at path with the whole of contents. Throws SystemError, and leaves no file,
    /// if that is impossible or if something is there already.
    TemporaryFile(const QString &path, const QByteArray &contents, Mode mode = Mode::ReadWrite);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;

    /// Puts other contents in the file's place; whoever has it open still reads the old ones.
    /// Throws SystemError, and leaves the file as it was, if that is impossible.
    void replaceContents(const QByteArray &contents);

    const QString &path() const { return m_path; }

private:
    QString m_path;
    Mode m_mode;
};
