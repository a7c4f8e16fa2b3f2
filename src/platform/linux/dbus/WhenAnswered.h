#pragma once

#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <utility>

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
