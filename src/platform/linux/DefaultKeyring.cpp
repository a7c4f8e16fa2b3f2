#include "platform/linux/DefaultKeyring.h"

#include "platform/linux/dbus/BusCall.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusServiceWatcher>
#include <QDBusVariant>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

const QString kService = u"org.freedesktop.secrets"_s;
const QString kServicePath = u"/org/freedesktop/secrets"_s;
const QString kServiceInterface = u"org.freedesktop.Secret.Service"_s;
const QString kCollectionInterface = u"org.freedesktop.Secret.Collection"_s;
const QString kPromptInterface = u"org.freedesktop.Secret.Prompt"_s;
const QString kDefaultAlias = u"default"_s;

/// How the service spells "no object".
const QString kNoPath = u"/"_s;

/// The argument of that number; an invalid path when reply is an error or something else.
QString pathArgument(const QDBusMessage &reply, int index)
{
    return reply.arguments().value(index).value<QDBusObjectPath>().path();
}

} // namespace

void DefaultKeyring::watch(std::function<void()> onChanged)
{
    m_onChanged = std::move(onChanged);
    // Services tell one change by several signals.
    m_changed.setSingleShot(true);
    m_changed.callOnTimeout(this, [this] { m_onChanged(); });

    QDBusConnection bus = QDBusConnection::sessionBus();
    for (const QString &name :
         {u"CollectionCreated"_s, u"CollectionDeleted"_s, u"CollectionChanged"_s})
        bus.connect(kService, kServicePath, kServiceInterface, name, this, SLOT(noteChange()));
    for (const QString &name : {u"ItemCreated"_s, u"ItemDeleted"_s, u"ItemChanged"_s})
        bus.connect(kService, QString(), kCollectionInterface, name, this, SLOT(noteChange()));
    bus.connect(kService, QString(), u"org.freedesktop.DBus.Properties"_s, u"PropertiesChanged"_s,
                this, SLOT(noteChange()));

    const auto owner =
        new QDBusServiceWatcher(kService, bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    QObject::connect(owner, &QDBusServiceWatcher::serviceOwnerChanged, this,
                     [this](const QString &, const QString &oldOwner) {
                         if (!oldOwner.isEmpty())
                             finish(false); // It took its question with it.
                         noteChange();
                     });
}

void DefaultKeyring::ask(IfMissing ifMissing, std::function<void()> onUsable)
{
    m_onUsable = std::move(onUsable);
    if (ifMissing == IfMissing::Make)
        m_ifMissing = ifMissing;
    if (std::exchange(m_asking, true))
        return;
    callService(u"ReadAlias"_s, {kDefaultAlias}, &DefaultKeyring::onAliasRead);
}

void DefaultKeyring::call(const QString &path, const QString &interface, const QString &method,
                          const QVariantList &arguments, ReplyHandler onReply)
{
    QDBusMessage message = QDBusMessage::createMethodCall(kService, path, interface, method);
    message.setArguments(arguments);
    whenAnswered(callBus(QDBusConnection::sessionBus(), message), this,
                 [this, onReply](const QDBusPendingReply<> &reply) {
                     if (m_asking)
                         (this->*onReply)(reply.reply());
                 });
}

void DefaultKeyring::callService(const QString &method, const QVariantList &arguments,
                                 ReplyHandler onReply)
{
    call(kServicePath, kServiceInterface, method, arguments, onReply);
}

void DefaultKeyring::onAliasRead(const QDBusMessage &reply)
{
    const QString collection = pathArgument(reply, 0);
    if (collection == kNoPath && m_ifMissing == IfMissing::Make) {
        const QVariantMap properties{{kCollectionInterface + u".Label"_s, u"Default keyring"_s}};
        callService(u"CreateCollection"_s, {properties, kDefaultAlias},
                    &DefaultKeyring::onPromptGiven);
    } else if (collection == kNoPath || collection.isEmpty()) {
        finish(false);
    } else {
        const QList<QDBusObjectPath> paths{QDBusObjectPath(collection)};
        callService(u"Unlock"_s, {QVariant::fromValue(paths)}, &DefaultKeyring::onPromptGiven);
    }
}

void DefaultKeyring::onPromptGiven(const QDBusMessage &reply)
{
    const QString path = pathArgument(reply, 1);
    if (path.isEmpty() || path == kNoPath) {
        finish(!path.isEmpty());
        return;
    }
    m_promptPath = path;
    QDBusConnection::sessionBus().connect(kService, path, kPromptInterface, u"Completed"_s, this,
                                          SLOT(onPromptCompleted(bool, QDBusVariant)));
    constexpr auto kNoWindow = ""_L1;
    call(path, kPromptInterface, u"Prompt"_s, {QString(kNoWindow)}, &DefaultKeyring::onPromptShown);
}

void DefaultKeyring::onPromptShown(const QDBusMessage &reply)
{
    if (reply.type() == QDBusMessage::ErrorMessage)
        finish(false);
}

void DefaultKeyring::onPromptCompleted(bool dismissed, const QDBusVariant &)
{
    finish(!dismissed);
    noteChange();
}

void DefaultKeyring::noteChange()
{
    if (m_onChanged)
        m_changed.start();
}

void DefaultKeyring::finish(bool usable)
{
    if (!m_promptPath.isEmpty())
        QDBusConnection::sessionBus().disconnect(kService, std::exchange(m_promptPath, {}),
                                                 kPromptInterface, u"Completed"_s, this,
                                                 SLOT(onPromptCompleted(bool, QDBusVariant)));
    m_asking = false;
    m_ifMissing = IfMissing::Leave;
    const std::function<void()> onUsable = std::exchange(m_onUsable, {});
    if (usable && onUsable)
        onUsable();
}
