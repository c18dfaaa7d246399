#include "Lldp/LldpMed/LldpMed.h"

#include <algorithm>

#include "Lldp/LldpMed/Inventory.h"
#include "Lldp/LldpMed/LocationId.h"
#include "Lldp/LldpMed/Trace.h"

namespace Lldp::Agent::LldpMed {
namespace {

enum Subtype {
   capabilities = 1,
   networkPolicy = 2,
   locationIdentification = 3,
   hardwareRevision = 5,
   firmwareRevision = 6,
   softwareRevision = 7,
   serialNumber = 8,
   manufacturerName = 9,
   modelName = 10,
   assetId = 11,
};

constexpr uint8_t capabilityMask = 0x3F;
constexpr uint8_t mostDeviceType = 5;

// The network policy's word (10.2.3): application type, U, T, X, VLAN ID, priority, DSCP.
constexpr int appTypeShift = 24;
constexpr uint32_t unknownFlag = 1u << 23;
constexpr uint32_t taggedFlag = 1u << 22;
constexpr int vlanIdShift = 9;
constexpr int l2PriorityShift = 6;

TlvParseResult parseCapabilities(int orgDefInfoLen, const char* orgDefInfo,
                                 const Rex::Ptr<Lldp::RemoteSystem>& remoteSystem) {
   if (orgDefInfoLen < 3) {
      TRACE(
          medTrace, 0,
          "Error: LLDP-MED Capabilities TLV is too short (orgDefInfoLen=" << orgDefInfoLen << ")");
      return TlvParseResultFatalError;
   }
   MedCapabilitiesInfo info;
   info.capabilities = get8(orgDefInfo + 1) & capabilityMask;
   info.mediaEndpointDeviceType = std::min(get8(orgDefInfo + 2), mostDeviceType);
   remoteSystem->medCapabilitiesTlvReceivedIs(true);
   remoteSystem->medCapabilitiesInfoIs(info);
   TRACE(medTrace, 6, "LLDP-Med Capabilities: " << info);
   return TlvParseResultOk;
}

TlvParseResult parseNetworkPolicy(int orgDefInfoLen, const char* orgDefInfo,
                                  const Rex::Ptr<Lldp::RemoteSystem>& remoteSystem) {
   if (orgDefInfoLen < 4) {
      TRACE(
          medTrace, 0,
          "Error: LLDP-MED NetworkPolicy TLV is too short (orgDefInfoLen=" << orgDefInfoLen << ")");
      return TlvParseResultFatalError;
   }
   uint32_t word = get32(orgDefInfo);
   NetworkPolicyTlv policy;
   policy.appType = static_cast<uint8_t>(word >> appTypeShift);
   policy.unknown = word & unknownFlag;
   policy.tagged = word & taggedFlag;
   policy.vlanId = word >> vlanIdShift & 0xFFF;
   policy.l2Priority = word >> l2PriorityShift & 0x07;
   policy.dscp = word & 0x3F;
   remoteSystem->networkPolicyTlvIs(policy);
   TRACE(medTrace, 6, "Received LLDP-MED Network Policy: " << policy);
   return TlvParseResultOk;
}

bool putCapabilities(char** cursor, char* end, const MedCapabilitiesInfo& local, char* info) {
   put16(info, local.capabilities);
   info[2] = static_cast<char>(local.mediaEndpointDeviceType);
   bool success = putOrgDefTlv(cursor, end, tiaOui, capabilities, 3, info);
   if (success) {
      TRACE(medTrace, 2, "Added LLDP-MED Capabilities TLV:  " << local);
   } else {
      TRACE(medTrace, 2, "Not enough space to add LLDP-MED Capabilities TLV");
   }
   return success;
}

bool putNetworkPolicy(char** cursor, char* end, const NetworkPolicyTlv& policy, char* info) {
   TRACE(medTrace, 6,
         "building LLDP-MED Network Policy for app " << policy.appType << " with tlv " << policy);
   uint32_t word = uint32_t{policy.appType} << appTypeShift | (policy.dscp & 0x3Fu);
   // Of an untagged policy only the DSCP counts (10.2.3.2).
   if (policy.tagged) {
      word |= taggedFlag | (policy.vlanId & 0xFFFu) << vlanIdShift |
              (policy.l2Priority & 0x07u) << l2PriorityShift;
   }
   put32(info, word);
   bool success = putOrgDefTlv(cursor, end, tiaOui, networkPolicy, 4, info);
   if (success) {
      TRACE(medTrace, 6, "Added LLDP-MED Network Policy TLV for app " << policy.appType);
   } else {
      TRACE(medTrace, 2,
            "Not enough space to add LLDP-MED Network Policy TLV for app " << policy.appType);
   }
   return success;
}

}  // namespace

bool addTlvs(char** cursor, char* end, Lldp::LocalPort::PtrConst localPort,
             Lldp::PortConfig::PtrConst portConfig, char* info, Lldp::PortStatus::Ptr portStatus) {
   if (portConfig->poeAllocatedPowerFallback() == 0 && !portStatus->anyLldpMedReceived()) {
      TRACE(medTrace, 6, "Not adding LLDP-MED TLVs - as we have not received any ");
      return true;
   }
   bool capsOk = true;
   if (portConfig->tiaEnabledTlvs() != PortConfig::TiaEnabledTlvs()) {
      capsOk = putCapabilities(cursor, end, localPort->medCapabilities(), info);
   } else {
      TRACE(medTrace, 6,
            "Not adding LLDP-MED Capabilities TLV - as none of LLDP-MED TLV is enabled in CLI");
   }
   bool policyOk = true;
   for (auto [appType, policy] : localPort->localNetworkPolicyTlv()) {
      policyOk = putNetworkPolicy(cursor, end, policy, info);
      if (!policyOk) break;
   }
   return capsOk && policyOk;
}

TlvParseResult parseTlv(int subtype, int orgDefInfoLen, const char* orgDefInfo,
                        const Rex::Ptr<Lldp::RemoteSystem>& remoteSystem) {
   auto inventory = [&](const char* tlvName,
                        void (RemoteSystem::*store)(const BoundedString32Tlv&)) {
      return Inventory::parseTlv(
          orgDefInfoLen, orgDefInfo, tlvName,
          [&](const BoundedString32Tlv& text) { ((*remoteSystem).*store)(text); });
   };
   switch (subtype) {
      case capabilities:
         return parseCapabilities(orgDefInfoLen, orgDefInfo, remoteSystem);
      case networkPolicy:
         return parseNetworkPolicy(orgDefInfoLen, orgDefInfo, remoteSystem);
      case locationIdentification:
         return LocationId::parseTlv(orgDefInfoLen, orgDefInfo, remoteSystem);
      case hardwareRevision:
         return inventory("Hardware Revision", &RemoteSystem::hardwareRevisionTlvInfoIs);
      case firmwareRevision:
         return inventory("Firmware Revision", &RemoteSystem::firmwareRevisionTlvInfoIs);
      case softwareRevision:
         return inventory("Software Revision", &RemoteSystem::softwareRevisionTlvInfoIs);
      case serialNumber:
         return inventory("Serial Number", &RemoteSystem::serialNumberTlvInfoIs);
      case manufacturerName:
         return inventory("Manufacturer Name", &RemoteSystem::manufacturerNameTlvInfoIs);
      case modelName:
         return inventory("Model Name", &RemoteSystem::modelNameTlvInfoIs);
      case assetId:
         return inventory("Asset ID", &RemoteSystem::assetIDTlvInfoIs);
      default:
         TRACE(medTrace, 8,
               "Unrecognized LLDP-MED Organizationally Specific TLV (subtype=" << subtype << ")");
         return TlvParseResultUnrecognized;
   }
}

}  // namespace Lldp::Agent::LldpMed
