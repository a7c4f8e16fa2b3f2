#pragma once

#include "platform/UserNotificationCenter.h"

#include <vector>

/// Keeps what it is asked to deliver.
class FakeNotificationCenter final : public UserNotificationCenter {
public:
    void setDelegate(UserNotificationCenterDelegate *newDelegate) override
    {
        delegate = newDelegate;
    }
    void requestAuthorization(
        std::function<void(bool granted, const QString &error)> completion) override
    {
        completion(granted, authorizationError);
    }
    void add(const UserNotification &notification,
             std::function<void(const QString &error)> completion) override
    {
        delivered.push_back(notification);
        completion(deliveryError);
    }

    UserNotificationCenterDelegate *delegate = nullptr;
    bool granted = true;
    QString authorizationError;
    QString deliveryError;
    std::vector<UserNotification> delivered;
};
