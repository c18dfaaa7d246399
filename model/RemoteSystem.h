// One learned neighbour.
#pragma once

#include "Rex/Entity.h"
#include "Wirekit/EthAddr.h"
#include "model/Basic.h"
#include "model/Identifiers.h"
#include "model/LastLldpdu.h"
#include "model/LocationId.h"
#include "model/Organisation.h"

namespace Lldp {

// Each `...TlvReceived` flag is set only by the parser that filled the value: a default value with
// the flag false means that the last frame did not hold that TLV.
struct RemoteSystem : Rex::Entity {
   // The key of a neighbour on a port (IEEE Std 802.1AB-2016, 9.2.7.7.1).
   struct Msap {
      ChassisIdentifier chassisIdentifier;
      PortIdentifier portIdentifier;

      size_t hash() const { return Rex::hashOf(*this); }
      auto operator<=>(const Msap&) const = default;
   };

   REX_ENTITY(RemoteSystem, Rex::Entity)
   REX_KEY(int, index)
   REX_KEY(Msap, msap)
   REX_ATTRIBUTE(uint16_t, ttl)  // seconds
   REX_ATTRIBUTE(BoundedString255Tlv, portDesc)
   REX_ATTRIBUTE(BoundedString255Tlv, sysName)
   REX_ATTRIBUTE(BoundedString255Tlv, sysDesc)
   REX_ATTRIBUTE(SystemCapabilitiesTlv, systemCapabilities)
   REX_VALUES(ManagementAddress, managementAddress, ManagementAddress::Key, key)
   REX_VALUES(UnknownTlv, unknownTlv, UnknownTlvType, type)
   REX_VALUES(UnknownOrgDefTlv, unknownOrgDefTlv, UnknownOrgDefTlv::Key, key)
   REX_ATTRIBUTE(bool, portVlanIdTlvReceived)
   REX_ATTRIBUTE(Bridging::VlanIdOrNone, portVlanId)
   REX_VALUES(PortAndProtocolVlan, portAndProtocolVlan, Bridging::VlanIdOrNone, ppvid)
   REX_VALUES(VlanName, vlanName, Bridging::VlanId, vlanId)
   REX_VALUES(ProtocolIdentityInfo, protocolIdentityInfo, ProtocolIdentityInfo::Index, index)
   REX_ATTRIBUTE(bool, vidUsageDigestTlvReceived)
   REX_ATTRIBUTE(uint32_t, vidUsageDigest)
   REX_ATTRIBUTE(bool, managementVidTlvReceived)
   REX_ATTRIBUTE(Bridging::VlanIdOrNone, managementVid)
   REX_ATTRIBUTE(bool, linkAggregationTlvReceived)
   REX_ATTRIBUTE(LinkAggregationInfo, linkAggregationInfo)
   REX_ATTRIBUTE(bool, macPhyConfigStatusTlvReceived)
   REX_ATTRIBUTE(MacPhyConfigStatusInfo, macPhyConfigStatusInfo)
   REX_ATTRIBUTE(bool, powerViaMdiTlvReceived)
   REX_ATTRIBUTE(PowerViaMdiInfo, powerViaMdiInfo)
   REX_ATTRIBUTE(bool, medCapabilitiesTlvReceived)
   REX_ATTRIBUTE(MedCapabilitiesInfo, medCapabilitiesInfo)
   REX_VALUES(NetworkPolicyTlv, networkPolicyTlv, uint8_t, appType)
   REX_ATTRIBUTE(bool, maximumFrameSizeTlvReceived)
   REX_ATTRIBUTE(MaximumFrameSizeInfo, maximumFrameSizeInfo)
   REX_ATTRIBUTE(BoundedString32Tlv, hardwareRevisionTlvInfo)
   REX_ATTRIBUTE(BoundedString32Tlv, firmwareRevisionTlvInfo)
   REX_ATTRIBUTE(BoundedString32Tlv, softwareRevisionTlvInfo)
   REX_ATTRIBUTE(BoundedString32Tlv, serialNumberTlvInfo)
   REX_ATTRIBUTE(BoundedString32Tlv, manufacturerNameTlvInfo)
   REX_ATTRIBUTE(BoundedString32Tlv, modelNameTlvInfo)
   REX_ATTRIBUTE(BoundedString32Tlv, assetIDTlvInfo)
   REX_ATTRIBUTE(LocationId, locationId)
   // Times in seconds, Rex::System::currentTime().
   REX_ATTRIBUTE(double, creationTime)
   REX_ATTRIBUTE(double, lastChangeTime)
   REX_ATTRIBUTE(double, lastRefreshTime)
   REX_ATTRIBUTE(double, expiryTime)
   REX_ATTRIBUTE(Wirekit::EthAddr, ethAddr)  // source of the latest frame
   REX_ENTITY_END()

   // The octets of the LLDPDU that was read into this last: the same again would change nothing.
   // For the codec, which alone writes what it read; no attribute, and no one else's.
   LastLldpdu lastLldpdu;

   RemoteSystem(int index, const Msap& msap) : index_(index), msap_(msap) {}
   const ChassisIdentifier& chassisId() const { return msap_.chassisIdentifier; }
};
BOOST_DESCRIBE_STRUCT(RemoteSystem::Msap, (), (chassisIdentifier, portIdentifier))

}  // namespace Lldp
