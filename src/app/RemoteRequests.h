#pragma once

#include "platform/RemoteAction.h"

#include <QString>

#include <optional>

/// Whether what is asked from outside is done: what the menu would not offer is not.
namespace RemoteRequests {

/// What the answer depends on.
struct Situation {
    bool areSettingsValid = false;
    bool isMonitoring = false;
};

/// Why the action is not done. Absent if it is.
std::optional<QString> refusal(RemoteAction action, const Situation &situation);

} // namespace RemoteRequests
