#pragma once

#include "platform/RemoteControl.h"

#include <QStringList>

#include <utility>

/// Lets a test ask what the outside asks.
class FakeRemoteControl final : public RemoteControl {
public:
    void setHandlers(Handlers newHandlers) override { handlers = std::move(newHandlers); }
    void close() override { isClosed = true; }
    void bringToFront(QWindow &, const QString &activationToken,
                      const std::function<void()> &show) override
    {
        tokens << activationToken;
        show();
    }

    Handlers handlers;
    bool isClosed = false;
    QStringList tokens; ///< Those with which windows were brought to the front.
};
