#include "platform/linux/FreedesktopNotificationCenter.h"

#include "base/AppIdentifier.h"
#include "platform/linux/dbus/BusCall.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QGuiApplication>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1String kService("org.freedesktop.Notifications");
constexpr QLatin1String kPath("/org/freedesktop/Notifications");

/// The "normal" of the three urgencies; "critical" would stay until it is dismissed.
constexpr uchar kNormalUrgency = 1;

QDBusMessage methodCall(QLatin1String method)
{
    return QDBusMessage::createMethodCall(kService, kPath, kService, method);
}

} // namespace

FreedesktopNotificationCenter::FreedesktopNotificationCenter()
    : m_bus(QDBusConnection::sessionBus())
{
    // Another server may be able to do other things.
    auto *const watcher =
        new QDBusServiceWatcher(kService, m_bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this] { m_capabilities.reset(); });
}

FreedesktopNotificationCenter::~FreedesktopNotificationCenter()
{
    deliverWaiting(); // Nobody will be there for the answer that they wait for.
    if (findChildren<QDBusPendingCallWatcher *>().isEmpty())
        return;
    flushBus(m_bus);
}

void FreedesktopNotificationCenter::setDelegate(UserNotificationCenterDelegate *delegate)
{
    m_delegate = delegate;
}

void FreedesktopNotificationCenter::requestAuthorization(
    std::function<void(bool granted, const QString &error)> completion)
{
    // The desktop asks nobody: who can reach the server may notify.
    askCapabilities([completion = std::move(completion)](const QString &error) {
        completion(error.isEmpty(), error);
    });
}

void FreedesktopNotificationCenter::add(const UserNotification &notification,
                                        std::function<void(const QString &error)> completion)
{
    m_waiting.push_back({notification, std::move(completion)});
    if (m_capabilities)
        deliverWaiting();
    else if (m_waiting.size() == 1)
        askCapabilities([](const QString &) {});
}

void FreedesktopNotificationCenter::askCapabilities(
    std::function<void(const QString &error)> completion)
{
    whenAnswered<QDBusPendingReply<QStringList>>(
        callBus(m_bus, methodCall("GetCapabilities"_L1)), this,
        [this, completion = std::move(completion)](const QDBusPendingReply<QStringList> &reply) {
            if (!reply.isError())
                m_capabilities = reply.value();
            completion(reply.isError() ? reply.error().message() : QString());
            deliverWaiting();
        });
}

void FreedesktopNotificationCenter::deliverWaiting()
{
    for (const Pending &pending : std::exchange(m_waiting, {}))
        deliver(pending);
}

void FreedesktopNotificationCenter::deliver(const Pending &pending)
{
    const UserNotification &notification = pending.notification;
    const NotificationPresentation presentation = m_delegate
        ? m_delegate->willPresent(notification)
        : NotificationPresentation{.banner = true, .sound = true};
    if (!presentation.banner) {
        pending.completion({});
        return;
    }

    QVariantMap hints{
        {u"urgency"_s, QVariant::fromValue(kNormalUrgency)},
        {u"desktop-entry"_s, QString(kAppIdentifier)},
    };
    if (!presentation.sound)
        hints.insert(u"suppress-sound"_s, true);
    else if (notification.sound == UserNotification::Sound::Critical)
        hints.insert(u"sound-name"_s, u"dialog-error"_s);

    const bool understandsMarkup = m_capabilities && m_capabilities->contains("body-markup"_L1);
    QDBusMessage call = methodCall("Notify"_L1);
    call.setArguments({
        QGuiApplication::applicationDisplayName(),
        0U, // Replaces no other notification.
        QString(kAppIdentifier), notification.title,
        understandsMarkup ? notification.body.toHtmlEscaped() : notification.body, QStringList(),
        hints,
        -1, // Shown for as long as the server sees fit.
    });
    whenAnswered(callBus(m_bus, call), this,
                 [completion = pending.completion](const QDBusPendingReply<> &reply) {
                     completion(reply.isError() ? reply.error().message() : QString());
                 });
}
