#include "platform/linux/StatusNotifierItem.h"

#include "base/AppIdentifier.h"

#include <QDBusMetaType>
#include <QImage>
#include <QtEndian>

#include <utility>

using namespace Qt::StringLiterals;

QDBusArgument &operator<<(QDBusArgument &argument, const StatusNotifierPixmap &pixmap)
{
    argument.beginStructure();
    argument << pixmap.width << pixmap.height << pixmap.pixels;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, StatusNotifierPixmap &pixmap)
{
    argument.beginStructure();
    argument >> pixmap.width >> pixmap.height >> pixmap.pixels;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const StatusNotifierToolTip &toolTip)
{
    argument.beginStructure();
    argument << toolTip.iconName << toolTip.pixmaps << toolTip.title << toolTip.text;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, StatusNotifierToolTip &toolTip)
{
    argument.beginStructure();
    argument >> toolTip.iconName >> toolTip.pixmaps >> toolTip.title >> toolTip.text;
    argument.endStructure();
    return argument;
}

namespace {

/// What panels ask for, up to the double of the largest usual one.
constexpr int kIconSizes[] = {16, 22, 24, 32, 44, 48, 64};

StatusNotifierPixmap pixmapOf(const QIcon &icon, int size)
{
    const QImage image =
        icon.pixmap(QSize(size, size), 1.0).toImage().convertToFormat(QImage::Format_ARGB32);
    QByteArray pixels(image.sizeInBytes(), Qt::Uninitialized);
    qToBigEndian<quint32>(image.constBits(), image.width() * image.height(), pixels.data());
    return {image.width(), image.height(), pixels};
}

} // namespace

StatusNotifierItem::StatusNotifierItem(QObject *object, const QString &title, const QIcon &icon,
                                       const QString &menuPath,
                                       std::function<void(int x, int y)> activate)
    : QDBusAbstractAdaptor(object)
    , m_title(title)
    , m_icon(icon)
    , m_menuPath(menuPath)
    , m_activate(std::move(activate))
{
    qDBusRegisterMetaType<StatusNotifierPixmap>();
    qDBusRegisterMetaType<QList<StatusNotifierPixmap>>();
    qDBusRegisterMetaType<StatusNotifierToolTip>();
}

QString StatusNotifierItem::category() const
{
    return u"ApplicationStatus"_s;
}

QString StatusNotifierItem::id() const
{
    return kAppIdentifier;
}

QString StatusNotifierItem::status() const
{
    return u"Active"_s;
}

QList<StatusNotifierPixmap> StatusNotifierItem::iconPixmap() const
{
    QList<StatusNotifierPixmap> pixmaps;
    for (const int size : kIconSizes)
        pixmaps << pixmapOf(m_icon, size);
    return pixmaps;
}

StatusNotifierToolTip StatusNotifierItem::toolTip() const
{
    return {{}, {}, m_title, {}};
}

void StatusNotifierItem::Activate(int x, int y)
{
    m_activate(x, y);
}

void StatusNotifierItem::ContextMenu(int x, int y)
{
    m_activate(x, y);
}

void StatusNotifierItem::SecondaryActivate(int, int)
{
}

void StatusNotifierItem::Scroll(int, const QString &)
{
}
