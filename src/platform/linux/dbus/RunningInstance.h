#pragma once

#include "platform/RemoteAction.h"

#include <QDBusConnection>
#include <QString>
#include <QVariantMap>

#include <chrono>
#include <optional>

/// The program as it runs already in this session, asked by a further start of it.
namespace RunningInstance {

enum class Answer {
    Done,
    NotThere, ///< None runs, or it ended before it answered.
    Silent, ///< It has not answered within the limit.
    Refused, ///< It answers, but not as this program does.
};

/// Asks it to perform the action, or to show itself, and waits for its answer. Never starts it.
/// problem, if given, says what the bus has told of a failure.
Answer ask(const QDBusConnection &bus, std::optional<RemoteAction> action,
           const QVariantMap &platformData, std::chrono::milliseconds limit,
           QString *problem = nullptr);

} // namespace RunningInstance
