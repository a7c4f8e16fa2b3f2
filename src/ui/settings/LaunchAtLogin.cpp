#include "ui/settings/LaunchAtLogin.h"

#include "base/Log.h"
#include "platform/LoginItem.h"

using namespace Qt::StringLiterals;

void LaunchAtLogin::setEnabled(LoginItem &item, bool enabled)
{
    const QString error = enabled ? item.registerItem() : item.unregisterItem();
    if (!error.isEmpty())
        Log::line((enabled ? u"Failed to enable launch at login: "_s
                           : u"Failed to disable launch at login: "_s)
                  + error);
}
