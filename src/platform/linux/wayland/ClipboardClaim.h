#pragma once

#include "platform/linux/wayland/DataControlDevice.h"

#include <QCoro/QCoroTask>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

/// This program as the owner of the clipboard, until another one is. The clipboard is empty if it
/// ends before. Must not be destroyed by a listener. Main thread. Must outlive its tasks.
class ClipboardClaim {
public:
    /// device has not begun.
    explicit ClipboardClaim(std::unique_ptr<DataControlDevice> device);
    ClipboardClaim(const ClipboardClaim &) = delete;
    ClipboardClaim &operator=(const ClipboardClaim &) = delete;

    enum class Outcome {
        Held,
        NoAccess, ///< There is no clipboard that we may use, or no answer.
        NotConfirmed, ///< Nothing has come back.
        TakenOver, ///< Another program was just as quick.
    };

    /// Claims the clipboard with these types; onSend is called by a listener. Held only once the
    /// compositor has told of it as it tells every other program, and nobody else has followed. To
    /// be called once.
    [[nodiscard]] QCoro::Task<Outcome> take(QStringList types, DataControlSource::OnSend onSend);

    /// Whether the clipboard is ours, as far as was told.
    bool isHeld() const;

    /// Called by a listener, once take() has ended, when something has changed.
    void setChangeHandler(std::function<void()> onChange) { m_onChange = std::move(onChange); }

private:
    void changed();

    std::unique_ptr<DataControlDevice> m_device;
    std::unique_ptr<DataControlSource> m_source; ///< Destroyed before the connection.
    QString m_ownType; ///< One that nobody else offers, by which what comes back is known as ours.
    bool m_hasComeBack = false;
    std::function<void()> m_onChange;
};
