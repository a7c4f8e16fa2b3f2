#pragma once

#include "platform/linux/wayland/DataControlOffer.h"
#include "platform/linux/wayland/DataControlSource.h"
#include "platform/linux/wayland/WaylandConnection.h"
#include "platform/linux/wayland/WaylandGlobals.h"

#include <QCoro/QCoroTask>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

/// The clipboard of the session's first seat, on a connection of its own, which a program without
/// a window may use where the compositor lets it. Must not be destroyed by a listener. Main thread.
/// Must outlive its tasks.
class DataControlDevice {
public:
    /// Null, with a log line, if there is no compositor.
    static std::unique_ptr<DataControlDevice> open();
    ~DataControlDevice();
    DataControlDevice(const DataControlDevice &) = delete;
    DataControlDevice &operator=(const DataControlDevice &) = delete;

    /// Completes once the compositor has told what the clipboard holds; to be called first. False
    /// with a log line if it does not answer, does not share its clipboard, or has no seat.
    [[nodiscard]] QCoro::Task<bool> begin();

    /// Completes once the compositor has dealt with everything requested. False if it does not
    /// answer. One at a time.
    [[nodiscard]] QCoro::Task<bool> sync();

    /// What the owner of the clipboard offers. Null if it is empty, or the seat or the compositor
    /// is gone.
    const DataControlOffer *selection() const { return m_selection.get(); }

    /// Whether the compositor and the seat are there.
    bool isUsable() const { return m_isUsable; }

    /// How often the clipboard has changed hands so far, as far as was told.
    int changes() const { return m_changes; }

    /// Called after each change, also when the seat or the compositor goes.
    void setChangeHandler(std::function<void()> onChange) { m_onChange = std::move(onChange); }

    /// Puts what is offered here on the clipboard once the request is sent. Gives what must be kept
    /// for as long as it is to be there. onSend is called by a listener.
    std::unique_ptr<DataControlSource> claim(const QStringList &types,
                                             DataControlSource::OnSend onSend);

    /// Sends what has been requested so far, without waiting.
    void flush() { m_connection->flush(); }

private:
    explicit DataControlDevice(std::unique_ptr<WaylandConnection> connection);
    bool bind();
    void loseIt();
    void select(std::unique_ptr<DataControlOffer> offer);
    std::unique_ptr<DataControlOffer> taken(wl_proxy *offer);

    static void announced(void *data, wl_proxy *device, wl_proxy *offer);
    static void selected(void *data, wl_proxy *device, wl_proxy *offer);
    static void finished(void *data, wl_proxy *device);
    static void selectedWithMouse(void *data, wl_proxy *device, wl_proxy *offer);
    static constexpr DataControlProtocol::DeviceListener kListener = {
        .announced = announced,
        .selection = selected,
        .finished = finished,
        .primarySelection = selectedWithMouse,
    };

    using Protocol = DataControlProtocol;
    using DestroyManager = Protocol::Destroy<Protocol::ManagerRequest::kDestroy>;
    using DestroyDevice = Protocol::Destroy<Protocol::DeviceRequest::kDestroy>;
    struct DestroySeat {
        // The first version of a seat cannot be destroyed at the compositor.
        void operator()(wl_proxy *seat) const { wl_proxy_destroy(seat); }
    };

    std::unique_ptr<WaylandConnection> m_connection;
    WaylandGlobals m_globals;
    const Protocol *m_protocol = nullptr;
    std::uint32_t m_seatName = 0;
    std::unique_ptr<wl_proxy, DestroySeat> m_seat;
    std::unique_ptr<wl_proxy, DestroyManager> m_manager;
    std::unique_ptr<wl_proxy, DestroyDevice> m_device;
    /// Those of which it is not said yet what they are for.
    std::vector<std::unique_ptr<DataControlOffer>> m_announced;
    std::unique_ptr<DataControlOffer> m_selection;
    int m_changes = 0;
    bool m_isUsable = true;
    std::function<void()> m_onChange;
};
