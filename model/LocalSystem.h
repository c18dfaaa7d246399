// What the system says about itself, at "l2discovery/lldp/localSystem". The input machines fill it;
// the frame builder reads it.
#pragma once

#include "Foreign/PoePortStatus.h"
#include "Rex/Entity.h"
#include "Wirekit/IntfId.h"
#include "model/Basic.h"
#include "model/Identifiers.h"
#include "model/Organisation.h"
#include "model/RemoteSystem.h"

namespace Lldp {

enum class ManAddrType : uint32_t { manAddrPrimary = 0, manAddrSecondary = 1 };
BOOST_DESCRIBE_ENUM(ManAddrType, manAddrPrimary, manAddrSecondary)

// Rank of a management address: a lower one is sent earlier.
struct ManAddrPriority {
   ManAddrType type{};
   uint32_t primaryPriority = 0;    // rank of the interface
   uint32_t secondaryPriority = 0;  // a secondary's IPv4 address as a number
   Wirekit::IntfId intfId;
   auto operator<=>(const ManAddrPriority&) const = default;
};
BOOST_DESCRIBE_STRUCT(ManAddrPriority, (), (type, primaryPriority, secondaryPriority, intfId))

// How the port stands towards a powered device. Made once for each port, local to the process.
struct LocalPortPoeInfo : Rex::Entity {
   REX_ENTITY(LocalPortPoeInfo, Rex::Entity)
   // The neighbour whose power request this port answers; null for none.
   REX_ATTRIBUTE(RemoteSystem::PtrConst, remoteSystem)
   REX_ATTRIBUTE(Environment::Power::PoePortStatus::PortStatus, poePortStatus)
   REX_ENTITY_END()

   // Whether a full Power via MDI TLV can be built now: the power agent has reported on the port.
   bool readyToSendTlv() const {
      return poePortStatus().state != Environment::Power::poePortUnknown;
   }
};

struct LocalPort : Rex::Entity {
   REX_ENTITY(LocalPort, Rex::Entity)
   REX_KEY(Wirekit::IntfId, intfId)
   REX_ATTRIBUTE(PortIdentifier, portIdentifier)  // has a value before any frame is built
   REX_ATTRIBUTE(BoundedString255, portDesc)      // empty: no TLV
   REX_ORDERED_VALUES(UnknownOrgDefTlv, unknownOrgDefTlv, UnknownOrgDefTlv::Key, key)
   REX_ATTRIBUTE(Bridging::VlanIdOrNone, portVlanId)
   REX_ATTRIBUTE(LinkAggregationInfo, linkAggregationInfo)
   REX_ATTRIBUTE(MaximumFrameSizeInfo, maximumFrameSizeInfo)
   REX_ATTRIBUTE(LocalPortPoeInfo::Ptr, localPortPoeInfo)
   // A network connectivity device that speaks LLDP-MED; bit 1 follows the port's network policies.
   REX_ATTRIBUTE(MedCapabilitiesInfo, medCapabilities, MedCapabilitiesInfo{0x01, 4})
   REX_ORDERED_VALUES(NetworkPolicyTlv, localNetworkPolicyTlv, uint8_t, appType)
   REX_ENTITY_END()
   explicit LocalPort(const Wirekit::IntfId& intfId) : intfId_(intfId) {}

   // Makes the power information, once.
   void initilizeLocalPortPoeInfo() {
      if (!localPortPoeInfo_) localPortPoeInfoIs(Rex::make<LocalPortPoeInfo>());
   }
};

struct LocalSystem : Rex::Entity {
   REX_ENTITY(LocalSystem, Rex::Entity)
   REX_ATTRIBUTE(ChassisIdentifier, chassisIdentifier)  // has a value before any frame is built
   REX_ATTRIBUTE(BoundedString255, sysName)
   REX_ATTRIBUTE(BoundedString255, sysDesc)
   REX_ATTRIBUTE(SystemCapabilitiesMap, sysCapSupported)
   REX_ATTRIBUTE(SystemCapabilitiesMap, sysCapEnabled)
   REX_VALUES(ManagementAddress, managementAddress, ManagementAddress::Key, key)
   REX_ATTRIBUTE(ManagementAddress, ip6ManagementAddress)  // the default value means none
   REX_MAPPING(ManAddrPriority, ManagementAddress::Key, managementAddressPrio)
   REX_CHILDREN(LocalPort, localPort, Wirekit::IntfId)
   REX_ENTITY_END()
};

}  // namespace Lldp
