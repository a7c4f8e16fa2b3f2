#include "base/Clock.h"

namespace {

class SystemClock final : public Clock {
public:
    QDateTime now() const override { return QDateTime::currentDateTime(); }
};

} // namespace

const Clock &Clock::system()
{
    static const SystemClock clock;
    return clock;
}
