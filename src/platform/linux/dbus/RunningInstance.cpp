#include "platform/linux/dbus/RunningInstance.h"

#include "base/AppIdentifier.h"
#include "platform/linux/dbus/ApplicationInterface.h"

#include <QDBusError>
#include <QDBusMessage>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1String kNoOwner("org.freedesktop.DBus.Error.NameHasNoOwner");

} // namespace

RunningInstance::Answer RunningInstance::ask(const QDBusConnection &bus,
                                             std::optional<RemoteAction> action,
                                             const QVariantMap &platformData,
                                             std::chrono::milliseconds limit, QString *problem)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        kAppIdentifier, ApplicationInterface::kPath, ApplicationInterface::kName,
        action ? u"ActivateAction"_s : u"Activate"_s);
    if (action)
        call.setArguments({QString(RemoteActions::nameOf(*action)), QVariantList(), platformData});
    else
        call.setArguments({platformData});
    call.setAutoStartService(false);

    const auto begun = std::chrono::steady_clock::now();
    const QDBusMessage reply = bus.call(call, QDBus::Block, static_cast<int>(limit.count()));
    if (reply.type() == QDBusMessage::ReplyMessage)
        return Answer::Done;
    if (problem)
        *problem = reply.errorMessage();
    if (reply.errorName() == kNoOwner)
        return Answer::NotThere;
    switch (QDBusError(reply).type()) {
    case QDBusError::ServiceUnknown:
    case QDBusError::UnknownObject: // It has taken its leave, but has not gone yet.
        return Answer::NotThere;
    case QDBusError::NoReply:
    case QDBusError::Timeout:
    case QDBusError::TimedOut:
        // The bus says the same, but at once, of a process that ends while it is being asked. The
        // limit is kept to a twentieth only.
        return (std::chrono::steady_clock::now() - begun) * 10 > limit * 9 ? Answer::Silent
                                                                           : Answer::NotThere;
    default:
        return Answer::Refused;
    }
}
