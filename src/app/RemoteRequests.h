#pragma once

#include "platform/RemoteAction.h"

#include <QString>

#include <functional>
#include <optional>

/// Whether what is asked from outside is done. Monitoring is what the menu makes of it: what that
/// would not offer is not done. The upload, like that of the shortcut, tells itself what it misses.
namespace RemoteRequests {

/// What the answer depends on.
struct Situation {
    std::function<bool()> areSettingsValid; ///< Asked only if it matters: it asks the keyring.
    bool isMonitoring = false;
};

/// Why an action is not done.
struct Refusal {
    QString reason; ///< For the log.
    bool asksForSettings = false; ///< Whether the user is told to complete the settings.
};

/// Absent if the action is done.
std::optional<Refusal> refusal(RemoteAction action, const Situation &situation);

} // namespace RemoteRequests
