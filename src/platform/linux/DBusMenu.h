#pragma once

#include "platform/MenuBarExtra.h"

#include <QDBusAbstractAdaptor>
#include <QDBusArgument>
#include <QDBusVariant>
#include <QHash>
#include <QObject>
#include <QVariantMap>

#include <functional>
#include <vector>

// The structures of the protocol, with the names that its XML gives them.

/// One line of the menu and its properties. Signature (ia{sv}).
struct DBusMenuItem {
    int id = 0;
    QVariantMap properties;

    bool operator==(const DBusMenuItem &) const = default;
};
/// The names of the properties that a line has no more. Signature (ias).
struct DBusMenuItemKeys {
    int id = 0;
    QStringList names;
};
/// A line with those below it. Signature (ia{sv}av).
struct DBusMenuLayout {
    int id = 0;
    QVariantMap properties;
    QList<DBusMenuLayout> children;
};
/// What happened to a line. Signature (isvu).
struct DBusMenuEvent {
    int id = 0;
    QString type;
    QDBusVariant data;
    uint timestamp = 0;
};
Q_DECLARE_METATYPE(DBusMenuItem)
Q_DECLARE_METATYPE(DBusMenuItemKeys)
Q_DECLARE_METATYPE(DBusMenuLayout)
Q_DECLARE_METATYPE(DBusMenuEvent)

QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuItem &value);
const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuItem &value);
QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuItemKeys &value);
const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuItemKeys &value);
QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuLayout &value);
const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuLayout &value);
QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuEvent &value);
const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuEvent &value);

/// A flat menu that a panel draws: the com.canonical.dbusmenu protocol. Register the object under a
/// path of the bus with its adaptors. Main thread.
class DBusMenu : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
    Q_PROPERTY(uint Version READ version)
    Q_PROPERTY(QString TextDirection READ textDirection)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(QStringList IconThemePath READ iconThemePath)

public:
    /// The lines are exported on behalf of object, which owns this. aboutToShow is called before a
    /// panel shows the menu.
    DBusMenu(QObject *object, std::function<void()> aboutToShow);

    /// Replaces the lines and tells the panel what has changed.
    void setItems(std::vector<MenuItem> items);

    uint version() const { return 3; } // The one that panels of today speak.
    QString textDirection() const;
    QString status() const;
    QStringList iconThemePath() const { return {}; }

public Q_SLOTS:
    uint GetLayout(int parentId, int recursionDepth, const QStringList &propertyNames,
                   DBusMenuLayout &layout);
    QList<DBusMenuItem> GetGroupProperties(const QList<int> &ids, const QStringList &propertyNames);
    QDBusVariant GetProperty(int id, const QString &name);
    void Event(int id, const QString &eventId, const QDBusVariant &data, uint timestamp);
    QList<int> EventGroup(const QList<DBusMenuEvent> &events);
    bool AboutToShow(int id);
    QList<int> AboutToShowGroup(const QList<int> &ids, QList<int> &idErrors);

Q_SIGNALS:
    void ItemsPropertiesUpdated(const QList<DBusMenuItem> &updatedProps,
                                const QList<DBusMenuItemKeys> &removedProps);
    void LayoutUpdated(uint revision, int parent);
    void ItemActivationRequested(int id, uint timestamp);

private:
    QVariantMap propertiesOf(const MenuItem &item);
    QByteArray pngOf(const QIcon &icon);
    bool contains(int id) const;
    void activate(int id);

    std::function<void()> m_aboutToShow;
    std::vector<MenuItem> m_items;
    QList<DBusMenuItem> m_exported; ///< Line n has the id n + 1; 0 is the menu itself.
    QHash<qint64, QByteArray> m_pngs; ///< By the icon's cache key.
    uint m_revision = 1;
};
