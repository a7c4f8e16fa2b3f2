#include "platform/linux/DBusMenu.h"

#include "platform/linux/MenuLabel.h"
#include "platform/linux/PngImage.h"

#include <QDBusMetaType>
#include <QGuiApplication>

#include <utility>

using namespace Qt::StringLiterals;

QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuItem &item)
{
    argument.beginStructure();
    argument << item.id << item.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuItem &item)
{
    argument.beginStructure();
    argument >> item.id >> item.properties;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuItemKeys &keys)
{
    argument.beginStructure();
    argument << keys.id << keys.names;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuItemKeys &keys)
{
    argument.beginStructure();
    argument >> keys.id >> keys.names;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuLayout &layout)
{
    argument.beginStructure();
    argument << layout.id << layout.properties;
    argument.beginArray(QMetaType::fromType<QDBusVariant>());
    for (const DBusMenuLayout &child : layout.children)
        argument << QDBusVariant(QVariant::fromValue(child));
    argument.endArray();
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuLayout &layout)
{
    argument.beginStructure();
    argument >> layout.id >> layout.properties;
    argument.beginArray();
    while (!argument.atEnd()) {
        QDBusVariant child;
        argument >> child;
        layout.children << qdbus_cast<DBusMenuLayout>(child.variant());
    }
    argument.endArray();
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuEvent &event)
{
    argument.beginStructure();
    argument << event.id << event.type << event.data << event.timestamp;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuEvent &event)
{
    argument.beginStructure();
    argument >> event.id >> event.type >> event.data >> event.timestamp;
    argument.endStructure();
    return argument;
}

namespace {

/// The size at which panels draw the symbols of menus, in logical pixels.
constexpr int kSymbolSize = 16;

QList<QStringList> shortcutOf(const QKeySequence &sequence)
{
    const QKeyCombination keys = sequence[0];
    QStringList names;
    if (keys.keyboardModifiers().testFlag(Qt::ControlModifier))
        names << u"Control"_s;
    if (keys.keyboardModifiers().testFlag(Qt::AltModifier))
        names << u"Alt"_s;
    if (keys.keyboardModifiers().testFlag(Qt::ShiftModifier))
        names << u"Shift"_s;
    if (keys.keyboardModifiers().testFlag(Qt::MetaModifier))
        names << u"Super"_s;
    names << QKeySequence(keys.key()).toString(QKeySequence::PortableText);
    return {names};
}

/// The properties of that names, or all of them if none is named.
QVariantMap selected(const QVariantMap &properties, const QStringList &names)
{
    if (names.isEmpty())
        return properties;
    QVariantMap some;
    for (const QString &name : names) {
        if (const auto found = properties.find(name); found != properties.end())
            some.insert(name, *found);
    }
    return some;
}

} // namespace

DBusMenu::DBusMenu(QObject *object, std::function<void()> aboutToShow)
    : QDBusAbstractAdaptor(object), m_aboutToShow(std::move(aboutToShow))
{
    qDBusRegisterMetaType<DBusMenuItem>();
    qDBusRegisterMetaType<QList<DBusMenuItem>>();
    qDBusRegisterMetaType<DBusMenuItemKeys>();
    qDBusRegisterMetaType<QList<DBusMenuItemKeys>>();
    qDBusRegisterMetaType<DBusMenuLayout>();
    qDBusRegisterMetaType<DBusMenuEvent>();
    qDBusRegisterMetaType<QList<DBusMenuEvent>>();
    qDBusRegisterMetaType<QList<QStringList>>();
}

void DBusMenu::setItems(std::vector<MenuItem> items)
{
    m_items = std::move(items);
    QList<DBusMenuItem> exported;
    QList<DBusMenuItem> updated;
    QList<DBusMenuItemKeys> removed;
    for (const MenuItem &item : m_items) {
        const qsizetype index = exported.size();
        exported << DBusMenuItem{static_cast<int>(index) + 1, propertiesOf(item)};
        if (index >= m_exported.size() || m_exported.at(index) == exported.at(index))
            continue;
        updated << exported.at(index);
        QStringList lost = m_exported.at(index).properties.keys();
        erase_if(lost, [&exported](const QString &name) {
            return exported.last().properties.contains(name);
        });
        if (!lost.isEmpty())
            removed << DBusMenuItemKeys{exported.last().id, lost};
    }

    const bool isOtherLayout = exported.size() != m_exported.size();
    m_exported = exported;
    if (isOtherLayout)
        Q_EMIT LayoutUpdated(++m_revision, 0);
    else if (!updated.isEmpty())
        Q_EMIT ItemsPropertiesUpdated(updated, removed);
}

QVariantMap DBusMenu::propertiesOf(const MenuItem &item)
{
    if (item.kind == MenuItem::Kind::Separator)
        return {{u"type"_s, u"separator"_s}, {u"visible"_s, true}};
    QVariantMap properties{
        {u"label"_s, MenuLabel::forPanel(item.text, item.caption)},
        // Texts too: panels draw what is disabled too faintly to be read.
        {u"enabled"_s, item.enabled},
        {u"visible"_s, true},
    };
    if (!item.icon.isNull())
        properties.insert(u"icon-data"_s, pngOf(item.icon));
    if (!item.shortcut.isEmpty())
        properties.insert(u"shortcut"_s, QVariant::fromValue(shortcutOf(item.shortcut)));
    return properties;
}

QByteArray DBusMenu::pngOf(const QIcon &icon)
{
    QByteArray &png = m_pngs[icon.cacheKey()];
    if (png.isEmpty()) {
        png = PngImage::encode(
            icon.pixmap(QSize(kSymbolSize, kSymbolSize), qGuiApp->devicePixelRatio()).toImage());
    }
    return png;
}

QString DBusMenu::textDirection() const
{
    return QGuiApplication::isRightToLeft() ? u"rtl"_s : u"ltr"_s;
}

QString DBusMenu::status() const
{
    return u"normal"_s;
}

bool DBusMenu::contains(int id) const
{
    return id > 0 && id <= m_exported.size();
}

uint DBusMenu::GetLayout(int parentId, int recursionDepth, const QStringList &propertyNames,
                         DBusMenuLayout &layout)
{
    layout.id = parentId;
    if (parentId == 0) {
        layout.properties.insert(u"children-display"_s, u"submenu"_s);
        if (recursionDepth != 0) {
            for (const DBusMenuItem &item : std::as_const(m_exported))
                layout.children << DBusMenuLayout{
                    item.id, selected(item.properties, propertyNames), {}};
        }
    } else if (contains(parentId)) {
        layout.properties = selected(m_exported.at(parentId - 1).properties, propertyNames);
    }
    return m_revision;
}

QList<DBusMenuItem> DBusMenu::GetGroupProperties(const QList<int> &ids,
                                                 const QStringList &propertyNames)
{
    QList<DBusMenuItem> asked;
    for (const DBusMenuItem &item : std::as_const(m_exported)) {
        if (ids.isEmpty() || ids.contains(item.id))
            asked << DBusMenuItem{item.id, selected(item.properties, propertyNames)};
    }
    return asked;
}

QDBusVariant DBusMenu::GetProperty(int id, const QString &name)
{
    const QVariant value = contains(id) ? m_exported.at(id - 1).properties.value(name) : QVariant();
    // An empty variant has no form on the bus.
    return QDBusVariant(value.isValid() ? value : QVariant(QString()));
}

void DBusMenu::Event(int id, const QString &eventId, const QDBusVariant &, uint)
{
    if (eventId == u"clicked"_s && contains(id)) {
        // The panel gets its answer first: what is chosen may take its time or end the program.
        QMetaObject::invokeMethod(
            this, [this, id] { activate(id); }, Qt::QueuedConnection);
    }
}

void DBusMenu::activate(int id)
{
    if (!contains(id))
        return;
    // A copy, since acting may replace the lines.
    const MenuItem item = m_items.at(static_cast<std::size_t>(id - 1));
    if (item.enabled && item.action)
        item.action();
}

QList<int> DBusMenu::EventGroup(const QList<DBusMenuEvent> &events)
{
    QList<int> unknown;
    for (const DBusMenuEvent &event : events) {
        if (event.id != 0 && !contains(event.id))
            unknown << event.id;
        Event(event.id, event.type, event.data, event.timestamp);
    }
    return unknown;
}

bool DBusMenu::AboutToShow(int id)
{
    if (id == 0) {
        m_pngs.clear(); // The palette may have changed since.
        m_aboutToShow();
    }
    return false; // What changes is told by signals.
}

QList<int> DBusMenu::AboutToShowGroup(const QList<int> &ids, QList<int> &idErrors)
{
    for (const int id : ids) {
        if (id != 0 && !contains(id))
            idErrors << id;
        AboutToShow(id);
    }
    return {};
}
