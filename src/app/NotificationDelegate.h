#pragma once

#include "platform/UserNotificationCenter.h"

/// Lets notifications show while the application is in front, as they do otherwise.
class NotificationDelegate final : public UserNotificationCenterDelegate {
public:
    NotificationPresentation willPresent(const UserNotification &notification) override;
};
