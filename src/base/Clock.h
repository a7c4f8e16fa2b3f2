#pragma once

#include <QDateTime>

/// Where the current time comes from, so that a test can choose it.
class Clock {
public:
    virtual ~Clock() = default;
    Clock() = default;
    Clock(const Clock &) = delete;
    Clock &operator=(const Clock &) = delete;

    /// Now, in the user's local time zone.
    virtual QDateTime now() const = 0;

    /// The computer's clock.
    static const Clock &system();
};
