#include "platform/linux/dbus/KGlobalAccelEventTap.h"

#include "base/AppIdentifier.h"
#include "base/Log.h"
#include "platform/linux/dbus/BusCall.h"

#include <QDBusMessage>
#include <QGuiApplication>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1String kPath("/kglobalaccel");
constexpr QLatin1String kInterface("org.kde.KGlobalAccel");
constexpr QLatin1String kComponentInterface("org.kde.kglobalaccel.Component");

const QString kAction = u"uploadClipboard"_s;

/// SetPresent and NoAutoloading (KGlobalAccelD::SetShortcutFlag): the keys are in force from now
/// on, whatever the service remembers of an earlier run.
constexpr uint kInForceNow = 2 | 4;

/// The action as KDE knows it: two names for its store, two for its settings window.
QStringList actionId()
{
    return {kAppIdentifier, kAction, QGuiApplication::applicationDisplayName(),
            u"Upload from Clipboard"_s};
}

} // namespace

KGlobalAccelEventTap::KGlobalAccelEventTap(const QDBusConnection &bus, const KeyPress &wanted,
                                           QList<int> keys, OnKeyDown onKeyDown,
                                           OnDecided onDecided)
    : m_bus(bus)
    , m_wanted(wanted)
    , m_keys(std::move(keys))
    , m_onKeyDown(std::move(onKeyDown))
    , m_onDecided(std::move(onDecided))
    , m_watcher(kService, m_bus, QDBusServiceWatcher::WatchForOwnerChange)
{
    connect(&m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &, const QString &owner) {
                m_claim.reset();
                m_isHeard = false;
                if (!owner.isEmpty())
                    claim();
            });
    m_bus.connect(kService, kPath, kInterface, u"yourShortcutsChanged"_s, this,
                  SLOT(yourShortcutsChanged(QDBusMessage)));
    claim();
}

KGlobalAccelEventTap::~KGlobalAccelEventTap()
{
    // The service goes on swallowing the keys of programs that have ended.
    if (m_isHeard || m_claim) {
        call(u"setInactive"_s, {actionId()});
        flushBus(m_bus);
    }
}

QDBusPendingCall KGlobalAccelEventTap::call(const QString &method, const QVariantList &arguments)
{
    QDBusMessage message = QDBusMessage::createMethodCall(kService, kPath, kInterface, method);
    message.setArguments(arguments);
    // Started by the bus, outside of KDE's compositor, it would hear nothing.
    message.setAutoStartService(false);
    return m_bus.asyncCall(message);
}

/// Listens before the keys are taken, so that no press is lost.
void KGlobalAccelEventTap::claim()
{
    m_claim = std::make_unique<QObject>();
    call(u"doRegister"_s, {actionId()});
    whenAnswered<QDBusPendingReply<QDBusObjectPath>>(
        call(u"getComponent"_s, {QString(kAppIdentifier)}), m_claim.get(),
        [this](const QDBusPendingReply<QDBusObjectPath> &reply) {
            if (reply.isError()) {
                refuse(reply.error().message());
            } else {
                listenTo(reply.value().path());
                takeKeys();
            }
        });
}

void KGlobalAccelEventTap::takeKeys()
{
    whenAnswered<QDBusPendingReply<QList<int>>>(
        call(u"setShortcut"_s, {actionId(), QVariant::fromValue(m_keys), kInForceNow}),
        m_claim.get(), [this](const QDBusPendingReply<QList<int>> &reply) {
            if (reply.isError())
                refuse(reply.error().message());
            else
                judge(reply.value());
        });
}

void KGlobalAccelEventTap::listenTo(const QString &componentPath)
{
    if (std::exchange(m_componentPath, componentPath) == componentPath)
        return;
    m_bus.connect(kService, componentPath, kComponentInterface, u"globalShortcutPressed"_s, this,
                  SLOT(globalShortcutPressed(QString, QString, qlonglong)));
}

void KGlobalAccelEventTap::judge(const QList<int> &granted)
{
    const auto refused =
        std::find_if(m_keys.begin(), m_keys.end(), [&](int key) { return !granted.contains(key); });
    if (refused == m_keys.end()) {
        m_isHeard = true;
        decide(true);
        return;
    }
    whenAnswered<QDBusPendingReply<QStringList>>(
        call(u"action"_s, {*refused}), m_claim.get(),
        [this](const QDBusPendingReply<QStringList> &reply) {
            // The names of component and action, those for people last.
            const QStringList names = reply.isError() ? QStringList() : reply.value();
            refuse(names.size() < 4 ? u"another program has the key"_s
                                    : u"the key belongs to %1 of %2"_s.arg(names[3], names[2]));
        });
}

/// Gives back what was granted, if anything, and what the service remembers of it.
void KGlobalAccelEventTap::refuse(const QString &reason)
{
    m_claim.reset();
    call(u"unregister"_s, {QString(kAppIdentifier), kAction});
    Log::line(u"⚠️ Global hotkey: "_s + reason);
    decide(false);
}

void KGlobalAccelEventTap::decide(bool isHeard)
{
    if (const OnDecided onDecided = std::exchange(m_onDecided, nullptr))
        onDecided(isHeard);
}

void KGlobalAccelEventTap::globalShortcutPressed(const QString &component, const QString &action,
                                                 qlonglong)
{
    if (!m_isHeard || component != kAppIdentifier || action != kAction)
        return;
    // From a copy, since the handler may destroy this object.
    const OnKeyDown onKeyDown = m_onKeyDown;
    onKeyDown(m_wanted);
}

/// What the user does in KDE's own settings holds until the shortcut is claimed the next time.
void KGlobalAccelEventTap::yourShortcutsChanged(const QDBusMessage &signal)
{
    const QStringList action = signal.arguments().value(0).toStringList();
    if (action.size() >= 2 && action[0] == kAppIdentifier && action[1] == kAction)
        Log::line(u"⚠️ Global hotkey: the desktop's settings have changed its key; this program's "
                  "own settings hold again when they are saved, and at the next start"_s);
}
