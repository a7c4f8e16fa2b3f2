#include "platform/linux/wayland/WaylandKeymapReader.h"

#include "base/UniqueFd.h"
#include "platform/linux/wayland/WaylandConnection.h"
#include "platform/linux/wayland/WaylandGlobals.h"

#include <QDeadlineTimer>
#include <QPromise>
#include <QThreadPool>

#include <sys/mman.h>

#include <memory>

namespace {

template <typename T, void (*destroy)(T *)>
struct Destroy {
    void operator()(T *object) const { destroy(object); }
};
using Seat = std::unique_ptr<wl_seat, Destroy<wl_seat, wl_seat_destroy>>;
using Keyboard = std::unique_ptr<wl_keyboard, Destroy<wl_keyboard, wl_keyboard_destroy>>;

/// What has been bound and received.
struct Reading {
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

} // namespace

std::optional<WaylandKeymap> WaylandKeymapReader::read(std::chrono::milliseconds limit)
{
    const std::unique_ptr<WaylandConnection> connection = WaylandConnection::open();
    if (!connection)
        return std::nullopt;
    const QDeadlineTimer deadline(limit);
    const auto hasAnswered = [&connection, &deadline] {
        return connection->waitForSync(std::chrono::milliseconds(deadline.remainingTime()));
    };
    const WaylandGlobals globals(connection->get());
    if (!hasAnswered())
        return std::nullopt;
    const WaylandGlobals::Global *const seat = globals.first(wl_seat_interface.name);
    if (!seat)
        return std::nullopt;
    Reading reading;
    // The first version has all that is needed.
    reading.seat.reset(reinterpret_cast<wl_seat *>(globals.bind(*seat, wl_seat_interface)));
    wl_seat_add_listener(reading.seat.get(), &kSeatListener, &reading);
    if (!hasAnswered()) // What the seat has.
        return std::nullopt;
    if (!hasAnswered()) // The keyboard's keymap.
        return std::nullopt;
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
