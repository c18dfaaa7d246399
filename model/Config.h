// The effective configuration, at "l2discovery/lldp/config": what the protocol engine and the codec
// read. The input machines write it from the operator's entities and the switch's state.
#pragma once

#include "Rex/Entity.h"
#include "Wirekit/IntfId.h"
#include "model/AdminStatus.h"
#include "model/NetworkPolicyConfig.h"
#include "model/TlvSets.h"

namespace Lldp {

struct PortConfig : Rex::Entity {
   REX_ENTITY(PortConfig, Rex::Entity)
   using EnabledTlvs = Lldp::EnabledTlvs;
   using Dot3EnabledTlvs = Lldp::Dot3EnabledTlvs;
   using TiaEnabledTlvs = Lldp::TiaEnabledTlvs;
   REX_KEY(Wirekit::IntfId, intfId)
   REX_ATTRIBUTE(AdminStatus, adminStatus, AdminStatus::txAndRx)
   REX_ATTRIBUTE(EnabledTlvs, enabledTlvs)
   REX_ATTRIBUTE(bool, mgmtAddrTxEnable)
   REX_ATTRIBUTE(bool, portVlanTxEnable)
   REX_ATTRIBUTE(Dot3EnabledTlvs, dot3EnabledTlvs)
   REX_ATTRIBUTE(TiaEnabledTlvs, tiaEnabledTlvs)
   // The next four have no writer. The limit bounds a port's memory; the rate lets a burst of the
   // largest table through in one period and stops a loop at line rate.
   REX_ATTRIBUTE(uint32_t, maxRemoteSystems, 256)
   REX_ATTRIBUTE(uint64_t, rxRateLimitCount, 20000)
   REX_ATTRIBUTE(double, rxRateLimitInterval, 10.0)  // seconds
   REX_ATTRIBUTE(bool, rxRateLimitEnabled, true)
   REX_VALUES(NetworkPolicyConfig, networkPolicyConfig, uint8_t, appType)
   REX_ATTRIBUTE(uint32_t, poeAllocatedPowerFallback)
   REX_ENTITY_END()
   explicit PortConfig(const Wirekit::IntfId& intfId) : intfId_(intfId) {}
};

struct Config : Rex::Entity {
   REX_ENTITY(Config, Rex::Entity)
   REX_ATTRIBUTE(uint32_t, messageTxInterval, 30)   // seconds
   REX_ATTRIBUTE(uint32_t, messageTxHoldTime, 120)  // seconds; the TTL of every LLDPDU
   REX_ATTRIBUTE(uint32_t, reinitDelay, 2)          // seconds
   REX_ATTRIBUTE(uint32_t, txDelay, 2)              // seconds; at most messageTxInterval
   REX_ATTRIBUTE(uint32_t, maxTxMgmtAddrs, 1)
   REX_ATTRIBUTE(bool, rxTaggedPacketsDrop)
   REX_ATTRIBUTE(uint32_t, maxTxFrameSize, 1518)  // octets with the frame check sequence; fixed
   REX_CHILDREN(PortConfig, portConfig, Wirekit::IntfId)
   REX_ENTITY_END()
};

}  // namespace Lldp
