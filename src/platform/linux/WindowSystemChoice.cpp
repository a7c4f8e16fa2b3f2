#include "platform/linux/WindowSystemChoice.h"

using namespace Qt::StringLiterals;

WindowSystemChoice chooseWindowSystem(const Surroundings &surroundings)
{
    if (!surroundings.isWaylandSession)
        return {};
    if (surroundings.isWindowSystemSet)
        return {.platform = {}, .reason = u"as the user has set it"_s};
    if (surroundings.offersDataControl && surroundings.hasWaylandPlugin)
        return {.platform = "wayland;xcb",
                .reason = u"Wayland, whose compositor shares its clipboard"_s};
    if (!surroundings.hasXDisplay || !surroundings.hasXDisplay()) {
        return {
            .platform = {},
            .reason = surroundings.offersDataControl
                ? u"the toolkit's choice, it has no plugin for Wayland and there is no X display"_s
                : u"the toolkit's choice, the compositor does not share its clipboard and "
                  "there is no X display"_s};
    }
    if (surroundings.offersDataControl)
        return {.platform = "xcb", .reason = u"X11, the toolkit has no plugin for Wayland"_s};
    return {.platform = "xcb;wayland",
            .reason = u"X11, the Wayland compositor does not share its clipboard"_s};
}
