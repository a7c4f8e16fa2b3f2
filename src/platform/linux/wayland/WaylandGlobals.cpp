#include "platform/linux/wayland/WaylandGlobals.h"

#include <algorithm>

WaylandGlobals::WaylandGlobals(wl_display *display) : m_registry(wl_display_get_registry(display))
{
    wl_registry_add_listener(m_registry.get(), &kListener, this);
}

const WaylandGlobals::Global *WaylandGlobals::first(QByteArrayView interface) const
{
    const auto found =
        std::find_if(m_globals.begin(), m_globals.end(),
                     [interface](const Global &global) { return global.interface == interface; });
    return found == m_globals.end() ? nullptr : &*found;
}

wl_proxy *WaylandGlobals::bind(const Global &global, const wl_interface &interface) const
{
    return static_cast<wl_proxy *>(wl_registry_bind(m_registry.get(), global.name, &interface, 1));
}

void WaylandGlobals::added(void *data, wl_registry *, std::uint32_t name, const char *interface,
                           std::uint32_t)
{
    static_cast<WaylandGlobals *>(data)->m_globals.push_back(
        {.name = name, .interface = interface});
}

void WaylandGlobals::removed(void *data, wl_registry *, std::uint32_t name)
{
    auto *const self = static_cast<WaylandGlobals *>(data);
    std::erase_if(self->m_globals, [name](const Global &global) { return global.name == name; });
    if (self->m_onRemoved)
        self->m_onRemoved(name);
}
