#include "platform/linux/DesktopSystemSettings.h"

#include "platform/linux/UrlHandlers.h"

#include <QDir>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

struct DesktopCommand {
    QString desktop;
    QStringList command;
};

const std::vector<DesktopCommand> &desktopCommands()
{
    static const std::vector<DesktopCommand> all = {
        // What each application may do, notifications among it.
        {u"GNOME"_s, {u"gnome-control-center"_s, u"applications"_s}},
        {u"KDE"_s, {u"systemsettings"_s}},
        {u"KDE"_s, {u"systemsettings5"_s}},
        {u"KDE"_s, {u"kcmshell5"_s, u"kcm_notifications"_s}},
        {u"XFCE"_s, {u"xfce4-settings-manager"_s}},
        {u"LXQt"_s, {u"lxqt-config"_s}},
        {u"X-Cinnamon"_s, {u"cinnamon-settings"_s, u"privacy"_s}},
        {u"Cinnamon"_s, {u"cinnamon-settings"_s, u"privacy"_s}},
        {u"MATE"_s, {u"mate-control-center"_s}},
    };
    return all;
}

/// Starts the command so that it lives on without us. Waits only until the system has it running.
bool startDetached(const QStringList &command)
{
    const QString program = QStandardPaths::findExecutable(command.first());
    if (program.isEmpty())
        return false;
    QProcess process;
    process.setProgram(program);
    process.setArguments(command.mid(1));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // These speak of our own start, not of the other program's.
    environment.remove(u"DESKTOP_STARTUP_ID"_s);
    environment.remove(u"XDG_ACTIVATION_TOKEN"_s);
    environment.remove(u"DESKTOP_AUTOSTART_ID"_s);
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(QDir::homePath());
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    return process.startDetached();
}

} // namespace

std::vector<QStringList> privacySettingsCommands(const QString &currentDesktop)
{
    std::vector<QStringList> commands;
    for (const QString &desktop : currentDesktop.split(u':', Qt::SkipEmptyParts)) {
        for (const DesktopCommand &entry : desktopCommands()) {
            if (entry.desktop.compare(desktop, Qt::CaseInsensitive) == 0)
                commands.push_back(entry.command);
        }
    }
    return commands;
}

bool DesktopSystemSettings::openPrivacySettings(const QString &address)
{
    const auto commands = privacySettingsCommands(qEnvironmentVariable("XDG_CURRENT_DESKTOP"));
    if (std::any_of(commands.cbegin(), commands.cend(), startDetached))
        return true;
    return hasUrlHandler(QUrl(address).scheme()) && startDetached({u"xdg-open"_s, address});
}
