// The operator's layer: written by the switch's command interface and the management API, and only
// read by the agent.
#pragma once

#include "Foreign/L3.h"
#include "Rex/Entity.h"
#include "Wirekit/IntfId.h"
#include "model/AdminStatus.h"
#include "model/Basic.h"
#include "model/NetworkPolicyConfig.h"

namespace Lldp {

struct CliPortConfig : Rex::Entity {
   REX_ENTITY(CliPortConfig, Rex::Entity)
   REX_KEY(Wirekit::IntfId, intfId)
   REX_ATTRIBUTE(AdminStatus, adminStatus, AdminStatus::txAndRx)
   REX_VALUES(NetworkPolicyConfig, networkPolicyConfig, uint8_t, appType)
   REX_ATTRIBUTE(uint32_t, poeAllocatedPowerFallback)
   REX_ENTITY_END()
   explicit CliPortConfig(const Wirekit::IntfId& intfId) : intfId_(intfId) {}
};

enum class MgmtAddrTxMode : uint32_t {
   mgmtAddrTxModeBest = 0,
   mgmtAddrTxModeAll = 1,
   mgmtAddrTxModeIntfName = 2,
};
BOOST_DESCRIBE_ENUM(MgmtAddrTxMode, mgmtAddrTxModeBest, mgmtAddrTxModeAll, mgmtAddrTxModeIntfName)

// Which management addresses go out: the best one, all, or the one of a named interface first.
struct MgmtAddrTxOption {
   MgmtAddrTxMode mgmtAddrTxMode{};
   Rex::String intfName;
   bool operator==(const MgmtAddrTxOption&) const = default;
};
BOOST_DESCRIBE_STRUCT(MgmtAddrTxOption, (), (mgmtAddrTxMode, intfName))

// At "l2discovery/lldp/cliConfig". The timers' defaults are those of IEEE Std 802.1AB-2016, 9.2.5;
// the hold time is the TTL itself, four intervals.
struct CliConfig : Rex::Entity {
   REX_ENTITY(CliConfig, Rex::Entity)
   REX_ATTRIBUTE(uint32_t, messageTxInterval, 30)   // seconds
   REX_ATTRIBUTE(uint32_t, messageTxHoldTime, 120)  // seconds
   REX_ATTRIBUTE(uint32_t, reinitDelay, 2)          // seconds
   REX_ATTRIBUTE(bool, tlvPortDesc, true)
   REX_ATTRIBUTE(bool, tlvSysName, true)
   REX_ATTRIBUTE(bool, tlvSysDesc, true)
   REX_ATTRIBUTE(bool, tlvSysCap, true)
   REX_ATTRIBUTE(bool, tlvMgmtAddr, true)
   REX_ATTRIBUTE(bool, tlvPortVlan, true)
   REX_ATTRIBUTE(bool, tlvLinkAggregation, true)
   REX_ATTRIBUTE(bool, tlvMaximumFrameSize, true)
   REX_ATTRIBUTE(bool, tlvPowerViaMdi, true)
   REX_ATTRIBUTE(bool, tlvNetworkPolicy, true)
   REX_ATTRIBUTE(MgmtAddrTxOption, mgmtAddrTxOption)
   REX_ATTRIBUTE(Rex::String, ip6MgmtAddrIntfName)
   REX_ATTRIBUTE(bool, enabled, true)
   REX_CHILDREN(CliPortConfig, cliPortConfig, Wirekit::IntfId)
   REX_ATTRIBUTE(L3::VrfName, mgmtAddrVrf, Rex::String("default"))
   REX_ATTRIBUTE(bool, rxTaggedPacketsDrop)
   REX_ENTITY_END()
};

// The TLVs that a provider wants sent on a port.
struct ExternalTlvPortConfig : Rex::Entity {
   REX_ENTITY(ExternalTlvPortConfig, Rex::Entity)
   REX_KEY(Wirekit::IntfId, intfId)
   REX_ORDERED_VALUES(UnknownOrgDefTlv, tlv, UnknownOrgDefTlv::Key, key)
   REX_ENTITY_END()
   explicit ExternalTlvPortConfig(const Wirekit::IntfId& intfId) : intfId_(intfId) {}
};

// One provider's entry in the directory "l2discovery/lldp/externalTlvs".
struct ExternalTlvConfig : Rex::Entity {
   REX_ENTITY(ExternalTlvConfig, Rex::Entity)
   REX_ATTRIBUTE(Rex::String, name)
   REX_CHILDREN(ExternalTlvPortConfig, externalTlvPortConfig, Wirekit::IntfId)
   REX_ENTITY_END()
};

// A request to clear the neighbour table. It is carried out once, when its time is later than that
// of the last one carried out.
struct RemTablesClearRequest {
   double requestTime = 0;  // seconds, Rex::System::currentTime()
   Rex::String requesterName;
   Rex::String requesterLine;
   bool operator==(const RemTablesClearRequest&) const = default;
};
BOOST_DESCRIBE_STRUCT(RemTablesClearRequest, (), (requestTime, requesterName, requesterLine))

// At "l2discovery/lldp/remTablesCliConfig".
struct RemTablesCliConfig : Rex::Entity {
   REX_ENTITY(RemTablesCliConfig, Rex::Entity)
   REX_ATTRIBUTE(RemTablesClearRequest, remTablesClearRequest)
   REX_ENTITY_END()
};

}  // namespace Lldp
