#pragma once

#include "platform/LoginItem.h"

/// A switch that works unless told to fail.
class FakeLoginItem final : public LoginItem {
public:
    bool isEnabled() const override { return enabled; }
    QString registerItem() override { return change(true); }
    QString unregisterItem() override { return change(false); }

    bool enabled = false;
    QString error; ///< Makes changing fail unless empty.
    int registrations = 0;
    int unregistrations = 0;

private:
    QString change(bool newEnabled)
    {
        ++(newEnabled ? registrations : unregistrations);
        if (error.isEmpty())
            enabled = newEnabled;
        return error;
    }
};
