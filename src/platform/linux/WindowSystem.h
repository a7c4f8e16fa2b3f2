#pragma once

#include "platform/linux/Surroundings.h"

#include <QByteArray>

#include <vector>

/// The window system of this run: made before the application object, which gets its arguments from
/// here, and kept for as long.
class WindowSystem {
public:
    /// Looks around and chooses, with the arguments of main(), which must outlive this. Logs the
    /// choice where there was one.
    WindowSystem(int argc, char **argv);
    WindowSystem(const WindowSystem &) = delete;
    WindowSystem &operator=(const WindowSystem &) = delete;

    const Surroundings &surroundings() const { return m_surroundings; }

    /// The arguments for the application: those of main(), and the choice. (In the environment
    /// every program that we start would find it, too.)
    int &argumentCount() { return m_argumentCount; }
    char **arguments() { return m_arguments.data(); }

private:
    Surroundings m_surroundings;
    QByteArray m_option = "-platform";
    QByteArray m_platform;
    std::vector<char *> m_arguments; ///< With a null pointer at the end.
    int m_argumentCount = 0;
};
