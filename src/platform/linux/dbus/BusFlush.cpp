#include "platform/linux/dbus/BusFlush.h"

#include <QDBusConnection>
#include <QDBusMessage>

using namespace Qt::StringLiterals;

namespace {

/// How long the bus may take for its answer.
constexpr int kLimitMilliseconds = 2000;

} // namespace

void flushBus(const QDBusConnection &bus)
{
    // Messages stay in order: once the bus has answered, it has everything before the question.
    bus.call(QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                            u"org.freedesktop.DBus"_s, u"GetId"_s),
             QDBus::Block, kLimitMilliseconds);
}
