#include "app/NotificationDelegate.h"

NotificationPresentation NotificationDelegate::willPresent(const UserNotification &)
{
    return {.banner = true, .sound = true};
}
