#include "upload/UploadError.h"

using namespace Qt::StringLiterals;

UploadError::UploadError(Kind kind, const QString &message)
    : m_kind(kind), m_message(message), m_utf8(errorDescription().toUtf8())
{
}

UploadError UploadError::connectionFailed(const QString &message)
{
    return UploadError(Kind::connectionFailed, message);
}

UploadError UploadError::uploadFailed(const QString &message)
{
    return UploadError(Kind::uploadFailed, message);
}

UploadError UploadError::unsupportedProtocol()
{
    return UploadError(Kind::unsupportedProtocol);
}

UploadError UploadError::authenticationFailed()
{
    return UploadError(Kind::authenticationFailed);
}

UploadError UploadError::timeout()
{
    return UploadError(Kind::timeout);
}

UploadError UploadError::withMessage(const QString &message) const
{
    return m_message.isEmpty() ? *this : UploadError(m_kind, message);
}

QString UploadError::errorDescription() const
{
    switch (m_kind) {
    case Kind::connectionFailed:
        return u"Connection failed: "_s + m_message;
    case Kind::uploadFailed:
        return u"Upload failed: "_s + m_message;
    case Kind::unsupportedProtocol:
        return u"Unsupported protocol"_s;
    case Kind::authenticationFailed:
        return u"Authentication failed"_s;
    case Kind::timeout:
        return u"Connection timed out"_s;
    }
    Q_UNREACHABLE();
}
