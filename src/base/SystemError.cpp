#include "base/SystemError.h"

#include <system_error>

SystemError::SystemError(const QString &description)
    : m_description(description), m_utf8(description.toUtf8())
{
}

SystemError SystemError::fromErrno(const QString &what, int errorNumber)
{
    return SystemError(what + QLatin1String(": ") + textOf(errorNumber));
}

QString SystemError::textOf(int errorNumber)
{
    return QString::fromStdString(std::generic_category().message(errorNumber));
}
