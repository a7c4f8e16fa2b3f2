#include "platform/linux/dbus/PortalRequest.h"

#include "platform/linux/dbus/PortalNames.h"
#include "platform/linux/dbus/BusCall.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1String kInterface("org.freedesktop.portal.Request");

/// Where a request of this caller appears, by the rules of the Request portal.
QString requestPath(const QDBusConnection &bus, const QString &token)
{
    QString caller = bus.baseService().mid(1);
    return u"/org/freedesktop/portal/desktop/request/"_s + caller.replace(u'.', u'_') + u'/'
        + token;
}

} // namespace

QString PortalRequest::Answer::path(const QString &name) const
{
    // Of the type string, by the portals' own rules; not all keep to them.
    const QVariant value = results.value(name);
    return value.canConvert<QDBusObjectPath>() ? value.value<QDBusObjectPath>().path()
                                               : value.toString();
}

PortalRequest::PortalRequest(const QDBusConnection &bus, QDBusMessage call, QVariantMap options,
                             OnAnswered onAnswered)
    : m_bus(bus), m_onAnswered(std::move(onAnswered))
{
    static quint64 count = 0;
    const QString token = u"tessery%1"_s.arg(++count);
    options.insert(u"handle_token"_s, token);
    // Before the call, since the answer may be there as soon as the call has returned.
    listenTo(requestPath(m_bus, token));
    call << options;
    whenAnswered<QDBusPendingReply<QDBusObjectPath>>(
        m_bus.asyncCall(call), this, [this](const QDBusPendingReply<QDBusObjectPath> &reply) {
            if (reply.isError())
                finish(std::nullopt, reply.error().message());
            else
                listenTo(reply.value().path()); // Old portals choose another.
        });
}

PortalRequest::~PortalRequest()
{
    if (!m_onAnswered)
        return;
    QDBusMessage message =
        QDBusMessage::createMethodCall(PortalNames::kService, m_path, kInterface, u"Close"_s);
    message.setAutoStartService(false); // A portal that is gone asks nobody anything.
    m_bus.send(message);
}

void PortalRequest::listenTo(const QString &path)
{
    if (std::exchange(m_path, path) == path)
        return;
    m_bus.connect(PortalNames::kService, path, kInterface, u"Response"_s, this,
                  SLOT(onResponse(uint, QVariantMap)));
}

void PortalRequest::onResponse(uint code, const QVariantMap &results)
{
    finish(Answer{code, results}, {});
}

void PortalRequest::finish(const std::optional<Answer> &answer, const QString &error)
{
    if (const OnAnswered onAnswered = std::exchange(m_onAnswered, nullptr))
        onAnswered(answer, error);
}
