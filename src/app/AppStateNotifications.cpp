#include "app/AppState.h"

#include "base/Log.h"
#include "platform/Platform.h"

#include <QUuid>

using namespace Qt::StringLiterals;

void AppState::setupNotifications()
{
    m_platform.notifications->setDelegate(&m_notificationDelegate);
    m_platform.notifications->requestAuthorization([](bool granted, const QString &error) {
        if (granted)
            Log::line(u"✅ Notification permission granted"_s);
        else if (!error.isEmpty())
            Log::line(u"❌ Notification permission error: "_s + error);
        else
            Log::line(u"❌ Notification permission denied"_s);
    });
}

void AppState::askForSettings()
{
    sendNotification(u"Upload Error"_s, u"Please configure server settings first"_s, true);
}

void AppState::sendNotification(const QString &title, const QString &body, bool isError)
{
    const UserNotification notification{
        .identifier = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper(),
        .title = title,
        .body = body,
        .sound = isError ? UserNotification::Sound::Critical : UserNotification::Sound::Default,
    };
    m_platform.notifications->add(notification, [](const QString &error) {
        if (!error.isEmpty())
            Log::line(u"❌ Failed to send notification: "_s + error);
    });
}
