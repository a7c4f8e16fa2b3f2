#pragma once

#include <QObject>
#include <QTimer>

#include <functional>

class QDBusMessage;
class QDBusVariant;

/// The default collection of the desktop's Secret Service: asks the user to unlock or to make it,
/// without waiting, and tells when secrets may have changed. Needs no event loop of GLib's. Main
/// thread. Without a session bus or a service nothing happens.
class DefaultKeyring : public QObject {
    Q_OBJECT

public:
    /// From now on onChanged is called, from the event loop, after anything changed in the service.
    void watch(std::function<void()> onChanged);

    enum class IfMissing { Leave, Make };

    /// Lets the service ask the user to unlock the collection, or to make it. onUsable is called
    /// once it can be used, from the event loop; never if the user declines. While the user is
    /// being asked, another call only replaces onUsable.
    void ask(IfMissing ifMissing, std::function<void()> onUsable);

private Q_SLOTS:
    void noteChange();
    void onPromptCompleted(bool dismissed, const QDBusVariant &result);

private:
    using ReplyHandler = void (DefaultKeyring::*)(const QDBusMessage &);

    void call(const QString &path, const QString &interface, const QString &method,
              const QVariantList &arguments, ReplyHandler onReply);
    void callService(const QString &method, const QVariantList &arguments, ReplyHandler onReply);
    void onAliasRead(const QDBusMessage &reply);
    void onPromptGiven(const QDBusMessage &reply);
    void onPromptShown(const QDBusMessage &reply);
    void finish(bool usable);

    std::function<void()> m_onChanged;
    std::function<void()> m_onUsable;
    QTimer m_changed;
    QString m_promptPath;
    IfMissing m_ifMissing = IfMissing::Leave;
    bool m_asking = false;
};
