// Which MAC addresses belong to telephones.
#pragma once

#include "Rex/Entity.h"
#include "Wirekit/EthAddr.h"
#include "Wirekit/IntfId.h"

namespace Identity::NbrClassification {

struct Classification {
   static constexpr uint32_t telephone = 1;  // in `flags`

   uint32_t flags = 0;     // 0: not classified
   uint32_t reserved = 0;  // always 0
   bool operator==(const Classification&) const = default;
};
BOOST_DESCRIBE_STRUCT(Classification, (), (flags, reserved))

struct Neighbor {
   Wirekit::EthAddr ethAddr;
   Wirekit::IntfId intfId;  // the port that it was learned on
   Classification classification;
   bool operator==(const Neighbor&) const = default;
};
BOOST_DESCRIBE_STRUCT(Neighbor, (), (ethAddr, intfId, classification))

// An operator's request to forget classifications.
struct ClearRequest {
   static constexpr uint32_t byEthAddr = 1;  // values of `targetType`; any other means all
   static constexpr uint32_t byIntf = 2;

   double timestamp = 0;
   Rex::String clearedBy;
   Rex::String clearedOn;
   uint32_t targetType = 0;
   Rex::String target;  // the MAC address or the interface's name
   bool operator==(const ClearRequest&) const = default;
};
BOOST_DESCRIBE_STRUCT(ClearRequest, (), (timestamp, clearedBy, clearedOn, targetType, target))

struct CliConfig : Rex::Entity {
   REX_ENTITY(CliConfig, Rex::Entity)
   REX_VALUES(Neighbor, neighbor, Wirekit::EthAddr, ethAddr)
   // By the request's identity.
   REX_MAPPING(Rex::String, ClearRequest, clearRequest)
   REX_ENTITY_END()
};

struct Status : Rex::Entity {
   REX_ENTITY(Status, Rex::Entity)
   REX_VALUES(Neighbor, neighbor, Wirekit::EthAddr, ethAddr)
   // Key and value are the same address.
   REX_MAPPING(Wirekit::EthAddr, Wirekit::EthAddr, phone)
   // When a request was carried out, by its identity; 0 until then.
   REX_MAPPING(Rex::String, double, clearRequestTime)
   REX_ENTITY_END()
};

}  // namespace Identity::NbrClassification
