#pragma once

#include "base/UniqueFd.h"

#include <QByteArray>
#include <QList>
#include <QSocketNotifier>
#include <QString>
#include <QStringList>

#include <wayland-server-core.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

/// A Wayland compositor that has nothing but clipboards, the one that WAYLAND_DISPLAY names until
/// it goes. It runs in the event loop of the test and misbehaves on demand.
class FakeCompositor {
public:
    enum class Protocol { Ext, Wlr };

    /// What it does when a client puts something on the clipboard.
    enum class OnClaim {
        Accept,
        Ignore, ///< As if it had never been said.
        Cancel, ///< The client is told that it owns the clipboard no more.
        TakeOver, ///< Another program follows so closely that the client hears of both at once.
    };

    explicit FakeCompositor(const QList<Protocol> &offered, bool hasSeat = true);
    ~FakeCompositor();
    FakeCompositor(const FakeCompositor &) = delete;
    FakeCompositor &operator=(const FakeCompositor &) = delete;

    /// Called with each form in which a client wants to read what the test has copied, and with
    /// where it is to be written.
    using OnReceive = std::function<void(const QString &type, UniqueFd fd)>;

    /// Another program copies something.
    void copy(const QStringList &types, OnReceive onReceive);
    /// Another program copies a text.
    void copyText(const QByteArray &text);
    /// The clipboard is emptied.
    void clear();

    /// Asks the owner for its content, which is to be written into fd, as another program.
    void paste(const QString &type, UniqueFd fd) const;

    /// Does nothing more, or goes on.
    void freeze(bool isFrozen) { m_readable->setEnabled(!isFrozen); }
    void removeSeat();

    OnClaim onClaim = OnClaim::Accept;
    QStringList types; ///< What is on the clipboard.
    QList<Protocol> bound; ///< By clients, one after the other.
    int claims = 0; ///< By clients.
    int clients() const;

private:
    /// One of the two kinds of clipboard.
    struct Kind {
        FakeCompositor *compositor = nullptr;
        Protocol protocol = Protocol::Ext;
        const wl_interface *manager = nullptr;
        const wl_interface *device = nullptr;
        const wl_interface *source = nullptr;
        const wl_interface *offer = nullptr;
        wl_global *global = nullptr;
    };
    struct Device {
        wl_resource *resource = nullptr;
        const Kind *kind = nullptr;
    };
    struct Source {
        wl_resource *resource = nullptr;
        QStringList types;
    };
    struct Implementations;

    static void bind(wl_client *client, void *kind, std::uint32_t version, std::uint32_t id);
    static void bindSeat(wl_client *client, void *, std::uint32_t version, std::uint32_t id);
    void run();
    void tell(const Device &device);
    void tellAll();
    void claimed(wl_resource *source);
    void cancelSource();
    void receive(const QString &type, UniqueFd fd) const;

    struct Destroy {
        void operator()(wl_display *display) const
        {
            wl_display_destroy_clients(display);
            wl_display_destroy(display);
        }
    };
    Kind m_ext;
    Kind m_wlr;
    QList<Device> m_devices;
    QList<Source> m_sources;
    wl_resource *m_source = nullptr; ///< Of the client that owns the clipboard; else null.
    OnReceive m_onReceive; ///< Of the test, if that owns it.
    std::unique_ptr<wl_display, Destroy> m_display;
    wl_global *m_seat = nullptr;
    std::unique_ptr<QSocketNotifier> m_readable;
};
