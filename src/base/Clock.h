#pragma once

#include <QDateTime>
#include <QString>

/// Where the current time comes from, so that a test can choose it.
class Clock {
public:
    virtual ~Clock() = default;
    Clock() = default;
    Clock(const Clock &) = delete;
    Clock &operator=(const Clock &) = delete;

    /// Now, in the user's local time zone.
    virtual QDateTime now() const = 0;

    /// Now, in whole seconds since 1970, rounded to the nearest.
    QString wholeSeconds() const;

    /// The computer's clock.
    static const Clock &system();
};
