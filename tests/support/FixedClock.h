#pragma once

#include "base/Clock.h"

/// A clock that stands still.
class FixedClock final : public Clock {
public:
    FixedClock() = default;
    explicit FixedClock(const QDateTime &fixedTime) : time(fixedTime) { }

    QDateTime now() const override { return time; }

    QDateTime time{QDate(2025, 12, 1), QTime(21, 31, 56)};
};
