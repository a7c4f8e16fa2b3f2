#include "platform/linux/dbus/PortalShortcut.h"

QDBusArgument &operator<<(QDBusArgument &argument, const PortalShortcut &shortcut)
{
    argument.beginStructure();
    argument << shortcut.id << shortcut.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, PortalShortcut &shortcut)
{
    argument.beginStructure();
    argument >> shortcut.id >> shortcut.properties;
    argument.endStructure();
    return argument;
}

QList<PortalShortcut> portalShortcuts(const QVariant &value)
{
    const auto argument = value.value<QDBusArgument>();
    QList<PortalShortcut> shortcuts;
    // Reading another type would warn and give nonsense.
    if (argument.currentType() == QDBusArgument::ArrayType
        && argument.currentSignature() == QLatin1String("a(sa{sv})"))
        argument >> shortcuts;
    return shortcuts;
}
