#include "platform/linux/dbus/BusCall.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>

using namespace Qt::StringLiterals;

QDBusPendingCall callBus(const QDBusConnection &bus, const QDBusMessage &call)
{
    if (!bus.isConnected())
        return QDBusPendingCall::fromError(
            QDBusError(QDBusError::Disconnected, u"There is no session bus"_s));
    return bus.asyncCall(call);
}
