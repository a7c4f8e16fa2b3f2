#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QList>
#include <QString>

#include <functional>
#include <map>
#include <optional>

/// A service on the session bus, with a connection of its own, that notes every call and answers as
/// it is told, on all of its objects.
class FakeBusService : public QDBusVirtualObject {
public:
    /// Gives the arguments of the answer; nothing if there is to be none yet.
    using Answer = std::function<std::optional<QVariantList>(const QDBusMessage &call)>;

    /// An empty name: only a sender of signals.
    explicit FakeBusService(const QString &name)
        : m_connectionName(QStringLiteral("fake%1").arg(++s_count))
        , m_bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, m_connectionName))
    {
        m_bus.registerVirtualObject(QStringLiteral("/"), this, QDBusConnection::SubPath);
        if (!name.isEmpty() && !m_bus.registerService(name))
            qFatal("the name of the fake service is taken");
    }
    ~FakeBusService() override
    {
        m_bus.unregisterObject(QStringLiteral("/"), QDBusConnection::UnregisterTree);
        QDBusConnection::disconnectFromBus(m_connectionName);
    }

    /// By method. Others are unknown.
    std::map<QString, Answer> answers;
    QList<QDBusMessage> calls;

    QStringList called() const
    {
        QStringList methods;
        for (const QDBusMessage &call : calls)
            methods << call.member();
        return methods;
    }

    /// The latest call of a method; an invalid message if there was none.
    QDBusMessage lastCall(const QString &method) const
    {
        for (auto call = calls.rbegin(); call != calls.rend(); ++call) {
            if (call->member() == method)
                return *call;
        }
        return {};
    }

    void answer(const QDBusMessage &call, const QVariantList &arguments = {})
    {
        m_bus.send(call.createReply(arguments));
    }

    void emitSignal(const QString &path, const QString &interface, const QString &name,
                    const QVariantList &arguments)
    {
        QDBusMessage signal = QDBusMessage::createSignal(path, interface, name);
        signal.setArguments(arguments);
        m_bus.send(signal);
    }

    QString introspect(const QString &) const override { return {}; }

    bool handleMessage(const QDBusMessage &call, const QDBusConnection &) override
    {
        calls << call;
        const auto found = answers.find(call.member());
        if (found == answers.end()) {
            m_bus.send(call.createErrorReply(QDBusError::UnknownMethod,
                                             QStringLiteral("no ") + call.member()));
            return true;
        }
        call.setDelayedReply(true);
        if (const auto arguments = found->second(call))
            answer(call, *arguments);
        return true;
    }

private:
    static inline int s_count = 0;

    QString m_connectionName;
    QDBusConnection m_bus;
};
