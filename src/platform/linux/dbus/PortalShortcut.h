#pragma once

#include <QDBusArgument>
#include <QList>
#include <QString>
#include <QVariantMap>

/// A shortcut as the GlobalShortcuts portal passes it, of the D-Bus type (sa{sv}).
struct PortalShortcut {
    QString id;
    QVariantMap properties; ///< To the portal: description, preferred_trigger.

    bool operator==(const PortalShortcut &) const = default;
};
Q_DECLARE_METATYPE(PortalShortcut)

QDBusArgument &operator<<(QDBusArgument &argument, const PortalShortcut &shortcut);
const QDBusArgument &operator>>(const QDBusArgument &argument, PortalShortcut &shortcut);

/// The list in the results of a portal's answer; empty if it is none.
QList<PortalShortcut> portalShortcuts(const QVariant &value);
