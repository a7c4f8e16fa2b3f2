#include "platform/linux/wayland/WaylandKeymapReader.h"

#include "base/UniqueFd.h"

#include <QDeadlineTimer>
#include <QPromise>
#include <QThreadPool>

#include <wayland-client.h>

#include <poll.h>
#include <sys/mman.h>

#include <memory>
#include <string_view>

namespace {

template <typename T, void (*destroy)(T *)>
struct Destroy {
    void operator()(T *object) const { destroy(object); }
};
using Display = std::unique_ptr<wl_display, Destroy<wl_display, wl_display_disconnect>>;
using Registry = std::unique_ptr<wl_registry, Destroy<wl_registry, wl_registry_destroy>>;
using Seat = std::unique_ptr<wl_seat, Destroy<wl_seat, wl_seat_destroy>>;
using Keyboard = std::unique_ptr<wl_keyboard, Destroy<wl_keyboard, wl_keyboard_destroy>>;

/// What has been bound and received; the display, which goes last, comes first.
struct Reading {
    Display display;
    Registry registry;
    Seat seat;
    Keyboard keyboard;
    std::optional<WaylandKeymap> keymap;
};

void receiveKeymap(void *data, wl_keyboard *, std::uint32_t format, int descriptor,
                   std::uint32_t size)
{
    const UniqueFd file(descriptor);
    if (format != WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1 || size == 0)
        return;
    void *const text = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file.get(), 0);
    if (text == MAP_FAILED)
        return;
    // The size counts the zero at the end.
    static_cast<Reading *>(data)->keymap = WaylandKeymap::fromText(
        QByteArray::fromRawData(static_cast<const char *>(text), static_cast<int>(size) - 1));
    ::munmap(text, size);
}

// No key is heard: the keyboard sends them, and the changes of modifiers, only to those who have
// a window.
constexpr wl_keyboard_listener kKeyboardListener{
    .keymap = receiveKeymap,
    .enter = [](void *, wl_keyboard *, std::uint32_t, wl_surface *, wl_array *) {},
    .leave = [](void *, wl_keyboard *, std::uint32_t, wl_surface *) {},
    .key = [](void *, wl_keyboard *, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t) {},
    .modifiers = [](void *, wl_keyboard *, std::uint32_t, std::uint32_t, std::uint32_t,
                    std::uint32_t, std::uint32_t) {},
    .repeat_info = [](void *, wl_keyboard *, std::int32_t, std::int32_t) {},
};

void receiveCapabilities(void *data, wl_seat *seat, std::uint32_t capabilities)
{
    auto *const reading = static_cast<Reading *>(data);
    if (!(capabilities & WL_SEAT_CAPABILITY_KEYBOARD) || reading->keyboard)
        return;
    reading->keyboard.reset(wl_seat_get_keyboard(seat));
    wl_keyboard_add_listener(reading->keyboard.get(), &kKeyboardListener, data);
}

constexpr wl_seat_listener kSeatListener{
    .capabilities = receiveCapabilities,
    .name = [](void *, wl_seat *, const char *) {},
};

void receiveGlobal(void *data, wl_registry *registry, std::uint32_t name, const char *interface,
                   std::uint32_t)
{
    auto *const reading = static_cast<Reading *>(data);
    if (reading->seat || std::string_view(interface) != wl_seat_interface.name)
        return;
    // The first version has all that is needed.
    reading->seat.reset(
        static_cast<wl_seat *>(wl_registry_bind(registry, name, &wl_seat_interface, 1)));
    wl_seat_add_listener(reading->seat.get(), &kSeatListener, data);
}

constexpr wl_registry_listener kRegistryListener{
    .global = receiveGlobal,
    .global_remove = [](void *, wl_registry *, std::uint32_t) {},
};

/// Waits for events until the deadline, and handles them.
bool dispatch(wl_display *display, const QDeadlineTimer &deadline)
{
    while (wl_display_prepare_read(display) != 0) {
        if (wl_display_dispatch_pending(display) < 0)
            return false;
    }
    wl_display_flush(display);
    pollfd readable{.fd = wl_display_get_fd(display), .events = POLLIN, .revents = 0};
    if (::poll(&readable, 1, static_cast<int>(deadline.remainingTime())) <= 0) {
        wl_display_cancel_read(display);
        return false;
    }
    return wl_display_read_events(display) == 0 && wl_display_dispatch_pending(display) >= 0;
}

/// Until the compositor has answered all that was sent so far. A limit instead of
/// wl_display_roundtrip(), which waits for ever.
bool roundTrip(wl_display *display, const QDeadlineTimer &deadline)
{
    using Callback = std::unique_ptr<wl_callback, Destroy<wl_callback, wl_callback_destroy>>;
    const Callback callback(wl_display_sync(display));
    bool isDone = false;
    static constexpr wl_callback_listener kListener{
        .done = [](void *data, wl_callback *, std::uint32_t) { *static_cast<bool *>(data) = true; },
    };
    wl_callback_add_listener(callback.get(), &kListener, &isDone);
    while (!isDone) {
        if (!dispatch(display, deadline))
            return false;
    }
    return true;
}

} // namespace

std::optional<WaylandKeymap> WaylandKeymapReader::read(std::chrono::milliseconds limit)
{
    Reading reading;
    reading.display.reset(wl_display_connect(nullptr));
    if (!reading.display)
        return std::nullopt;
    const QDeadlineTimer deadline(limit);
    reading.registry.reset(wl_display_get_registry(reading.display.get()));
    wl_registry_add_listener(reading.registry.get(), &kRegistryListener, &reading);
    // The globals; what the seat has; the keyboard's keymap.
    for (int step = 0; step < 3; ++step) {
        if (!roundTrip(reading.display.get(), deadline))
            return std::nullopt;
    }
    return reading.keymap;
}

QFuture<std::optional<WaylandKeymap>>
WaylandKeymapReader::readBesideTheMainThread(std::chrono::milliseconds limit)
{
    const auto promise = std::make_shared<QPromise<std::optional<WaylandKeymap>>>();
    QThreadPool::globalInstance()->start([promise, limit] {
        promise->start();
        promise->addResult(read(limit));
        promise->finish();
    });
    return promise->future();
}
