#include "platform/RemoteAction.h"

#include <algorithm>

const std::vector<RemoteAction> &RemoteActions::all()
{
    static const std::vector<RemoteAction> actions = {
        RemoteAction::UploadClipboard, RemoteAction::StartMonitoring, RemoteAction::StopMonitoring,
        RemoteAction::Settings, RemoteAction::Quit};
    return actions;
}

QLatin1String RemoteActions::nameOf(RemoteAction action)
{
    switch (action) {
    case RemoteAction::UploadClipboard:
        return QLatin1String("upload-clipboard");
    case RemoteAction::StartMonitoring:
        return QLatin1String("start-monitoring");
    case RemoteAction::StopMonitoring:
        return QLatin1String("stop-monitoring");
    case RemoteAction::Settings:
        return QLatin1String("settings");
    case RemoteAction::Quit:
        return QLatin1String("quit");
    }
    Q_UNREACHABLE();
}

std::optional<RemoteAction> RemoteActions::named(QStringView name)
{
    const auto found =
        std::ranges::find_if(all(), [name](RemoteAction action) { return nameOf(action) == name; });
    return found == all().end() ? std::nullopt : std::optional(*found);
}
