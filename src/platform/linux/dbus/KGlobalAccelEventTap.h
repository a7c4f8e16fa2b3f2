#pragma once

#include "platform/EventTap.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QList>
#include <QObject>
#include <QString>

#include <memory>

/// EventTap by KDE's service of global shortcuts, which must be running. Where that starts anew the
/// press is claimed anew. A press that another program has is left to it: refused, with a log line
/// that says whose it is.
class KGlobalAccelEventTap final : public QObject, public EventTap {
    Q_OBJECT

public:
    static constexpr QLatin1String kService{"org.kde.kglobalaccel"};

    /// keys: the press wanted, as PressNames::kdeKeys() gives it. Each must be granted.
    KGlobalAccelEventTap(const QDBusConnection &bus, const KeyPress &wanted, QList<int> keys,
                         OnKeyDown onKeyDown, OnDecided onDecided);
    ~KGlobalAccelEventTap() override;

private Q_SLOTS:
    void globalShortcutPressed(const QString &component, const QString &action, qlonglong time);
    void yourShortcutsChanged(const QDBusMessage &signal);

private:
    QDBusPendingCall call(const QString &method, const QVariantList &arguments);
    void claim();
    void takeKeys();
    void listenTo(const QString &componentPath);
    void judge(const QList<int> &granted);
    void refuse(const QString &reason);
    void decide(bool isHeard);

    QDBusConnection m_bus;
    KeyPress m_wanted;
    QList<int> m_keys;
    OnKeyDown m_onKeyDown;
    OnDecided m_onDecided; ///< Empty once it has been called.
    QDBusServiceWatcher m_watcher;
    std::unique_ptr<QObject> m_claim; ///< What answers to the latest claim are for.
    QString m_componentPath; ///< Whose signals are heard; empty before the first claim.
    bool m_isHeard = false;
};
