#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QIcon>
#include <QList>
#include <QString>

#include <functional>

/// One picture: size and pixels as ARGB in network byte order. Signature (iiay).
struct StatusNotifierPixmap {
    int width = 0;
    int height = 0;
    QByteArray pixels;
};
/// Signature (sa(iiay)ss).
struct StatusNotifierToolTip {
    QString iconName;
    QList<StatusNotifierPixmap> pixmaps;
    QString title;
    QString text;
};
Q_DECLARE_METATYPE(StatusNotifierPixmap)
Q_DECLARE_METATYPE(StatusNotifierToolTip)

QDBusArgument &operator<<(QDBusArgument &argument, const StatusNotifierPixmap &value);
const QDBusArgument &operator>>(const QDBusArgument &argument, StatusNotifierPixmap &value);
QDBusArgument &operator<<(QDBusArgument &argument, const StatusNotifierToolTip &value);
const QDBusArgument &operator>>(const QDBusArgument &argument, StatusNotifierToolTip &value);

/// The item in a panel's tray: the org.kde.StatusNotifierItem protocol. The toolkit's own gives the
/// application's name for both the id and the title, and marks of mnemonics to other people's file
/// names, so this one is ours. Register the object under a path of the bus with its adaptors.
class StatusNotifierItem : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_PROPERTY(QString Category READ category)
    Q_PROPERTY(QString Id READ id)
    Q_PROPERTY(QString Title READ title)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(int WindowId READ windowId)
    Q_PROPERTY(QString IconThemePath READ empty)
    Q_PROPERTY(QString IconName READ empty)
    Q_PROPERTY(QList<StatusNotifierPixmap> IconPixmap READ iconPixmap)
    Q_PROPERTY(QString OverlayIconName READ empty)
    Q_PROPERTY(QList<StatusNotifierPixmap> OverlayIconPixmap READ noPixmap)
    Q_PROPERTY(QString AttentionIconName READ empty)
    Q_PROPERTY(QList<StatusNotifierPixmap> AttentionIconPixmap READ noPixmap)
    Q_PROPERTY(QString AttentionMovieName READ empty)
    Q_PROPERTY(StatusNotifierToolTip ToolTip READ toolTip)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu)
    Q_PROPERTY(QDBusObjectPath Menu READ menu)

public:
    /// Exported on behalf of object, which owns this. activate is called with a place on the screen
    /// when the panel leaves it to us to show the menu.
    StatusNotifierItem(QObject *object, const QString &title, const QIcon &icon,
                       const QString &menuPath, std::function<void(int x, int y)> activate);

    QString category() const;
    QString id() const;
    QString title() const { return m_title; }
    QString status() const;
    int windowId() const { return 0; }
    QString empty() const { return {}; }
    QList<StatusNotifierPixmap> iconPixmap() const;
    QList<StatusNotifierPixmap> noPixmap() const { return {}; }
    StatusNotifierToolTip toolTip() const;
    bool itemIsMenu() const { return true; }
    QDBusObjectPath menu() const { return QDBusObjectPath(m_menuPath); }

public Q_SLOTS:
    void Activate(int x, int y);
    void ContextMenu(int x, int y);
    void SecondaryActivate(int x, int y);
    void Scroll(int delta, const QString &orientation);

Q_SIGNALS:
    void NewTitle();
    void NewIcon();
    void NewAttentionIcon();
    void NewOverlayIcon();
    void NewToolTip();
    void NewStatus(const QString &status);

private:
    QString m_title;
    QIcon m_icon;
    QString m_menuPath;
    std::function<void(int x, int y)> m_activate;
};
