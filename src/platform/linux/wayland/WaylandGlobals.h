#pragma once

#include <QByteArray>

#include <wayland-client-protocol.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

/// What a compositor offers. Filled when the connection is synchronised. Main thread.
class WaylandGlobals {
public:
    struct Global {
        std::uint32_t name = 0; ///< The number by which it is bound.
        QByteArray interface;
    };

    /// Asks for the list. To be destroyed before the connection.
    explicit WaylandGlobals(wl_display *display);
    WaylandGlobals(const WaylandGlobals &) = delete;
    WaylandGlobals &operator=(const WaylandGlobals &) = delete;

    /// The one of that kind which was announced first. Null if there is none.
    const Global *first(QByteArrayView interface) const;

    /// An object for a global, in the first version of its interface. To be destroyed by the
    /// caller.
    wl_proxy *bind(const Global &global, const wl_interface &interface) const;

    /// Called by a listener with the name of each global that goes.
    void setRemovedHandler(std::function<void(std::uint32_t name)> onRemoved)
    {
        m_onRemoved = std::move(onRemoved);
    }

private:
    struct Destroy {
        void operator()(wl_registry *registry) const { wl_registry_destroy(registry); }
    };

    static void added(void *data, wl_registry *registry, std::uint32_t name, const char *interface,
                      std::uint32_t version);
    static void removed(void *data, wl_registry *registry, std::uint32_t name);
    static constexpr wl_registry_listener kListener = {.global = added, .global_remove = removed};

    std::unique_ptr<wl_registry, Destroy> m_registry;
    std::vector<Global> m_globals;
    std::function<void(std::uint32_t name)> m_onRemoved;
};
