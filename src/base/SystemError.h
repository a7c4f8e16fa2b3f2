#pragma once

#include <QString>

#include <exception>

/// A failure reported by the operating system, with a text fit for the user ("Could not write
/// /tmp/x: No space left on device").
class SystemError : public std::exception {
public:
    explicit SystemError(const QString &description);

    /// "{what}: {the text of errorNumber}".
    static SystemError fromErrno(const QString &what, int errorNumber);

    /// The system's own text for errorNumber.
    static QString textOf(int errorNumber);

    const QString &description() const { return m_description; }
    const char *what() const noexcept override { return m_utf8.constData(); }

private:
    QString m_description;
    QByteArray m_utf8;
};
