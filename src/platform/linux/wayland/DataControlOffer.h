#pragma once

#include "platform/linux/wayland/DataControlProtocol.h"

#include <QStringList>

#include <memory>

/// What the owner of the clipboard offers. Main thread. To be destroyed before the connection.
class DataControlOffer {
public:
    /// Takes the new object of an event over.
    explicit DataControlOffer(wl_proxy *offer) : m_offer(offer)
    {
        DataControlProtocol::listen(offer, kListener, this);
    }
    DataControlOffer(const DataControlOffer &) = delete;
    DataControlOffer &operator=(const DataControlOffer &) = delete;

    wl_proxy *get() const { return m_offer.get(); }

    const QStringList &types() const { return m_types; }

    /// Asks the owner to write the content in that form into fd, a copy of which it gets. An owner
    /// that has been replaced writes nothing.
    void receive(const QByteArray &type, int fd) const
    {
        DataControlProtocol::request(get(), DataControlProtocol::OfferRequest::kReceive,
                                     type.constData(), fd);
    }

private:
    static void typeOffered(void *data, wl_proxy *, const char *type)
    {
        static_cast<DataControlOffer *>(data)->m_types << QString::fromUtf8(type);
    }
    static constexpr DataControlProtocol::OfferListener kListener = {.type = typeOffered};

    using Destroy = DataControlProtocol::Destroy<DataControlProtocol::OfferRequest::kDestroy>;
    std::unique_ptr<wl_proxy, Destroy> m_offer;
    QStringList m_types;
};
