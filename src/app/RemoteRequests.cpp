#include "app/RemoteRequests.h"

using namespace Qt::StringLiterals;

std::optional<RemoteRequests::Refusal> RemoteRequests::refusal(RemoteAction action,
                                                               const Situation &situation)
{
    const QString notValid = u"the settings are not valid"_s;
    switch (action) {
    case RemoteAction::StartMonitoring:
        if (situation.isMonitoring)
            return Refusal{.reason = u"already monitoring"_s};
        if (!situation.areSettingsValid())
            return Refusal{.reason = notValid, .asksForSettings = true};
        break;
    case RemoteAction::StopMonitoring:
        if (!situation.isMonitoring)
            return Refusal{.reason = u"not monitoring"_s};
        if (!situation.areSettingsValid())
            return Refusal{.reason = notValid};
        break;
    case RemoteAction::UploadClipboard:
    case RemoteAction::Settings:
    case RemoteAction::Quit:
        break;
    }
    return std::nullopt;
}
