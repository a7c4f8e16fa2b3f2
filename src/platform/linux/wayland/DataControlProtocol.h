#pragma once

#include "platform/linux/wayland/WaylandGlobals.h"

#include <wayland-client-core.h>

#include <cstdint>

/// The protocol through which a program without a window may use the clipboard. There are two that
/// differ in the names of their interfaces alone; the requests and events are the same, number by
/// number. The first version of either has all that we need; later ones of the older protocol would
/// also tell of each selection with the mouse.
struct DataControlProtocol {
    const wl_interface &manager;
    const wl_interface &device;
    const wl_interface &source;
    const wl_interface &offer;

    /// The newest that the compositor speaks. Null if it speaks none.
    static const DataControlProtocol *offeredBy(const WaylandGlobals &globals);

    struct ManagerRequest {
        static constexpr std::uint32_t kCreateSource = 0;
        static constexpr std::uint32_t kGetDevice = 1;
        static constexpr std::uint32_t kDestroy = 2;
    };
    struct DeviceRequest {
        static constexpr std::uint32_t kSetSelection = 0;
        static constexpr std::uint32_t kDestroy = 1;
    };
    struct SourceRequest {
        static constexpr std::uint32_t kOffer = 0;
        static constexpr std::uint32_t kDestroy = 1;
    };
    struct OfferRequest {
        static constexpr std::uint32_t kReceive = 0;
        static constexpr std::uint32_t kDestroy = 1;
    };

    /// A pointer to whoever listens, which is handed to its functions; offers may be null in
    /// selections.
    struct DeviceListener {
        void (*announced)(void *, wl_proxy *device, wl_proxy *offer);
        void (*selection)(void *, wl_proxy *device, wl_proxy *offer);
        void (*finished)(void *, wl_proxy *device);
        void (*primarySelection)(void *, wl_proxy *device, wl_proxy *offer);
    };
    struct SourceListener {
        void (*send)(void *, wl_proxy *source, const char *type, std::int32_t fd);
        void (*cancelled)(void *, wl_proxy *source);
    };
    struct OfferListener {
        void (*type)(void *, wl_proxy *offer, const char *type);
    };

    /// Lets listener, which must live as long as the program, hear the events of an object.
    template <typename Listener>
    static void listen(wl_proxy *object, const Listener &listener, void *data)
    {
        // libwayland takes a listener as the array of functions that it is, and only reads it.
        auto *const functions = const_cast<Listener *>(&listener);
        wl_proxy_add_listener(object, reinterpret_cast<void (**)(void)>(functions), data);
    }

    /// Makes a request that has arguments, but no new object.
    template <typename... Arguments>
    static void request(wl_proxy *object, std::uint32_t number, Arguments... arguments)
    {
        wl_proxy_marshal_flags(object, number, nullptr, wl_proxy_get_version(object), 0,
                               arguments...);
    }

    /// Makes a request for a new object. The arguments hold a null pointer in its place.
    template <typename... Arguments>
    static wl_proxy *create(wl_proxy *object, std::uint32_t number, const wl_interface &interface,
                            Arguments... arguments)
    {
        return wl_proxy_marshal_flags(object, number, &interface, wl_proxy_get_version(object), 0,
                                      nullptr, arguments...);
    }

    /// Destroys an object here and there. May be null.
    template <std::uint32_t number>
    struct Destroy {
        void operator()(wl_proxy *object) const
        {
            wl_proxy_marshal_flags(object, number, nullptr, wl_proxy_get_version(object),
                                   WL_MARSHAL_FLAG_DESTROY);
        }
    };
};
