#pragma once

#include "platform/linux/dbus/PortalNames.h"
#include "platform/linux/dbus/PortalShortcut.h"
#include "support/FakeBusService.h"

#include <QDBusObjectPath>

/// A portal of global shortcuts that grants everything, unless it is told otherwise. Its decisions
/// are on the bus before the calls have their answers.
class FakePortal : public FakeBusService {
public:
    static inline const QString kInterface =
        QStringLiteral("org.freedesktop.portal.GlobalShortcuts");

    FakePortal() : FakeBusService(PortalNames::kService)
    {
        const auto nothing = [](const QDBusMessage &) {
            return QVariantList();
        };
        answers[QStringLiteral("Register")] = nothing;
        answers[QStringLiteral("Close")] = nothing;
        answers[QStringLiteral("CreateSession")] = [this](const QDBusMessage &call) {
            const QVariantMap options = optionsOf(call);
            session = QStringLiteral("/org/freedesktop/portal/desktop/session/") + senderOf(call)
                + u'/' + options.value(QStringLiteral("session_handle_token")).toString();
            const QVariant handle =
                hasPathHandles ? QVariant::fromValue(QDBusObjectPath(session)) : QVariant(session);
            return decide(call, sessionCode, {{QStringLiteral("session_handle"), handle}});
        };
        answers[QStringLiteral("BindShortcuts")] =
            [this](const QDBusMessage &call) -> std::optional<QVariantList> {
            const auto wanted = qdbus_cast<QList<PortalShortcut>>(call.arguments().at(1));
            if (isAsking)
                return QVariantList{QVariant::fromValue(QDBusObjectPath(requestOf(call)))};
            if (binds)
                bound = wanted;
            return decide(call, bindCode, {});
        };
        answers[QStringLiteral("ListShortcuts")] = [this](const QDBusMessage &call) {
            return decide(call, 0, {{QStringLiteral("shortcuts"), QVariant::fromValue(bound)}});
        };
    }

    static QVariantMap optionsOf(const QDBusMessage &call)
    {
        return qdbus_cast<QVariantMap>(call.arguments().last());
    }

    /// The user answers the question that BindShortcuts has put.
    void userAnswers(bool grants)
    {
        const QDBusMessage call = lastCall(QStringLiteral("BindShortcuts"));
        if (grants)
            bound = qdbus_cast<QList<PortalShortcut>>(call.arguments().at(1));
        decide(call, grants ? 0 : 1, {});
    }

    void activate(const QString &inSession, const QString &id) { activateBy(*this, inSession, id); }

    static void activateBy(FakeBusService &sender, const QString &inSession, const QString &id)
    {
        sender.emitSignal(
            PortalNames::kPath, kInterface, QStringLiteral("Activated"),
            {QVariant::fromValue(QDBusObjectPath(inSession)), id, qulonglong{0}, QVariantMap()});
    }

    bool hasPathHandles = false; ///< Of the type for paths, not for text.
    uint sessionCode = 0;
    uint bindCode = 0;
    bool binds = true; ///< Whether shortcuts are bound, whatever the code says.
    bool isAsking = false; ///< Whether BindShortcuts waits for userAnswers().
    QString requestPrefix = QStringLiteral("/org/freedesktop/portal/desktop/request/");
    QString session; ///< The path of the latest.
    QList<PortalShortcut> bound;

private:
    static QString senderOf(const QDBusMessage &call)
    {
        return call.service().mid(1).replace(u'.', u'_');
    }

    QString requestOf(const QDBusMessage &call) const
    {
        return requestPrefix + senderOf(call) + u'/'
            + optionsOf(call).value(QStringLiteral("handle_token")).toString();
    }

    QVariantList decide(const QDBusMessage &call, uint code, const QVariantMap &results)
    {
        const QString request = requestOf(call);
        emitSignal(request, QStringLiteral("org.freedesktop.portal.Request"),
                   QStringLiteral("Response"), {code, results});
        return {QVariant::fromValue(QDBusObjectPath(request))};
    }
};
