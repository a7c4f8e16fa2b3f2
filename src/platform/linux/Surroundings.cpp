#include "platform/linux/Surroundings.h"

#include "platform/linux/wayland/DataControlProtocol.h"
#include "platform/linux/wayland/WaylandConnection.h"
#include "platform/linux/wayland/WaylandGlobals.h"

#include <QDir>
#include <QFile>
#include <QLibraryInfo>

#include <xcb/xcb.h>

#include <algorithm>
#include <chrono>
#include <span>
#include <string_view>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// Compositors are busy while a session starts. The toolkit would wait for ever.
constexpr auto kPatienceWithCompositor = 10s;

/// Whether the toolkit will take the window system from the user, by the rules of QGuiApplication.
bool isSetByUser(std::span<char *> arguments)
{
    return !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")
        || std::any_of(arguments.begin(), arguments.end(), [](std::string_view argument) {
               return argument == "-platform" || argument == "--platform";
           });
}

bool canConnectToXDisplay()
{
    // Never null; a connection that could not be made is one in which an error has occurred.
    xcb_connection_t *const connection = xcb_connect(nullptr, nullptr);
    const bool isUsable = xcb_connection_has_error(connection) == 0;
    xcb_disconnect(connection);
    return isUsable;
}

/// Whether one of the folders in which the toolkit looks for its plugins has the one for Wayland,
/// of which there are several kinds.
bool hasWaylandPluginInstalled()
{
    QStringList folders =
        qEnvironmentVariable("QT_PLUGIN_PATH").split(QDir::listSeparator(), Qt::SkipEmptyParts);
    folders << QLibraryInfo::path(QLibraryInfo::PluginsPath);
    return std::any_of(folders.cbegin(), folders.cend(), [](const QString &folder) {
        return !QDir(folder + u"/platforms"_s)
                    .entryList({u"libqwayland*.so"_s}, QDir::Files, QDir::Unsorted)
                    .isEmpty();
    });
}

} // namespace

Surroundings Surroundings::look(int argc, char **argv)
{
    Surroundings found;
    found.isWindowSystemSet = isSetByUser({argv, static_cast<std::size_t>(argc)});
    found.hasXDisplay = canConnectToXDisplay;
    const std::unique_ptr<WaylandConnection> connection = WaylandConnection::open();
    if (!connection)
        return found;
    found.isWaylandSession = true;
    const WaylandGlobals globals(connection->get());
    connection->waitForSync(kPatienceWithCompositor); // Unanswered, it offers nothing.
    found.offersDataControl = DataControlProtocol::offeredBy(globals) != nullptr;
    found.hasWaylandPlugin = hasWaylandPluginInstalled();
    return found;
}
