#include "Lldp/LldpExtDot1.h"

#include "Rex/Trace.h"

namespace Lldp::Agent {
namespace {

const Rex::TraceHandle trace("LldpExtDot1", false);

enum Subtype {
   portVlanId = 1,
   portAndProtocolVlanId = 2,
   vlanName = 3,
   protocolIdentity = 4,
   vidUsageDigest = 5,
   managementVid = 6,
   linkAggregation = 7,
};

// 0 means none where a VLAN may be missing.
bool isVlanIdOrNone(uint16_t number) {
   return number <= Bridging::VlanIdOrNone::mostValue;
}

using Scratch = Rex::Ptr<Lldp::RemoteSystem>;

TlvParseResult parsePortVlanId(int orgDefInfoLen, const char* orgDefInfo,
                               const Scratch& remoteSystem) {
   if (orgDefInfoLen < 2) {
      TRACE(trace, 0,
            "Error: Port VLAN ID TLV is too short (orgDefInfoLen=" << orgDefInfoLen << ")");
      return TlvParseResultFatalError;
   }
   uint16_t pvid = get16(orgDefInfo);
   if (!isVlanIdOrNone(pvid)) {
      TRACE(trace, 0, "Error: Port VLAN ID is out-of-range (pvid=" << pvid << ")");
      return TlvParseResultError;
   }
   remoteSystem->portVlanIdIs(pvid);
   remoteSystem->portVlanIdTlvReceivedIs(true);
   TRACE(trace, 6, "Port VLAN ID: " << pvid);
   return TlvParseResultOk;
}

TlvParseResult parsePortAndProtocolVlanId(int orgDefInfoLen, const char* orgDefInfo,
                                          const Scratch& remoteSystem) {
   constexpr uint8_t supportedFlag = 0x02;
   constexpr uint8_t enabledFlag = 0x04;
   if (orgDefInfoLen < 3) {
      TRACE(trace, 0,
            "Error: Port And Protocol VLAN ID TLV is too short (orgDefInfoLen=" << orgDefInfoLen
                                                                                << ")");
      return TlvParseResultFatalError;
   }
   uint8_t flags = get8(orgDefInfo);
   uint16_t ppvid = get16(orgDefInfo + 1);
   bool supported = flags & supportedFlag;
   bool enabled = flags & enabledFlag;
   if (enabled && !supported) {
      TRACE(trace, 0,
            "Error: Port And Protocol VLAN ID is enabled but not supported (ppvid="
                << ppvid << ", flags=0x" << Rex::Hex{flags} << ")");
      return TlvParseResultError;
   }
   if (!isVlanIdOrNone(ppvid)) {
      TRACE(trace, 0, "Error: Port And Protocol VLAN ID is out-of-range (ppvid=" << ppvid << ")");
      return TlvParseResultError;
   }
   PortAndProtocolVlan vlan{ppvid, supported, enabled};
   remoteSystem->portAndProtocolVlanIs(vlan);
   TRACE(trace, 6, "Port And Protocol VLAN ID: " << vlan);
   return TlvParseResultOk;
}

TlvParseResult parseVlanName(int orgDefInfoLen, const char* orgDefInfo,
                             const Scratch& remoteSystem) {
   constexpr int fixedLen = 3;
   if (orgDefInfoLen < 4) {
      TRACE(trace, 0, "Error: VLAN Name TLV is too short (orgDefInfoLen=" << orgDefInfoLen << ")");
      return TlvParseResultFatalError;
   }
   uint16_t vlanId = get16(orgDefInfo);
   int vlanNameLen = get8(orgDefInfo + 2);
   if (vlanNameLen == 0 || vlanNameLen > static_cast<int>(BoundedString32::maxBytes)) {
      TRACE(trace, 0,
            "Error: VLAN Name length is out-of-range (vlanNameLen=" << vlanNameLen << ")");
      return TlvParseResultError;
   }
   if (vlanId == 0 || !isVlanIdOrNone(vlanId)) {
      TRACE(trace, 0, "Error: VLAN Name VLAN ID is out-of-range (vlanId=" << vlanId << ")");
      return TlvParseResultError;
   }
   if (vlanNameLen + fixedLen > orgDefInfoLen) {
      TRACE(trace, 0,
            "Error: VLAN Name TLV is too short (orgDefInfoLen=" << orgDefInfoLen << ", vlanNameLen="
                                                                << vlanNameLen << ")");
      return TlvParseResultFatalError;
   }
   VlanName name{vlanId, BoundedString32(orgDefInfo + fixedLen, static_cast<size_t>(vlanNameLen))};
   remoteSystem->vlanNameIs(name);
   TRACE(trace, 6, "VLAN Name: " << name);
   return TlvParseResultOk;
}

TlvParseResult parseProtocolIdentity(int orgDefInfoLen, const char* orgDefInfo,
                                     const Scratch& remoteSystem) {
   if (orgDefInfoLen < 1) {
      TRACE(trace, 0,
            "Error: Protocol Identity TLV is too short (orgDefInfoLen=" << orgDefInfoLen << ")");
      return TlvParseResultFatalError;
   }
   int protoIdLen = get8(orgDefInfo);
   if (protoIdLen == 0) {
      TRACE(trace, 0,
            "Error: Protocol Identity length is out-of-range (protoIdLen=" << protoIdLen << ")");
      return TlvParseResultError;
   }
   if (protoIdLen + 1 > orgDefInfoLen) {
      TRACE(trace, 0,
            "Error: Protocol Identity TLV is too short (orgDefInfoLen="
                << orgDefInfoLen << ", protoIdLen=" << protoIdLen << ")");
      return TlvParseResultFatalError;
   }
   // Numbered in the order of the frame.
   ProtocolIdentityInfo info{remoteSystem->protocolIdentityInfos() + 1,
                             BoundedString255(orgDefInfo + 1, static_cast<size_t>(protoIdLen))};
   remoteSystem->protocolIdentityInfoIs(info);
   TRACE(trace, 6, "Protocol Identity: " << info);
   return TlvParseResultOk;
}

TlvParseResult parseVidUsageDigest(int orgDefInfoLen, const char* orgDefInfo,
                                   const Scratch& remoteSystem) {
   if (orgDefInfoLen < 4) {
      TRACE(trace, 0,
            "Error: VID Usage Digest TLV is too short (orgDefInfoLen=" << orgDefInfoLen << ")");
      return TlvParseResultFatalError;
   }
   uint32_t digest = get32(orgDefInfo);
   remoteSystem->vidUsageDigestIs(digest);
   remoteSystem->vidUsageDigestTlvReceivedIs(true);
   TRACE(trace, 6, "VID Usage Digest: " << digest);
   return TlvParseResultOk;
}

TlvParseResult parseManagementVid(int orgDefInfoLen, const char* orgDefInfo,
                                  const Scratch& remoteSystem) {
   if (orgDefInfoLen < 2) {
      TRACE(trace, 0,
            "Error: Management VID TLV is too short (orgDefInfoLen=" << orgDefInfoLen << ")");
      return TlvParseResultFatalError;
   }
   uint16_t mvid = get16(orgDefInfo);
   if (!isVlanIdOrNone(mvid)) {
      TRACE(trace, 0, "Error: Management VID is out-of-range (mvid=" << mvid << ")");
      return TlvParseResultError;
   }
   remoteSystem->managementVidIs(mvid);
   remoteSystem->managementVidTlvReceivedIs(true);
   TRACE(trace, 6, "Management VID: " << mvid);
   return TlvParseResultOk;
}

TlvParseResult parseLinkAggregation(int orgDefInfoLen, const char* orgDefInfo,
                                    const Scratch& remoteSystem) {
   if (orgDefInfoLen < 5) {
      TRACE(trace, 0,
            "Error: Link Aggregation TLV is too short (orgDefInfoLen=" << orgDefInfoLen << ")");
      return TlvParseResultFatalError;
   }
   LinkAggregationInfo info{get8(orgDefInfo), get32(orgDefInfo + 1)};
   remoteSystem->linkAggregationInfoIs(info);
   remoteSystem->linkAggregationTlvReceivedIs(true);
   TRACE(trace, 6, "Link Aggregation: " << info);
   return TlvParseResultOk;
}

}  // namespace

TlvParseResult parseExtDot1Tlv(int subtype, int orgDefInfoLen, const char* orgDefInfo,
                               const Rex::Ptr<Lldp::RemoteSystem>& remoteSystem) {
   switch (subtype) {
      case portVlanId:
         return parsePortVlanId(orgDefInfoLen, orgDefInfo, remoteSystem);
      case portAndProtocolVlanId:
         return parsePortAndProtocolVlanId(orgDefInfoLen, orgDefInfo, remoteSystem);
      case vlanName:
         return parseVlanName(orgDefInfoLen, orgDefInfo, remoteSystem);
      case protocolIdentity:
         return parseProtocolIdentity(orgDefInfoLen, orgDefInfo, remoteSystem);
      case vidUsageDigest:
         return parseVidUsageDigest(orgDefInfoLen, orgDefInfo, remoteSystem);
      case managementVid:
         return parseManagementVid(orgDefInfoLen, orgDefInfo, remoteSystem);
      case linkAggregation:
         return parseLinkAggregation(orgDefInfoLen, orgDefInfo, remoteSystem);
      default:
         TRACE(trace, 8,
               "Unrecognized 802.1 Organizationally Specific TLV (subtype=" << subtype << ")");
         return TlvParseResultUnrecognized;
   }
}

bool addExtDot1Tlvs(char** cursor, char* end, Lldp::LocalPort::PtrConst localPort,
                    Lldp::PortConfig::PtrConst portConfig, char* info) {
   if (!portConfig->portVlanTxEnable()) return true;
   // Sent as it stands, also when it is 0 for none.
   uint16_t pvid = localPort->portVlanId().value();
   put16(info, pvid);
   bool success = putOrgDefTlv(cursor, end, dot1Oui, portVlanId, 2, info);
   if (success) {
      TRACE(trace, 6, "Added Port VLAN ID: pvid=" << pvid);
   } else {
      TRACE(trace, 2, "Not enough space to add Port VLAN ID");
   }
   return success;
}

}  // namespace Lldp::Agent
