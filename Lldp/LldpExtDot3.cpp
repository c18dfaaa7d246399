#include "Lldp/LldpExtDot3.h"

#include "Lldp/PoeUtils.h"
#include "Rex/Trace.h"

namespace Lldp::Agent {
namespace {

const Rex::TraceHandle trace("LldpExtDot3", false);

enum Subtype {
   macPhyConfigStatus = 1,
   powerViaMdi = 2,
   linkAggregation = 3,
   maximumFrameSize = 4,
};

using Scratch = Rex::Ptr<Lldp::RemoteSystem>;

TlvParseResult tooShort(const char* tlvName, int orgDefInfoLen) {
   TRACE(trace, 0,
         "Error: " << tlvName << " TLV is too short (orgDefInfoLen=" << orgDefInfoLen << ")");
   return TlvParseResultFatalError;
}

// 79.3.1: auto-negotiation support and status (1), advertised capability (2), MAU type (2).
TlvParseResult parseMacPhyConfigStatus(int orgDefInfoLen, const char* orgDefInfo,
                                       const Scratch& remoteSystem) {
   if (orgDefInfoLen < 5) return tooShort("MAC/PHY Configuration/Status", orgDefInfoLen);
   uint8_t autoNegotiation = get8(orgDefInfo);
   MacPhyConfigStatusInfo info{(autoNegotiation & 0x01) != 0, (autoNegotiation & 0x02) != 0,
                               get16(orgDefInfo + 1), get16(orgDefInfo + 3)};
   remoteSystem->macPhyConfigStatusInfoIs(info);
   remoteSystem->macPhyConfigStatusTlvReceivedIs(true);
   TRACE(trace, 6, "MAC/PHY Configuration/Status: " << info);
   return TlvParseResultOk;
}

// 79.3.2: MDI power support (1), PSE power pair (1), power class (1); with the extension of Data
// Link Layer classification also type, source and priority (1), PD requested power (2), PSE
// allocated power (2). An extension that is cut short, and what stands behind it, is not looked at.
TlvParseResult parsePowerViaMdi(int orgDefInfoLen, const char* orgDefInfo,
                                const Scratch& remoteSystem) {
   constexpr int shortFormLen = 3;
   constexpr int extendedFormLen = 8;
   if (orgDefInfoLen < shortFormLen) return tooShort("Power via MDI", orgDefInfoLen);
   PowerViaMdiInfo info;
   info.mdiPowerSupport = get8(orgDefInfo);
   info.psePowerPair = get8(orgDefInfo + 1);
   info.powerClass = get8(orgDefInfo + 2);
   if (orgDefInfoLen >= extendedFormLen) {
      uint8_t typeSourcePriority = get8(orgDefInfo + 3);
      info.tlvFormat = 1;
      info.powerType = typeSourcePriority >> 6;
      info.powerSource = typeSourcePriority >> 4 & 0x03;
      info.powerPriority = typeSourcePriority & 0x03;
      info.pdRequestedPower = get16(orgDefInfo + 4);
      info.pseAllocatedPower = get16(orgDefInfo + 6);
   }
   remoteSystem->powerViaMdiInfoIs(info);
   remoteSystem->powerViaMdiTlvReceivedIs(true);
   TRACE(trace, 6, "Power via MDI: " << info);
   return TlvParseResultOk;
}

// 79.3.3: status (1), aggregated port ID (4). The TLV of the same layout under IEEE 802.1 fills the
// same attributes, so that of two in one frame the later one counts.
TlvParseResult parseLinkAggregation(int orgDefInfoLen, const char* orgDefInfo,
                                    const Scratch& remoteSystem) {
   if (orgDefInfoLen < 5) return tooShort("Link Aggregation", orgDefInfoLen);
   LinkAggregationInfo info{get8(orgDefInfo), get32(orgDefInfo + 1)};
   remoteSystem->linkAggregationInfoIs(info);
   remoteSystem->linkAggregationTlvReceivedIs(true);
   TRACE(trace, 6, "Link Aggregation: " << info);
   return TlvParseResultOk;
}

// 79.3.4: size (2).
TlvParseResult parseMaximumFrameSize(int orgDefInfoLen, const char* orgDefInfo,
                                     const Scratch& remoteSystem) {
   if (orgDefInfoLen < 2) return tooShort("Maximum Frame Size", orgDefInfoLen);
   MaximumFrameSizeInfo info{get16(orgDefInfo)};
   remoteSystem->maximumFrameSizeInfoIs(info);
   remoteSystem->maximumFrameSizeTlvReceivedIs(true);
   TRACE(trace, 6, "Maximum Frame Size: " << info);
   return TlvParseResultOk;
}

bool addPowerViaMdi(char** cursor, char* end, const Lldp::LocalPort& localPort,
                    const Lldp::PortConfig::PtrConst& portConfig, char* info,
                    const Lldp::PortStatus::Ptr& portStatus) {
   if (!localPort.localPortPoeInfo()) return true;
   const Lldp::LocalPortPoeInfo& poeInfo = *localPort.localPortPoeInfo();
   bool tlvReceived = portStatus->powerViaMdiTlvReceived();
   int length = poeInfo.readyToSendTlv() ? PoeUtils::buildPowerViaMdiTlv(info, poeInfo, tlvReceived)
                                         : PoeUtils::maybeBuildFallbackPowerViaMdiTlv(
                                               info, poeInfo, tlvReceived, portConfig, portStatus);
   if (length < 1) return true;
   if (putOrgDefTlv(cursor, end, dot3Oui, powerViaMdi, length, info)) return true;
   TRACE(trace, 2, "Not enough space to Power Via MDI TLV (IEEE Std 802.3at)");
   return false;
}

bool addLinkAggregation(char** cursor, char* end, const Lldp::LocalPort& localPort, char* info) {
   const LinkAggregationInfo& aggregation = localPort.linkAggregationInfo();
   uint8_t status = aggregation.status.value();
   info[0] = static_cast<char>(status);
   put32(info + 1, aggregation.portId);
   if (!putOrgDefTlv(cursor, end, dot3Oui, linkAggregation, 5, info)) {
      TRACE(trace, 2, "Not enough space to add Link Aggregation");
      return false;
   }
   TRACE(trace, 6,
         "Added Link Aggregation: status=0x" << Rex::Hex{status}
                                             << ", portId=" << aggregation.portId);
   return true;
}

bool addMaximumFrameSize(char** cursor, char* end, const Lldp::LocalPort& localPort, char* info) {
   uint16_t maxFrameSize = localPort.maximumFrameSizeInfo().maxFrameSize;
   put16(info, maxFrameSize);
   if (!putOrgDefTlv(cursor, end, dot3Oui, maximumFrameSize, 2, info)) {
      TRACE(trace, 2, "Not enough space to add Maximum Frame Size");
      return false;
   }
   TRACE(trace, 6, "Added Maximum Frame Size: maxFrameSize=" << maxFrameSize);
   return true;
}

}  // namespace

TlvParseResult parseExtDot3Tlv(int subtype, int orgDefInfoLen, const char* orgDefInfo,
                               const Rex::Ptr<Lldp::RemoteSystem>& remoteSystem) {
   switch (subtype) {
      case macPhyConfigStatus:
         return parseMacPhyConfigStatus(orgDefInfoLen, orgDefInfo, remoteSystem);
      case powerViaMdi:
         return parsePowerViaMdi(orgDefInfoLen, orgDefInfo, remoteSystem);
      case linkAggregation:
         return parseLinkAggregation(orgDefInfoLen, orgDefInfo, remoteSystem);
      case maximumFrameSize:
         return parseMaximumFrameSize(orgDefInfoLen, orgDefInfo, remoteSystem);
      default:
         TRACE(trace, 8,
               "Unrecognized 802.3 Organizationally Specific TLV (subtype=" << subtype << ")");
         return TlvParseResultUnrecognized;
   }
}

bool addExtDot3Tlvs(char** cursor, char* end, Lldp::LocalPort::PtrConst localPort,
                    Lldp::PortConfig::PtrConst portConfig, char* info,
                    Lldp::PortStatus::Ptr portStatus) {
   // There is nothing that could build it, and the configuration keeps it off.
   REX_ASSERT(!portConfig->dot3EnabledTlvs().macPhyConfigStatus());
   const auto& enabled = portConfig->dot3EnabledTlvs();
   bool failed = false;
   if (enabled.powerViaMdi()) {
      failed |= !addPowerViaMdi(cursor, end, *localPort, portConfig, info, portStatus);
   }
   if (enabled.linkAggregation()) failed |= !addLinkAggregation(cursor, end, *localPort, info);
   if (enabled.maximumFrameSize()) failed |= !addMaximumFrameSize(cursor, end, *localPort, info);
   return !failed;
}

}  // namespace Lldp::Agent
