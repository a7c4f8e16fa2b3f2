#pragma once

#include "platform/linux/Surroundings.h"

#include <QByteArray>
#include <QString>

/// The window system to run on.
struct WindowSystemChoice {
    /// The toolkit's name for it, with the one to fall back on behind it where there is one; empty:
    /// what the user has set, or else what the toolkit chooses.
    QByteArray platform;
    /// Why, for the log; empty where there was nothing to choose.
    QString reason;
};

/// Chooses so that the clipboard works, without a window and without the keyboard: Wayland where
/// the compositor shares its clipboard with such programs, else the X display, whose clipboard the
/// compositor keeps in step with its own. Never against what the user has set.
WindowSystemChoice chooseWindowSystem(const Surroundings &surroundings);
