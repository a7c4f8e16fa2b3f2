#pragma once

#include "platform/RemoteAction.h"

#include <QString>

#include <functional>

class QWindow;

/// What reaches the running program from outside, and its windows that answer. An activation token
/// is what the desktop gives to the person's deed that is behind a request, so that a window may
/// come to the front; it may be empty. Main thread. Not available: nothing is asked.
class RemoteControl {
public:
    struct Handlers {
        /// The program was started once more.
        std::function<void(const QString &activationToken)> activate;
        std::function<void(RemoteAction action, const QString &activationToken)> perform;
    };

    virtual ~RemoteControl() = default;
    RemoteControl() = default;
    RemoteControl(const RemoteControl &) = delete;
    RemoteControl &operator=(const RemoteControl &) = delete;

    /// Requests reach these from now on, from the event loop; first those that have come before.
    virtual void setHandlers(Handlers handlers) = 0;

    /// The program is about to end: nothing reaches the handlers any more, and who asks something
    /// has to wait until the program has gone.
    virtual void close() = 0;

    /// Calls show, which is to show window and to ask for the keyboard, so that the desktop lets
    /// the window come to the front. The window may be visible already.
    virtual void bringToFront(QWindow &window, const QString &activationToken,
                              const std::function<void()> &show) = 0;
};
