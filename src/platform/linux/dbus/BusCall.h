#pragma once

#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <utility>

class QDBusConnection;
class QDBusMessage;

/// Sends the call, whose answer comes from the event loop: an error, too, if there is no bus. The
/// toolkit's own call would then never be answered.
[[nodiscard]] QDBusPendingCall callBus(const QDBusConnection &bus, const QDBusMessage &call);

/// Calls done with the answer to a call on the bus, as a Reply (a QDBusPendingReply), once, from
/// the event loop; never once the context is gone, which done may destroy.
template <typename Reply = QDBusPendingReply<>, typename Done>
void whenAnswered(const QDBusPendingCall &call, QObject *context, Done done)
{
    auto *const watcher = new QDBusPendingCallWatcher(call, context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context,
                     [watcher, done = std::move(done)] {
                         watcher->setParent(nullptr); // So that it outlives its own signal.
                         watcher->deleteLater();
                         const Reply reply = *watcher;
                         done(reply);
                     });
}

/// Waits until the bus has all that was sent to it so far: the toolkit sends from a thread of its
/// own, which drops what is left when the program ends. Takes one round trip to the bus, two
/// seconds if it hangs.
void flushBus(const QDBusConnection &bus);
