#include "platform/linux/dbus/StartEnvironment.h"

using namespace Qt::StringLiterals;

namespace {

// The names that the protocol gives them.
const QString kActivationToken = u"activation-token"_s;
const QString kStartupId = u"desktop-startup-id"_s;

QString taken(const char *variable)
{
    QString value = qEnvironmentVariable(variable);
    qunsetenv(variable);
    return value;
}

} // namespace

StartEnvironment StartEnvironment::take()
{
    StartEnvironment environment;
    environment.activationToken = taken("XDG_ACTIVATION_TOKEN");
    environment.startupId = taken("DESKTOP_STARTUP_ID");
    const QString address = taken("DBUS_STARTER_ADDRESS");
    const QString type = taken("DBUS_STARTER_BUS_TYPE");
    environment.isStartedByBus = !address.isEmpty() || !type.isEmpty();
    return environment;
}

QVariantMap StartEnvironment::platformData() const
{
    QVariantMap data;
    if (!activationToken.isEmpty())
        data.insert(kActivationToken, activationToken);
    if (!startupId.isEmpty())
        data.insert(kStartupId, startupId);
    return data;
}

QString StartEnvironment::tokenIn(const QVariantMap &platformData)
{
    const QString token = platformData.value(kActivationToken).toString();
    return token.isEmpty() ? platformData.value(kStartupId).toString() : token;
}
