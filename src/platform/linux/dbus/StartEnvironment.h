#pragma once

#include <QString>
#include <QVariantMap>

/// What the one who started this process has put into its environment, for this process alone.
struct StartEnvironment {
    QString activationToken = {}; ///< Lets a window come to the front on Wayland; may be empty.
    QString startupId = {}; ///< The same on X11, where the desktop shows that something starts.
    bool isStartedByBus = false; ///< The message bus is about to deliver why.

    /// Takes it out of the environment, so that no child gets it. To be called first of all, while
    /// there is one thread.
    static StartEnvironment take();

    /// As another program of the org.freedesktop.Application protocol is told of it.
    QVariantMap platformData() const;

    /// The token in such data, of either kind; may be empty.
    static QString tokenIn(const QVariantMap &platformData);
};
