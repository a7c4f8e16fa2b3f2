#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

#include <chrono>

/// The server's password in the keychain, as the window edits it: what was typed last is what is
/// stored. Keystrokes are gathered for a moment, and nothing is lost when this is destroyed. Asks
/// the keychain only when it must, since asking may take up to two seconds. Main thread.
class StoredPassword : public QObject {
    Q_OBJECT

public:
    /// Longer than between two keystrokes, shorter than anybody takes to leave the window.
    static constexpr std::chrono::milliseconds kGatheringTime{300};
    /// How long to wait for a pause in the typing once the keychain has refused, which may have
    /// taken it two seconds: nobody is to wait for it at every other keystroke.
    static constexpr std::chrono::milliseconds kPauseAfterRefusal{1000};

    /// Empty until refresh() is called.
    StoredPassword();
    ~StoredPassword() override;

    /// What the field shows; empty when nothing is stored or readable.
    const QString &text() const { return m_text; }

    /// Whether an upload would find a password: what is about to be stored counts, what the
    /// keychain has refused does not.
    bool isFilledIn() const;

    /// Whether the keychain has refused to store the text.
    bool isRefused() const { return m_state == State::Refused; }

    /// Whether the keychain could not be read, so that a password may be there that is not shown.
    bool isLocked() const { return m_isLocked; }

    /// Has text stored within the gathering time, or in the next pause after a refusal.
    void setText(const QString &text);

    /// Stores now what is being gathered. What the keychain has refused already stays with it: it
    /// stores that once it can.
    void storeGathered();

    /// Stores now what is not stored yet, trying again after a refusal. True when nothing is left
    /// to be stored.
    bool flush();

    /// Looks at the keychain, which somebody else may have changed or unlocked.
    void refresh();

Q_SIGNALS:
    /// Any of the above is different now.
    void changed();

private:
    enum class State { Stored, Gathering, Refused };

    QString m_text;
    QString m_inKeychain;
    State m_state = State::Stored;
    bool m_isLocked = false;
    bool m_wasRefused = false; ///< The last time that storing was tried.
    QTimer m_gathering;
};
