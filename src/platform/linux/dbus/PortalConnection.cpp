#include "platform/linux/dbus/PortalConnection.h"

#include "platform/linux/dbus/PortalNames.h"
#include "platform/linux/dbus/BusCall.h"

#include <QDBusMessage>

#include <utility>

using namespace Qt::StringLiterals;

const QString PortalConnection::kSessionHandle = u"session_handle"_s;

PortalConnection::~PortalConnection()
{
    m_unwanted.reset();
    if (!m_name.isEmpty())
        QDBusConnection::disconnectFromBus(m_name);
}

QDBusConnection PortalConnection::bus()
{
    if (m_name.isEmpty()) {
        static int count = 0;
        m_name = u"portal%1"_s.arg(++count);
        return QDBusConnection::connectToBus(QDBusConnection::SessionBus, m_name);
    }
    return QDBusConnection(m_name);
}

void PortalConnection::closeSession(const QString &path)
{
    QDBusMessage message = QDBusMessage::createMethodCall(
        PortalNames::kService, path, u"org.freedesktop.portal.Session"_s, u"Close"_s);
    message.setAutoStartService(false); // A portal that is gone has no session.
    m_closing = bus().asyncCall(message);
}

void PortalConnection::closeOnceMade(std::unique_ptr<PortalRequest> request)
{
    m_unwanted = std::move(request);
    m_unwanted->setAnsweredHandler(
        [this](const std::optional<PortalRequest::Answer> &answer, const QString &) {
            if (answer && answer->code == 0)
                closeSession(answer->path(kSessionHandle));
            m_unwanted.reset();
            if (const auto waiting = std::exchange(m_waiting, nullptr))
                waiting();
        });
}

void PortalConnection::whenClosed(QObject *context, std::function<void()> done)
{
    if (m_unwanted)
        m_waiting = [this, context = QPointer(context), done = std::move(done)] {
            if (context)
                whenClosed(context, done);
        };
    else if (m_closing)
        whenAnswered(*m_closing, context, [done = std::move(done)](const auto &) { done(); });
    else
        QMetaObject::invokeMethod(context, std::move(done), Qt::QueuedConnection);
}
