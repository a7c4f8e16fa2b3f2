#include "platform/Platform.h"

#include <QtGlobal>

namespace {

Platform *s_current = nullptr;

} // namespace

Platform &Platform::current()
{
    Q_ASSERT(s_current);
    return *s_current;
}

void Platform::setCurrent(Platform *platform)
{
    s_current = platform;
}
