#include "app/RemoteRequests.h"

using namespace Qt::StringLiterals;

std::optional<QString> RemoteRequests::refusal(RemoteAction action, const Situation &situation)
{
    switch (action) {
    case RemoteAction::StartMonitoring:
        if (situation.isMonitoring)
            return u"already monitoring"_s;
        break;
    case RemoteAction::StopMonitoring:
        if (!situation.isMonitoring)
            return u"not monitoring"_s;
        break;
    case RemoteAction::UploadClipboard:
        break;
    case RemoteAction::Settings:
    case RemoteAction::Quit:
        return std::nullopt;
    }
    return situation.areSettingsValid ? std::nullopt
                                      : std::optional(u"the settings are not valid"_s);
}
