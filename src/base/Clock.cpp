#include "base/Clock.h"

namespace {

class SystemClock final : public Clock {
public:
    QDateTime now() const override { return QDateTime::currentDateTime(); }
};

} // namespace

QString Clock::wholeSeconds() const
{
    return QString::asprintf("%.0f", static_cast<double>(now().toMSecsSinceEpoch()) / 1000.0);
}

const Clock &Clock::system()
{
    static const SystemClock clock;
    return clock;
}
