#pragma once

#include "platform/EventTap.h"
#include "platform/linux/dbus/PortalConnection.h"
#include "platform/linux/dbus/PortalRequest.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>

#include <memory>

/// EventTap by the desktop's GlobalShortcuts portal, which may ask the user first. Where the portal
/// starts anew the shortcut is bound anew. A refusal is logged with its reason.
class PortalEventTap final : public QObject, public EventTap {
    Q_OBJECT

public:
    /// The connection is shared by the taps that follow each other.
    PortalEventTap(std::shared_ptr<PortalConnection> connection, const KeyPress &wanted,
                   OnKeyDown onKeyDown, OnDecided onDecided);
    ~PortalEventTap() override;

private Q_SLOTS:
    void activated(const QDBusMessage &signal);
    void sessionClosed();

private:
    void serviceOwnerChanged(const QString &before, const QString &now);
    void begin();
    void introduceItself();
    void createSession();
    void sessionCreated(const QString &path);
    void bindShortcut();
    void listShortcuts(const QString &boundHow);
    void request(const QString &method, const QVariantList &arguments, const QVariantMap &options,
                 PortalRequest::OnAnswered onAnswered);
    QVariant shortcuts() const;
    void endAttempt();
    void closeSession();
    void refuse(const QString &reason);
    void decide(bool isHeard);

    std::shared_ptr<PortalConnection> m_connection;
    QDBusConnection m_bus;
    KeyPress m_wanted;
    QString m_trigger; ///< The press as the portal writes it.
    QString m_id; ///< Of the shortcut.
    OnKeyDown m_onKeyDown;
    OnDecided m_onDecided; ///< Empty once it has been called.
    QDBusServiceWatcher m_watcher;
    std::unique_ptr<QObject> m_attempt; ///< What answers to the latest attempt are for.
    std::unique_ptr<PortalRequest> m_request; ///< The latest of the attempt.
    QString m_stranger; ///< Why the portal does not know who is calling; empty if it does.
    QString m_session; ///< The path of the session; empty when there is none.
    bool m_isHeard = false;
    bool m_isSecondTry = false; ///< The portal has ended in the middle of an attempt.
};
