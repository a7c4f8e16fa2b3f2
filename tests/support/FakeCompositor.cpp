#include "support/FakeCompositor.h"

#include <ext-data-control-v1-client-protocol.h>
#include <wayland-server-protocol.h>
#include <wlr-data-control-unstable-v1-client-protocol.h>

#include <QFile>

#include <unistd.h>

#include <algorithm>
#include <utility>

namespace {

// The events, which both protocols number alike.
constexpr std::uint32_t kDeviceOffer = 0;
constexpr std::uint32_t kDeviceSelection = 1;
constexpr std::uint32_t kDeviceFinished = 2;
constexpr std::uint32_t kSourceSend = 0;
constexpr std::uint32_t kSourceCancelled = 1;
constexpr std::uint32_t kOfferType = 0;

void destroyResource(wl_client *, wl_resource *resource)
{
    wl_resource_destroy(resource);
}

} // namespace

/// The requests of clients, in the order in which both protocols number them.
struct FakeCompositor::Implementations {
    static Kind *kindOf(wl_resource *resource)
    {
        return static_cast<Kind *>(wl_resource_get_user_data(resource));
    }

    struct Manager {
        void (*createSource)(wl_client *client, wl_resource *manager, std::uint32_t id);
        void (*getDevice)(wl_client *client, wl_resource *manager, std::uint32_t id,
                          wl_resource *seat);
        void (*destroy)(wl_client *client, wl_resource *manager);
    };
    struct Device {
        void (*setSelection)(wl_client *client, wl_resource *device, wl_resource *source);
        void (*destroy)(wl_client *client, wl_resource *device);
        void (*setPrimarySelection)(wl_client *client, wl_resource *device, wl_resource *source);
    };
    struct Source {
        void (*offer)(wl_client *client, wl_resource *source, const char *type);
        void (*destroy)(wl_client *client, wl_resource *source);
    };
    struct Offer {
        void (*receive)(wl_client *client, wl_resource *offer, const char *type, std::int32_t fd);
        void (*destroy)(wl_client *client, wl_resource *offer);
    };

    static void createSource(wl_client *client, wl_resource *manager, std::uint32_t id)
    {
        Kind *const kind = kindOf(manager);
        wl_resource *const source = wl_resource_create(client, kind->source, 1, id);
        wl_resource_set_implementation(source, &kSource, kind, sourceGone);
        kind->compositor->m_sources.append(FakeCompositor::Source{.resource = source, .types = {}});
    }
    static void getDevice(wl_client *client, wl_resource *manager, std::uint32_t id, wl_resource *)
    {
        Kind *const kind = kindOf(manager);
        wl_resource *const device = wl_resource_create(client, kind->device, 1, id);
        wl_resource_set_implementation(device, &kDevice, kind, deviceGone);
        kind->compositor->m_devices.append(
            FakeCompositor::Device{.resource = device, .kind = kind});
        kind->compositor->tell(kind->compositor->m_devices.constLast());
    }
    static void setSelection(wl_client *, wl_resource *device, wl_resource *source)
    {
        kindOf(device)->compositor->claimed(source);
    }
    static void setPrimarySelection(wl_client *, wl_resource *, wl_resource *) { }
    static void offerType(wl_client *, wl_resource *source, const char *type)
    {
        for (FakeCompositor::Source &one : kindOf(source)->compositor->m_sources) {
            if (one.resource == source)
                one.types << QString::fromUtf8(type);
        }
    }
    static void receive(wl_client *, wl_resource *offer, const char *type, std::int32_t fd)
    {
        UniqueFd owned(fd);
        // The user data of an offer that was replaced is null.
        if (Kind *const kind = kindOf(offer))
            kind->compositor->receive(QString::fromUtf8(type), std::move(owned));
    }
    static void deviceGone(wl_resource *device)
    {
        kindOf(device)->compositor->m_devices.removeIf(
            [device](const FakeCompositor::Device &one) { return one.resource == device; });
    }
    static void sourceGone(wl_resource *source)
    {
        FakeCompositor &compositor = *kindOf(source)->compositor;
        compositor.m_sources.removeIf(
            [source](const FakeCompositor::Source &one) { return one.resource == source; });
        if (compositor.m_source != source)
            return;
        compositor.m_source = nullptr;
        compositor.types.clear();
        for (const FakeCompositor::Device &device : std::as_const(compositor.m_devices)) {
            // The client itself may be going.
            if (wl_resource_get_client(device.resource) != wl_resource_get_client(source))
                compositor.tell(device);
        }
    }

    static constexpr Manager kManager = {createSource, getDevice, destroyResource};
    static constexpr Device kDevice = {setSelection, destroyResource, setPrimarySelection};
    static constexpr Source kSource = {offerType, destroyResource};
    static constexpr Offer kOffer = {receive, destroyResource};
};

FakeCompositor::FakeCompositor(const QList<Protocol> &offered, bool hasSeat)
    : m_ext{.compositor = this,
            .protocol = Protocol::Ext,
            .manager = &ext_data_control_manager_v1_interface,
            .device = &ext_data_control_device_v1_interface,
            .source = &ext_data_control_source_v1_interface,
            .offer = &ext_data_control_offer_v1_interface}
    , m_wlr{.compositor = this,
            .protocol = Protocol::Wlr,
            .manager = &zwlr_data_control_manager_v1_interface,
            .device = &zwlr_data_control_device_v1_interface,
            .source = &zwlr_data_control_source_v1_interface,
            .offer = &zwlr_data_control_offer_v1_interface}
    , m_display(wl_display_create())
{
    qputenv("WAYLAND_DISPLAY", wl_display_add_socket_auto(m_display.get()));
    for (const Protocol protocol : offered) {
        Kind &kind = protocol == Protocol::Ext ? m_ext : m_wlr;
        kind.global =
            wl_global_create(m_display.get(), kind.manager, kind.manager->version, &kind, bind);
    }
    if (hasSeat)
        m_seat = wl_global_create(m_display.get(), &wl_seat_interface, 1, nullptr, bindSeat);
    m_readable = std::make_unique<QSocketNotifier>(
        wl_event_loop_get_fd(wl_display_get_event_loop(m_display.get())), QSocketNotifier::Read);
    QObject::connect(m_readable.get(), &QSocketNotifier::activated, m_readable.get(),
                     [this] { run(); });
}

FakeCompositor::~FakeCompositor()
{
    m_readable.reset();
    m_display.reset();
    qunsetenv("WAYLAND_DISPLAY");
}

void FakeCompositor::run()
{
    wl_event_loop_dispatch(wl_display_get_event_loop(m_display.get()), 0);
    wl_display_flush_clients(m_display.get());
}

int FakeCompositor::clients() const
{
    return wl_list_length(wl_display_get_client_list(m_display.get()));
}

void FakeCompositor::bind(wl_client *client, void *data, std::uint32_t version, std::uint32_t id)
{
    auto *const kind = static_cast<Kind *>(data);
    kind->compositor->bound << kind->protocol;
    wl_resource *const manager =
        wl_resource_create(client, kind->manager, static_cast<int>(version), id);
    wl_resource_set_implementation(manager, &Implementations::kManager, kind, nullptr);
}

void FakeCompositor::bindSeat(wl_client *client, void *, std::uint32_t version, std::uint32_t id)
{
    wl_resource_create(client, &wl_seat_interface, static_cast<int>(version), id);
}

void FakeCompositor::tell(const Device &device)
{
    wl_resource *offer = nullptr;
    if (!types.isEmpty()) {
        wl_client *const client = wl_resource_get_client(device.resource);
        // What was offered before is of no use any more.
        wl_client_for_each_resource(
            client,
            [](wl_resource *resource, void *) {
                if (wl_resource_instance_of(resource, &ext_data_control_offer_v1_interface,
                                            &Implementations::kOffer)
                    || wl_resource_instance_of(resource, &zwlr_data_control_offer_v1_interface,
                                               &Implementations::kOffer))
                    wl_resource_set_user_data(resource, nullptr);
                return WL_ITERATOR_CONTINUE;
            },
            nullptr);
        offer = wl_resource_create(client, device.kind->offer, 1, 0);
        wl_resource_set_implementation(offer, &Implementations::kOffer,
                                       wl_resource_get_user_data(device.resource), nullptr);
        wl_resource_post_event(device.resource, kDeviceOffer, offer);
        for (const QString &type : std::as_const(types))
            wl_resource_post_event(offer, kOfferType, type.toUtf8().constData());
    }
    wl_resource_post_event(device.resource, kDeviceSelection, offer);
}

void FakeCompositor::tellAll()
{
    for (const Device &device : std::as_const(m_devices))
        tell(device);
    wl_display_flush_clients(m_display.get());
}

void FakeCompositor::claimed(wl_resource *source)
{
    ++claims;
    switch (onClaim) {
    case OnClaim::Ignore:
        return;
    case OnClaim::Cancel:
        wl_resource_post_event(source, kSourceCancelled);
        return;
    case OnClaim::Accept:
    case OnClaim::TakeOver:
        break;
    }
    cancelSource();
    m_onReceive = nullptr;
    m_source = source;
    for (const Source &one : std::as_const(m_sources)) {
        if (one.resource == source)
            types = one.types;
    }
    for (const Device &device : std::as_const(m_devices))
        tell(device);
    if (onClaim == OnClaim::TakeOver)
        copyText("of another program");
}

void FakeCompositor::cancelSource()
{
    if (wl_resource *const source = std::exchange(m_source, nullptr))
        wl_resource_post_event(source, kSourceCancelled);
}

void FakeCompositor::copy(const QStringList &newTypes, OnReceive onReceive)
{
    cancelSource();
    types = newTypes;
    m_onReceive = std::move(onReceive);
    tellAll();
}

void FakeCompositor::copyText(const QByteArray &text)
{
    copy({QStringLiteral("text/plain;charset=utf-8")}, [text](const QString &, UniqueFd fd) {
        [[maybe_unused]] const ssize_t written =
            ::write(fd.get(), text.constData(), static_cast<std::size_t>(text.size()));
    });
}

void FakeCompositor::clear()
{
    copy({}, nullptr);
}

void FakeCompositor::receive(const QString &type, UniqueFd fd) const
{
    if (m_source)
        paste(type, std::move(fd));
    else if (m_onReceive)
        m_onReceive(type, std::move(fd));
}

void FakeCompositor::paste(const QString &type, UniqueFd fd) const
{
    wl_resource_post_event(m_source, kSourceSend, type.toUtf8().constData(), fd.get());
    wl_display_flush_clients(m_display.get());
}

void FakeCompositor::removeSeat()
{
    for (const Device &device : std::as_const(m_devices))
        wl_resource_post_event(device.resource, kDeviceFinished);
    wl_global_destroy(std::exchange(m_seat, nullptr));
    wl_display_flush_clients(m_display.get());
}
