#include "platform/linux/dbus/BusCall.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>

using namespace Qt::StringLiterals;

namespace {

/// How long the bus may take for its answer when it is flushed.
constexpr int kFlushLimitMilliseconds = 2000;

} // namespace

QDBusPendingCall callBus(const QDBusConnection &bus, const QDBusMessage &call)
{
    if (!bus.isConnected())
        return QDBusPendingCall::fromError(
            QDBusError(QDBusError::Disconnected, u"There is no session bus"_s));
    return bus.asyncCall(call);
}

void flushBus(const QDBusConnection &bus)
{
    // Messages stay in order: once the bus has answered, it has everything before the question.
    bus.call(QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                            u"org.freedesktop.DBus"_s, u"GetId"_s),
             QDBus::Block, kFlushLimitMilliseconds);
}
