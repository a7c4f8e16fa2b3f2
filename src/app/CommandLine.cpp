#include "app/CommandLine.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

// As the documentation of QGuiApplication and QApplication has them, with those of the X11 plugin.
constexpr std::array kToolkitOptionsWithValue = {
    "platform"_L1,        "platformpluginpath"_L1, "platformtheme"_L1, "plugin"_L1,
    "qwindowgeometry"_L1, "qwindowicon"_L1,        "qwindowtitle"_L1,  "session"_L1,
    "style"_L1,           "stylesheet"_L1,         "display"_L1,       "geometry"_L1,
};
constexpr std::array kToolkitSwitches = {
    "reverse"_L1, "widgetcount"_L1, "nograb"_L1, "dograb"_L1, "sync"_L1,
};

template <typename Options>
bool contains(const Options &options, QStringView name)
{
    return std::ranges::any_of(options, [name](QLatin1String option) { return name == option; });
}

/// Without its one or two leading hyphens, which are alike to the toolkit.
QStringView nameOf(QStringView option)
{
    return option.sliced(option.startsWith("--"_L1) ? 2 : 1);
}

CommandLine wrong(const QString &text)
{
    return {.kind = CommandLine::Kind::Mistake, .mistake = text};
}

/// The number of arguments, from this one on, that are the toolkit's.
qsizetype toolkitsOwn(const QString &argument)
{
    if (!argument.startsWith(u'-') || argument.size() < 2)
        return 0;
    const QStringView name = nameOf(argument);
    if (contains(kToolkitSwitches, name))
        return 1;
    const qsizetype equals = name.indexOf(u'=');
    if (equals >= 0)
        return contains(kToolkitOptionsWithValue, name.first(equals)) ? 1 : 0;
    return contains(kToolkitOptionsWithValue, name) ? 2 : 0;
}

} // namespace

CommandLine CommandLine::parse(const QStringList &arguments)
{
    CommandLine result;
    for (qsizetype at = 0; at < arguments.size(); ++at) {
        const QString &argument = arguments.at(at);
        if (const qsizetype count = toolkitsOwn(argument); count > 0) {
            at += count - 1;
            continue;
        }
        if (argument == u"--help"_s || argument == u"-h"_s)
            return {.kind = Kind::Help};
        if (argument == u"--version"_s || argument == u"-v"_s)
            return {.kind = Kind::Version};
        if (argument.startsWith(u'-'))
            return wrong(u"there is no option "_s + argument);
        const std::optional<RemoteAction> action = RemoteActions::named(argument);
        if (!action)
            return wrong(u"there is no action "_s + argument);
        if (result.action)
            return wrong(u"one action at a time"_s);
        result.action = action;
    }
    return result;
}

QString CommandLine::usage()
{
    return uR"(Usage: tessery [ACTION]

Starts Tessery. Where it runs already, it is shown instead, or does the action:

  upload-clipboard   upload what the clipboard holds
  start-monitoring   watch for new screenshots and upload them
  stop-monitoring    do so no longer
  settings           open the settings window
  quit               end Tessery

  -h, --help         show this text
  -v, --version      show the version
)"_s;
}
