#pragma once

#include <functional>

/// What there is to show windows with and to share a clipboard through, and what the user has said
/// about it.
struct Surroundings {
    /// The user has named the window system, on the command line or in the environment.
    bool isWindowSystemSet = false;
    /// A Wayland compositor is there. An X display beside it then is only for the X programs' own
    /// windows: its keys and its clipboard are not the session's.
    bool isWaylandSession = false;
    /// The compositor shares its clipboard with programs that have no window.
    bool offersDataControl = false;
    /// The toolkit can show windows on Wayland.
    bool hasWaylandPlugin = false;
    /// Whether an X display can be used. Connects to it, which may make a compositor start one. May
    /// be empty: none.
    std::function<bool()> hasXDisplay;

    /// Looks around, with the arguments of main(). To be called before the application is made.
    /// Keeps nothing open. A compositor that does not answer costs ten seconds.
    static Surroundings look(int argc, char **argv);
};
