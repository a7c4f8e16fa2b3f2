#include "platform/linux/QtAppInfo.h"

#include <QCoreApplication>

namespace {

std::optional<QString> unlessEmpty(const QString &text)
{
    return text.isEmpty() ? std::nullopt : std::optional(text);
}

} // namespace

QtAppInfo::QtAppInfo(const QString &build) : m_build(build)
{
}

std::optional<QString> QtAppInfo::version() const
{
    return unlessEmpty(QCoreApplication::applicationVersion());
}

std::optional<QString> QtAppInfo::build() const
{
    return unlessEmpty(m_build);
}
