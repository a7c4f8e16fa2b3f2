#pragma once

#include "platform/RemoteAction.h"

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QLatin1String>
#include <QStringList>
#include <QVariantMap>

#include <functional>
#include <optional>

/// The protocol by which the running program is asked from outside: org.freedesktop.Application.
/// Register the object under kPath with its adaptors. Main thread.
class ApplicationInterface : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    static constexpr QLatin1String kName = QLatin1String("org.freedesktop.Application");
    /// The one that follows from the application's identifier.
    static constexpr QLatin1String kPath = QLatin1String("/org/tessery/Tessery");

    /// Told of each request, without an action if the program is just to show itself.
    using OnRequest =
        std::function<void(std::optional<RemoteAction> action, const QString &activationToken)>;

    /// Exported on behalf of object, which owns this.
    ApplicationInterface(QObject *object, OnRequest onRequest);

    /// From now on requests get no answer, so that who asks waits until this process has gone.
    void close() { m_isClosed = true; }

public Q_SLOTS:
    void Activate(const QVariantMap &platformData, const QDBusMessage &message);
    void Open(const QStringList &uris, const QVariantMap &platformData,
              const QDBusMessage &message);
    void ActivateAction(const QString &actionName, const QVariantList &parameter,
                        const QVariantMap &platformData, const QDBusMessage &message);

private:
    OnRequest m_onRequest;
    bool m_isClosed = false;
};
