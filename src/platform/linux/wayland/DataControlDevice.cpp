#include "platform/linux/wayland/DataControlDevice.h"

#include "base/Log.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// Much more than the owner of the clipboard gets: every program waits for the compositor.
constexpr auto kPatienceWithCompositor = 5s;

void logNoAccess()
{
    Log::line(u"⚠️ The compositor gives no access to the clipboard"_s);
}

} // namespace

std::unique_ptr<DataControlDevice> DataControlDevice::open()
{
    std::unique_ptr<WaylandConnection> connection = WaylandConnection::open();
    if (!connection) {
        logNoAccess();
        return nullptr;
    }
    return std::unique_ptr<DataControlDevice>(new DataControlDevice(std::move(connection)));
}

DataControlDevice::DataControlDevice(std::unique_ptr<WaylandConnection> connection)
    : m_connection(std::move(connection)), m_globals(m_connection->get())
{
    m_connection->setLostHandler([this] { loseIt(); });
    m_globals.setRemovedHandler([this](std::uint32_t name) {
        if (m_seat && name == m_seatName)
            loseIt();
    });
}

DataControlDevice::~DataControlDevice()
{
    // The compositor is to know that we have gone from the clipboard before it finds us gone.
    m_selection.reset();
    m_announced.clear();
    m_device.reset();
    m_manager.reset();
    m_connection->flush();
}

QCoro::Task<bool> DataControlDevice::begin()
{
    bool isTold = co_await sync();
    isTold = isTold && bind();
    if (isTold)
        isTold = co_await sync(); // The first selection is told right after the device was made.
    if (!isTold)
        logNoAccess();
    co_return isTold;
}

QCoro::Task<bool> DataControlDevice::sync()
{
    const bool isAnswered = co_await m_connection->sync(kPatienceWithCompositor);
    co_return isAnswered;
}

bool DataControlDevice::bind()
{
    m_protocol = Protocol::offeredBy(m_globals);
    const WaylandGlobals::Global *const seat = m_globals.first(wl_seat_interface.name);
    if (!m_protocol || !seat)
        return false;
    m_seatName = seat->name;
    m_seat.reset(m_globals.bind(*seat, wl_seat_interface));
    m_manager.reset(
        m_globals.bind(*m_globals.first(m_protocol->manager.name), m_protocol->manager));
    m_device.reset(Protocol::create(m_manager.get(), Protocol::ManagerRequest::kGetDevice,
                                    m_protocol->device, m_seat.get()));
    Protocol::listen(m_device.get(), kListener, this);
    return true;
}

std::unique_ptr<DataControlSource> DataControlDevice::claim(const QStringList &types,
                                                            DataControlSource::OnSend onSend)
{
    auto source = std::make_unique<DataControlSource>(
        Protocol::create(m_manager.get(), Protocol::ManagerRequest::kCreateSource,
                         m_protocol->source),
        types, std::move(onSend));
    Protocol::request(m_device.get(), Protocol::DeviceRequest::kSetSelection, source->get());
    return source;
}

void DataControlDevice::select(std::unique_ptr<DataControlOffer> offer)
{
    m_selection = std::move(offer);
    ++m_changes;
    if (m_onChange)
        m_onChange();
}

void DataControlDevice::loseIt()
{
    m_isUsable = false;
    select(nullptr);
}

std::unique_ptr<DataControlOffer> DataControlDevice::taken(wl_proxy *offer)
{
    const auto found =
        std::find_if(m_announced.begin(), m_announced.end(),
                     [offer](const auto &announcedOne) { return announcedOne->get() == offer; });
    std::unique_ptr<DataControlOffer> taken;
    if (found != m_announced.end()) {
        taken = std::move(*found);
        m_announced.erase(found);
    }
    return taken;
}

void DataControlDevice::announced(void *data, wl_proxy *, wl_proxy *offer)
{
    static_cast<DataControlDevice *>(data)->m_announced.push_back(
        std::make_unique<DataControlOffer>(offer));
}

void DataControlDevice::selected(void *data, wl_proxy *, wl_proxy *offer)
{
    auto *const self = static_cast<DataControlDevice *>(data);
    self->select(self->taken(offer));
}

void DataControlDevice::finished(void *data, wl_proxy *)
{
    static_cast<DataControlDevice *>(data)->loseIt();
}

void DataControlDevice::selectedWithMouse(void *data, wl_proxy *, wl_proxy *offer)
{
    static_cast<DataControlDevice *>(data)->taken(offer); // And destroyed: not our matter.
}
