#pragma once

#include <QDBusPendingCall>

class QDBusConnection;
class QDBusMessage;

/// Sends the call, whose answer comes from the event loop: an error, too, if there is no bus. The
/// toolkit's own call would then never be answered.
[[nodiscard]] QDBusPendingCall callBus(const QDBusConnection &bus, const QDBusMessage &call);
