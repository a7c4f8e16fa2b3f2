#include "platform/linux/dbus/PortalEventTap.h"

#include "base/AppIdentifier.h"
#include "base/Log.h"
#include "platform/linux/dbus/PortalNames.h"
#include "platform/linux/dbus/PortalShortcut.h"
#include "platform/linux/dbus/PressNames.h"
#include "platform/linux/dbus/BusCall.h"

#include <QDBusMetaType>

#include <algorithm>
#include <chrono>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1String kInterface("org.freedesktop.portal.GlobalShortcuts");
constexpr QLatin1String kRegistryInterface("org.freedesktop.host.portal.Registry");
constexpr QLatin1String kSessionInterface("org.freedesktop.portal.Session");

/// How long a service may take to start (service_start_timeout of the session bus).
constexpr std::chrono::milliseconds kStartLimit = std::chrono::seconds(120);

/// The same in every run: some portals store shortcuts under it.
const QString kSessionToken = u"tessery"_s;

} // namespace

PortalEventTap::PortalEventTap(std::shared_ptr<PortalConnection> connection, const KeyPress &wanted,
                               OnKeyDown onKeyDown, OnDecided onDecided)
    : m_connection(std::move(connection))
    , m_bus(m_connection->bus())
    , m_wanted(wanted)
    , m_trigger(PressNames::portalTrigger(wanted))
    // A portal that knows an id keeps to the trigger that it had the first time.
    , m_id(u"uploadClipboard-"_s + m_trigger)
    , m_onKeyDown(std::move(onKeyDown))
    , m_onDecided(std::move(onDecided))
    , m_watcher(PortalNames::kService, m_bus, QDBusServiceWatcher::WatchForOwnerChange)
{
    qDBusRegisterMetaType<PortalShortcut>();
    qDBusRegisterMetaType<QList<PortalShortcut>>();
    connect(&m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &before, const QString &now) {
                serviceOwnerChanged(before, now);
            });
    m_bus.connect(PortalNames::kService, PortalNames::kPath, kInterface, u"Activated"_s, this,
                  SLOT(activated(QDBusMessage)));
    begin();
}

PortalEventTap::~PortalEventTap()
{
    // Withdrawn, it would leave the portal with a session that nobody can close.
    if (m_request && m_session.isEmpty())
        m_connection->closeOnceMade(std::move(m_request));
    endAttempt();
    closeSession();
}

void PortalEventTap::serviceOwnerChanged(const QString &before, const QString &now)
{
    if (!before.isEmpty()) {
        const bool wasUnderWay = m_attempt != nullptr;
        const bool wasHeard = std::exchange(m_isHeard, false);
        endAttempt();
        m_session.clear();
        m_connection->forgetSessions();
        if (wasUnderWay && std::exchange(m_isSecondTry, true)) {
            refuse(u"the desktop portal ends when it is asked"_s);
            return;
        }
        if (wasUnderWay || wasHeard)
            begin();
    } else if (!now.isEmpty() && !m_attempt) {
        begin(); // Else it was started by what has just been asked.
    }
}

void PortalEventTap::begin()
{
    m_attempt = std::make_unique<QObject>();
    m_connection->whenClosed(m_attempt.get(), [this] { introduceItself(); });
}

/// Portals that are asked by a program outside of a sandbox cannot tell otherwise which it is.
/// Older ones have no such call, and the same caller need not be introduced again.
void PortalEventTap::introduceItself()
{
    QDBusMessage call = QDBusMessage::createMethodCall(PortalNames::kService, PortalNames::kPath,
                                                       kRegistryInterface, u"Register"_s);
    call << QString(kAppIdentifier) << QVariantMap();
    whenAnswered(m_bus.asyncCall(call, static_cast<int>(kStartLimit.count())), m_attempt.get(),
                 [this](const QDBusPendingReply<> &reply) {
                     m_stranger = reply.isError() ? reply.error().message() : QString();
                     createSession();
                 });
}

void PortalEventTap::createSession()
{
    // Some portals take the list from here, and not from where it belongs.
    request(u"CreateSession"_s, {},
            {{u"session_handle_token"_s, kSessionToken}, {u"shortcuts"_s, shortcuts()}},
            [this](const std::optional<PortalRequest::Answer> &answer, const QString &error) {
                if (!answer)
                    refuse(error);
                else if (answer->code != 0)
                    refuse(u"the desktop portal gives no session for shortcuts"_s);
                else
                    sessionCreated(answer->path(PortalConnection::kSessionHandle));
            });
}

void PortalEventTap::sessionCreated(const QString &path)
{
    m_session = path;
    m_bus.connect(PortalNames::kService, m_session, kSessionInterface, u"Closed"_s, this,
                  SLOT(sessionClosed()));
    bindShortcut();
}

/// The user may be asked, and take any time to answer.
void PortalEventTap::bindShortcut()
{
    request(u"BindShortcuts"_s,
            {QVariant::fromValue(QDBusObjectPath(m_session)), shortcuts(), QString()}, {},
            [this](const std::optional<PortalRequest::Answer> &answer, const QString &error) {
                if (answer && answer->code == 1)
                    listShortcuts(u"the user has declined"_s);
                else
                    listShortcuts(answer ? u"the desktop portal does not grant it"_s : error);
            });
}

/// What is in the list is heard, whatever the portal has said to the request; what is not, is not.
void PortalEventTap::listShortcuts(const QString &boundHow)
{
    request(u"ListShortcuts"_s, {QVariant::fromValue(QDBusObjectPath(m_session))}, {},
            [this, boundHow](const std::optional<PortalRequest::Answer> &answer, const QString &) {
                const auto list =
                    portalShortcuts(answer ? answer->results.value(u"shortcuts"_s) : QVariant());
                const bool isListed =
                    std::any_of(list.begin(), list.end(), [this](const PortalShortcut &shortcut) {
                        return shortcut.id == m_id;
                    });
                if (!isListed) {
                    refuse(boundHow);
                    return;
                }
                endAttempt();
                m_isHeard = true;
                m_isSecondTry = false;
                decide(true);
            });
}

void PortalEventTap::request(const QString &method, const QVariantList &arguments,
                             const QVariantMap &options, PortalRequest::OnAnswered onAnswered)
{
    QDBusMessage call = QDBusMessage::createMethodCall(PortalNames::kService, PortalNames::kPath,
                                                       kInterface, method);
    call.setArguments(arguments);
    m_request = std::make_unique<PortalRequest>(m_bus, call, options, std::move(onAnswered));
}

QVariant PortalEventTap::shortcuts() const
{
    return QVariant::fromValue(QList<PortalShortcut>{
        {m_id,
         {{u"description"_s, u"Upload from Clipboard"_s}, {u"preferred_trigger"_s, m_trigger}}}});
}

void PortalEventTap::endAttempt()
{
    m_attempt.reset();
    m_request.reset();
}

void PortalEventTap::closeSession()
{
    if (!m_session.isEmpty())
        m_connection->closeSession(std::exchange(m_session, {}));
}

void PortalEventTap::refuse(const QString &reason)
{
    endAttempt();
    closeSession();
    Log::line(u"⚠️ Global hotkey: "_s + reason);
    if (!m_stranger.isEmpty())
        Log::line(u"⚠️ Global hotkey: the desktop portal does not know this program: "_s
                  + m_stranger);
    decide(false);
}

void PortalEventTap::decide(bool isHeard)
{
    if (const OnDecided onDecided = std::exchange(m_onDecided, nullptr))
        onDecided(isHeard);
}

void PortalEventTap::activated(const QDBusMessage &signal)
{
    const QVariantList arguments = signal.arguments();
    if (!m_isHeard || arguments.size() < 2 || arguments[1].toString() != m_id
        || arguments[0].value<QDBusObjectPath>().path() != m_session)
        return;
    // From a copy, since the handler may destroy this object.
    const OnKeyDown onKeyDown = m_onKeyDown;
    onKeyDown(m_wanted);
}

void PortalEventTap::sessionClosed()
{
    if (!std::exchange(m_isHeard, false))
        return;
    m_session.clear();
    Log::line(u"⚠️ Global hotkey: the desktop has ended it; it is asked for again when the "
              "settings are saved, and at the next start"_s);
}
