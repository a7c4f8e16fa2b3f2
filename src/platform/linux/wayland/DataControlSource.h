#pragma once

#include "base/UniqueFd.h"
#include "platform/linux/wayland/DataControlProtocol.h"

#include <QStringList>

#include <functional>
#include <memory>
#include <utility>

/// What this program offers as the owner of the clipboard. Main thread. To be destroyed before the
/// connection.
class DataControlSource {
public:
    using OnSend = std::function<void(UniqueFd fd)>;

    /// Takes a new object over, which offers these types. onSend is called by the listener for each
    /// program that wants to read, whichever type it wants; the content is to be written into fd.
    DataControlSource(wl_proxy *source, const QStringList &types, OnSend onSend)
        : m_source(source), m_onSend(std::move(onSend))
    {
        DataControlProtocol::listen(source, kListener, this);
        for (const QString &type : types)
            DataControlProtocol::request(source, DataControlProtocol::SourceRequest::kOffer,
                                         type.toUtf8().constData());
    }
    DataControlSource(const DataControlSource &) = delete;
    DataControlSource &operator=(const DataControlSource &) = delete;

    wl_proxy *get() const { return m_source.get(); }

    /// Another program owns the clipboard now.
    bool isCancelled() const { return m_isCancelled; }

    /// Called once by the listener when another program owns the clipboard.
    void setCancelledHandler(std::function<void()> onCancelled)
    {
        m_onCancelled = std::move(onCancelled);
    }

private:
    static void send(void *data, wl_proxy *, const char *, std::int32_t fd)
    {
        static_cast<DataControlSource *>(data)->m_onSend(UniqueFd(fd));
    }
    static void cancelled(void *data, wl_proxy *)
    {
        auto *const self = static_cast<DataControlSource *>(data);
        self->m_isCancelled = true;
        if (const auto onCancelled = std::exchange(self->m_onCancelled, nullptr))
            onCancelled();
    }
    static constexpr DataControlProtocol::SourceListener kListener = {.send = send,
                                                                      .cancelled = cancelled};

    using Destroy = DataControlProtocol::Destroy<DataControlProtocol::SourceRequest::kDestroy>;
    std::unique_ptr<wl_proxy, Destroy> m_source;
    OnSend m_onSend;
    std::function<void()> m_onCancelled;
    bool m_isCancelled = false;
};
