#include "platform/linux/wayland/DataControlProtocol.h"

#include <ext-data-control-v1-client-protocol.h>
#include <wlr-data-control-unstable-v1-client-protocol.h>

#include <array>

namespace {

using Protocol = DataControlProtocol;

// The numbers are the same in both, and ours.
static_assert(Protocol::ManagerRequest::kCreateSource
              == EXT_DATA_CONTROL_MANAGER_V1_CREATE_DATA_SOURCE);
static_assert(Protocol::ManagerRequest::kCreateSource
              == ZWLR_DATA_CONTROL_MANAGER_V1_CREATE_DATA_SOURCE);
static_assert(Protocol::ManagerRequest::kGetDevice == EXT_DATA_CONTROL_MANAGER_V1_GET_DATA_DEVICE);
static_assert(Protocol::ManagerRequest::kGetDevice == ZWLR_DATA_CONTROL_MANAGER_V1_GET_DATA_DEVICE);
static_assert(Protocol::ManagerRequest::kDestroy == EXT_DATA_CONTROL_MANAGER_V1_DESTROY);
static_assert(Protocol::ManagerRequest::kDestroy == ZWLR_DATA_CONTROL_MANAGER_V1_DESTROY);
static_assert(Protocol::DeviceRequest::kSetSelection == EXT_DATA_CONTROL_DEVICE_V1_SET_SELECTION);
static_assert(Protocol::DeviceRequest::kSetSelection == ZWLR_DATA_CONTROL_DEVICE_V1_SET_SELECTION);
static_assert(Protocol::DeviceRequest::kDestroy == EXT_DATA_CONTROL_DEVICE_V1_DESTROY);
static_assert(Protocol::DeviceRequest::kDestroy == ZWLR_DATA_CONTROL_DEVICE_V1_DESTROY);
static_assert(Protocol::SourceRequest::kOffer == EXT_DATA_CONTROL_SOURCE_V1_OFFER);
static_assert(Protocol::SourceRequest::kOffer == ZWLR_DATA_CONTROL_SOURCE_V1_OFFER);
static_assert(Protocol::SourceRequest::kDestroy == EXT_DATA_CONTROL_SOURCE_V1_DESTROY);
static_assert(Protocol::SourceRequest::kDestroy == ZWLR_DATA_CONTROL_SOURCE_V1_DESTROY);
static_assert(Protocol::OfferRequest::kReceive == EXT_DATA_CONTROL_OFFER_V1_RECEIVE);
static_assert(Protocol::OfferRequest::kReceive == ZWLR_DATA_CONTROL_OFFER_V1_RECEIVE);
static_assert(Protocol::OfferRequest::kDestroy == EXT_DATA_CONTROL_OFFER_V1_DESTROY);
static_assert(Protocol::OfferRequest::kDestroy == ZWLR_DATA_CONTROL_OFFER_V1_DESTROY);

constexpr std::array<Protocol, 2> kNewestFirst = {
    Protocol{.manager = ext_data_control_manager_v1_interface,
             .device = ext_data_control_device_v1_interface,
             .source = ext_data_control_source_v1_interface,
             .offer = ext_data_control_offer_v1_interface},
    Protocol{.manager = zwlr_data_control_manager_v1_interface,
             .device = zwlr_data_control_device_v1_interface,
             .source = zwlr_data_control_source_v1_interface,
             .offer = zwlr_data_control_offer_v1_interface},
};

} // namespace

const DataControlProtocol *DataControlProtocol::offeredBy(const WaylandGlobals &globals)
{
    for (const Protocol &protocol : kNewestFirst) {
        if (globals.first(protocol.manager.name))
            return &protocol;
    }
    return nullptr;
}
