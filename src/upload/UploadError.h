#pragma once

#include <QByteArray>
#include <QString>

#include <exception>

/// Why a transfer failed, with the text that the user sees.
class UploadError : public std::exception {
public:
    enum class Kind {
        connectionFailed,
        uploadFailed,
        unsupportedProtocol,
        authenticationFailed,
        timeout,
    };

    static UploadError connectionFailed(const QString &message);
    static UploadError uploadFailed(const QString &message);
    static UploadError unsupportedProtocol();
    static UploadError authenticationFailed();
    static UploadError timeout();

    Kind kind() const { return m_kind; }
    /// Empty unless kind() is connectionFailed or uploadFailed.
    const QString &message() const { return m_message; }
    /// The same failure with another message, where its kind has one.
    UploadError withMessage(const QString &message) const;
    QString errorDescription() const;
    /// errorDescription() in UTF-8.
    const char *what() const noexcept override { return m_utf8.constData(); }

    bool operator==(const UploadError &other) const
    {
        return m_kind == other.m_kind && m_message == other.m_message;
    }

private:
    explicit UploadError(Kind kind, const QString &message = {});

    Kind m_kind;
    QString m_message;
    QByteArray m_utf8;
};
