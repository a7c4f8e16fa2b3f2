#pragma once

#include <QLatin1String>
#include <QStringView>

#include <optional>
#include <vector>

/// What the running program can be asked to do from outside: by a further start of it, by an entry
/// of a desktop's launcher, by a key that the user has bound.
enum class RemoteAction {
    UploadClipboard,
    StartMonitoring,
    StopMonitoring,
    Settings,
    Quit,
};

namespace RemoteActions {

/// All of them.
const std::vector<RemoteAction> &all();

/// The name that the outside uses, such as "upload-clipboard".
QLatin1String nameOf(RemoteAction action);

/// The action of that name. Absent if there is none.
std::optional<RemoteAction> named(QStringView name);

} // namespace RemoteActions
