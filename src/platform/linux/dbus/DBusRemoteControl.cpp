#include "platform/linux/dbus/DBusRemoteControl.h"

#include "base/AppIdentifier.h"
#include "base/Log.h"
#include "platform/linux/dbus/ApplicationInterface.h"
#include "platform/linux/dbus/RunningInstance.h"
#include "platform/linux/x11/X11Startup.h"

#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <QDeadlineTimer>
#include <QWindow>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Answer = RunningInstance::Answer;

namespace {

constexpr const char *kTokenVariable = "XDG_ACTIVATION_TOKEN";

/// Before the name is claimed once more.
constexpr auto kPause = 10ms;

/// Whether the action wants a program that runs already: there is nothing to stop or to quit else.
bool needsRunning(std::optional<RemoteAction> action)
{
    return action == RemoteAction::StopMonitoring || action == RemoteAction::Quit;
}

int failure(const QString &text)
{
    std::fprintf(stderr, "tessery: %s\n", qUtf8Printable(text));
    return EXIT_FAILURE;
}

} // namespace

DBusRemoteControl::DBusRemoteControl(StartEnvironment environment)
    : m_bus(QDBusConnection::sessionBus()), m_environment(std::move(environment))
{
}

DBusRemoteControl::~DBusRemoteControl()
{
    // The name first, so that nobody who sees the name finds no object.
    if (m_interface)
        m_bus.unregisterService(kAppIdentifier);
    m_bus.unregisterObject(ApplicationInterface::kPath);
}

std::optional<int> DBusRemoteControl::begin(std::optional<RemoteAction> action,
                                            std::chrono::milliseconds limit)
{
    if (needsRunning(action) && !m_bus.isConnected())
        return EXIT_SUCCESS;
    const QDeadlineTimer deadline(limit);
    while (needsRunning(action) || claim() == Claim::Taken) {
        const std::chrono::milliseconds left(std::max<qint64>(deadline.remainingTime(), 1));
        QString problem;
        switch (RunningInstance::ask(m_bus, action, m_environment.platformData(), left, &problem)) {
        case Answer::Done:
            return EXIT_SUCCESS;
        case Answer::NotThere:
            if (needsRunning(action))
                return EXIT_SUCCESS;
            // It has just ended, and the name is free. Who is about to end lets us wait for that.
            if (!deadline.hasExpired()) {
                std::this_thread::sleep_for(kPause);
                continue;
            }
            [[fallthrough]];
        case Answer::Silent:
            return failure(u"Tessery runs already, but does not answer"_s);
        case Answer::Refused:
            return failure(u"The running Tessery does not understand: "_s + problem);
        }
    }
    if (action)
        m_early.push_back({*action,
                           m_environment.activationToken.isEmpty()
                               ? m_environment.startupId
                               : m_environment.activationToken});
    return std::nullopt;
}

DBusRemoteControl::Claim DBusRemoteControl::claim()
{
    if (!m_bus.isConnected()) {
        Log::line(u"⚠️ No session bus: further starts of Tessery will not find this one"_s);
        return Claim::Impossible;
    }
    if (!m_interface) {
        m_interface = new ApplicationInterface(
            &m_object, [this](std::optional<RemoteAction> action, const QString &token) {
                receive({action, token});
            });
        // Before the name is ours, so that nobody who sees the name finds no object.
        m_bus.registerObject(ApplicationInterface::kPath, &m_object,
                             QDBusConnection::ExportAdaptors);
    }
    const auto reply = m_bus.interface()->registerService(
        kAppIdentifier, QDBusConnectionInterface::DontQueueService,
        QDBusConnectionInterface::DontAllowReplacement);
    if (!reply.isValid()) {
        Log::line(u"⚠️ No name on the session bus: "_s + reply.error().message());
        return Claim::Impossible;
    }
    if (reply.value() != QDBusConnectionInterface::ServiceRegistered)
        return Claim::Taken;
    if (m_environment.isStartedByBus) {
        // It delivers what it has started us for right after the name has become ours: what has
        // arrived once it has answered one question more is that, and what comes later is not.
        m_awaitsReasonOfStart = true;
        (void)m_bus.interface()->isServiceRegistered(kAppIdentifier).value();
        QMetaObject::invokeMethod(
            &m_object, [this] { m_awaitsReasonOfStart = false; }, Qt::QueuedConnection);
    }
    return Claim::Ours;
}

void DBusRemoteControl::receive(const Request &request)
{
    const bool isReasonOfStart = std::exchange(m_awaitsReasonOfStart, false);
    if (isReasonOfStart && !request.action) {
        // To be started was all that was wanted. No window will come of it.
        X11Startup::end(request.activationToken);
        return;
    }
    if (m_isReady)
        deliver(request);
    else
        m_early.push_back(request);
}

void DBusRemoteControl::deliver(const Request &request)
{
    if (request.action)
        m_handlers.perform(*request.action, request.activationToken);
    else
        m_handlers.activate(request.activationToken);
    X11Startup::end(request.activationToken);
}

void DBusRemoteControl::setHandlers(Handlers handlers)
{
    m_handlers = std::move(handlers);
    QMetaObject::invokeMethod(
        &m_object,
        [this] {
            m_isReady = true;
            X11Startup::end(m_environment.startupId);
            for (const Request &request : std::exchange(m_early, {}))
                deliver(request);
        },
        Qt::QueuedConnection);
}

void DBusRemoteControl::close()
{
    m_early.clear();
    if (m_interface)
        m_interface->close();
}

void DBusRemoteControl::bringToFront(QWindow &window, const QString &activationToken,
                                     const std::function<void()> &show)
{
    // On Wayland the toolkit takes the token from the environment.
    if (!activationToken.isEmpty())
        qputenv(kTokenVariable, activationToken.toUtf8());
    X11Startup::bringToFront(window, activationToken, show);
    qunsetenv(kTokenVariable);
}
