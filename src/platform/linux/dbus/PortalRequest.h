#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QVariantMap>

#include <functional>
#include <optional>
#include <utility>

/// One request to a desktop portal: the call, and the answer that comes as a signal once the user
/// or the desktop has decided, however long that takes. Withdrawn if destroyed before.
class PortalRequest final : public QObject {
    Q_OBJECT

public:
    struct Answer {
        uint code = 0; ///< 0 granted, 1 declined by the user, 2 ended in another way.
        QVariantMap results;

        /// A path among the results; empty if it is none.
        QString path(const QString &name) const;
    };
    /// Called once, from the event loop; absent with the reason if the call itself failed. May
    /// destroy the request.
    using OnAnswered =
        std::function<void(const std::optional<Answer> &answer, const QString &error)>;

    /// Sends the call of a method of a portal, whose last argument, the options, is added here.
    PortalRequest(const QDBusConnection &bus, QDBusMessage call, QVariantMap options,
                  OnAnswered onAnswered);
    ~PortalRequest() override;

    /// Lets another one have the answer. To be called before there is one; not empty.
    void setAnsweredHandler(OnAnswered onAnswered) { m_onAnswered = std::move(onAnswered); }

private Q_SLOTS:
    void onResponse(uint code, const QVariantMap &results);

private:
    void listenTo(const QString &path);
    void finish(const std::optional<Answer> &answer, const QString &error);

    QDBusConnection m_bus;
    OnAnswered m_onAnswered; ///< Empty once it has been called.
    QString m_path;
};
