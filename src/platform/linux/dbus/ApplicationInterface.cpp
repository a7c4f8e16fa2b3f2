#include "platform/linux/dbus/ApplicationInterface.h"

#include "base/Log.h"
#include "platform/linux/dbus/StartEnvironment.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// A name that anybody may have made up, fit for one line of the log.
QString loggable(const QString &name)
{
    constexpr qsizetype kLongest = 64;
    QString text = name.left(kLongest);
    std::ranges::replace_if(
        text, [](QChar character) { return !character.isPrint(); }, QChar(u'?'));
    return text;
}

void refuse(const QDBusMessage &message, QDBusError::ErrorType type, const QString &text)
{
    message.setDelayedReply(true);
    QDBusConnection::sessionBus().send(message.createErrorReply(type, text));
}

} // namespace

ApplicationInterface::ApplicationInterface(QObject *object, OnRequest onRequest)
    : QDBusAbstractAdaptor(object), m_onRequest(std::move(onRequest))
{
}

void ApplicationInterface::Activate(const QVariantMap &platformData, const QDBusMessage &message)
{
    if (m_isClosed)
        message.setDelayedReply(true);
    else
        m_onRequest(std::nullopt, StartEnvironment::tokenIn(platformData));
}

void ApplicationInterface::Open(const QStringList &, const QVariantMap &,
                                const QDBusMessage &message)
{
    refuse(message, QDBusError::NotSupported, u"Tessery opens no files"_s);
}

void ApplicationInterface::ActivateAction(const QString &actionName, const QVariantList &,
                                          const QVariantMap &platformData,
                                          const QDBusMessage &message)
{
    const std::optional<RemoteAction> action = RemoteActions::named(actionName);
    if (m_isClosed) {
        message.setDelayedReply(true);
    } else if (action) {
        m_onRequest(action, StartEnvironment::tokenIn(platformData));
    } else {
        Log::line(u"⚠️ Unknown action: "_s + loggable(actionName));
        refuse(message, QDBusError::InvalidArgs, u"There is no action of this name"_s);
    }
}
