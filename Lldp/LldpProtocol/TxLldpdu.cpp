#include "Lldp/LldpProtocol/TxLldpdu.h"

#include <array>
#include <cstring>

#include "Lldp/LldpExtDot1.h"
#include "Lldp/LldpExtDot3.h"
#include "Lldp/LldpMed/LldpMed.h"
#include "Lldp/LldpProtocol/Oid.h"
#include "Lldp/LldpProtocol/Tlv.h"
#include "Lldp/LldpProtocol/Trace.h"
#include "Lldp/LldpProtocolSm/Root.h"
#include "Rex/System.h"

namespace Lldp::Agent {
namespace {

// Copies the octets and returns the place behind them.
char* append(char* at, std::string_view octets) {
   std::memcpy(at, octets.data(), octets.size());
   return at + octets.size();
}

// The mandatory and basic TLVs always fit: their values are bounded, the buffer is a whole frame.
void putBasicTlv(char** cursor, char* end, int type, std::string_view info) {
   bool success = putTlv(cursor, end, type, static_cast<int>(info.size()), info.data());
   REX_ASSERT(success);
}

// A chassis or port identifier: its subtype, then its value.
template <class Identifier>
void putIdentifier(char** cursor, char* end, int type, const Identifier& identifier, char* info) {
   info[0] = static_cast<char>(identifier.subtype);
   char* tail = append(info + 1, identifier.value.view());
   putBasicTlv(cursor, end, type, {info, tail});
}

void putMandatoryTlvs(char** cursor, char* end, const LocalSystem& localSystem,
                      const LocalPort& localPort, const Config& config, char* info) {
   putIdentifier(cursor, end, tlvChassisId, localSystem.chassisIdentifier(), info);
   TRACE(codecTrace, 6, "Added Chassis ID: " << localSystem.chassisIdentifier());
   putIdentifier(cursor, end, tlvPortId, localPort.portIdentifier(), info);
   TRACE(codecTrace, 6, "Added Port ID: " << localPort.portIdentifier());
   // The hold time is the TTL itself, not multiplied by the interval; the field has 16 bits.
   auto ttl = static_cast<uint16_t>(config.messageTxHoldTime());
   put16(info, ttl);
   putBasicTlv(cursor, end, tlvTimeToLive, {info, 2});
   TRACE(codecTrace, 6, "Added TTL: " << ttl);
}

void putBasicTlvs(char** cursor, char* end, const LocalSystem& localSystem,
                  const LocalPort& localPort, const PortConfig::EnabledTlvs& enabled, char* info) {
   if (enabled.portDescription() && !localPort.portDesc().empty()) {
      putBasicTlv(cursor, end, tlvPortDescription, localPort.portDesc().view());
      TRACE(codecTrace, 6, "Added Port Description: " << localPort.portDesc());
   }
   if (enabled.systemName() && !localSystem.sysName().empty()) {
      putBasicTlv(cursor, end, tlvSystemName, localSystem.sysName().view());
      TRACE(codecTrace, 6, "Added System Name: " << localSystem.sysName());
   }
   if (enabled.systemDescription() && !localSystem.sysDesc().empty()) {
      putBasicTlv(cursor, end, tlvSystemDescription, localSystem.sysDesc().view());
      TRACE(codecTrace, 6, "Added System Description: " << localSystem.sysDesc());
   }
   if (enabled.systemCapabilities()) {
      uint16_t supported = localSystem.sysCapSupported().value();
      uint16_t enabledCaps = localSystem.sysCapEnabled().value();
      put16(info, supported);
      put16(info + 2, enabledCaps);
      putBasicTlv(cursor, end, tlvSystemCapabilities, {info, 4});
      TRACE(codecTrace, 6,
            "Added System Capabilities: "
                << "supported=0x" << Rex::Hex{supported} << ", enabled=0x"
                << Rex::Hex{enabledCaps});
   }
}

// The IPv6 address goes first and does not count against the limit. The first address that does
// not fit ends them.
bool putManagementAddresses(char** cursor, char* end, const LocalSystem& localSystem,
                            uint32_t maxTxMgmtAddrs) {
   if (!putManagementAddress(cursor, end, localSystem.ip6ManagementAddress())) return false;
   if (maxTxMgmtAddrs == 0) return true;
   uint32_t count = 0;
   for (auto [priority, key] : localSystem.managementAddressPrio()) {
      // A key without its address reads as the default address, which adds nothing but counts.
      if (!putManagementAddress(cursor, end, localSystem.managementAddress(key))) return false;
      if (++count == maxTxMgmtAddrs) break;
   }
   return true;
}

}  // namespace

bool putManagementAddress(char** cursor, char* end, const ManagementAddress& address) {
   if (address == ManagementAddress()) return true;
   Rex::String oid = encodeOid(address.oid);
   int oidBytes = static_cast<int>(oid.bytes());
   int infoLen = address.manAddrLen() + 7 + oidBytes;
   std::array<char, 168> buffer;
   if (infoLen >= static_cast<int>(buffer.size())) return false;

   char* info = buffer.data();
   char* tail = info;
   *tail++ = static_cast<char>(address.manAddrLen());
   *tail++ = static_cast<char>(address.key.manAddrSubtype);
   tail = append(tail, address.key.manAddr.view());
   *tail++ = static_cast<char>(address.ifSubtype);
   put32(tail, address.ifNumber);
   tail += 4;
   int len = static_cast<uint8_t>(oidBytes);
   REX_ASSERT(oidBytes == len);
   *tail++ = static_cast<char>(len);
   tail = append(tail, oid.view());
   REX_ASSERT(tail - info == infoLen);

   if (!putTlv(cursor, end, tlvManagementAddress, infoLen, info)) {
      TRACE(codecTrace, 4, "Not enough space to add Management Address: " << address);
      return false;
   }
   TRACE(codecTrace, 6, "Added Management Address: " << address);
   return true;
}

bool addExternalTlvs(char** cursor, char* end, LocalPort::PtrConst localPort, char* info,
                     PortStatus::Ptr portStatus) {
   // Where the acknowledgement number stands: behind the sub-TLV's header (2), the two versions (1
   // each) and the sequence number (4).
   constexpr int ceeAckOffset = 8;
   bool failed = false;
   auto put = [&](const UnknownOrgDefTlv& tlv) {
      int len = static_cast<int>(tlv.orgDefInfo.bytes());
      if (putOrgDefTlv(cursor, end, tlv.key.oui, static_cast<int>(tlv.key.subtype), len, info)) {
         return;
      }
      failed = true;
      TRACE(codecTrace, 2, "Not enough space to add external TLV " << tlv);
   };

   TRACE(codecTrace, 2, "Look to add external TLV ");
   for (auto [key, tlv] : localPort->unknownOrgDefTlv()) {
      TRACE(codecTrace, 2, "add external TLV " << tlv);
      append(info, tlv.orgDefInfo.view());
      if (key.oui != ceeOui) {
         put(tlv);
         continue;
      }
      // A TLV too short to hold the number leaves it in the scratch space behind its own end.
      put32(info + ceeAckOffset, portStatus->ceeSeqNumToAck());
      TRACE(codecTrace, 2,
            "CEE add external TLV "
                << " - " << tlv << "-len " << tlv.orgDefInfo.bytes());
      put(tlv);
      return !failed;
   }
   return !failed;
}

char* buildTxLldpdu(char* begin, char* end, Rex::Ptr<const Protocol::Root> root,
                    LocalPort::PtrConst localPort, PortConfig::PtrConst portConfig,
                    PortStatus::Ptr portStatus) {
   const LocalSystem& localSystem = *root->localSystem();
   const Config& config = *root->config();
   char* cursor = begin;
   // All TLVs but the last leave room for End of LLDPDU.
   char* usableEnd = end - 2;
   std::array<char, maxTlvInfoLen> info;
   bool insufficientSpace = false;

   TRACE(codecTrace, 4, "Building LLDPDU for port " << localPort->intfId());
   if (localSystem.chassisIdentifier().value.empty() || localPort->portIdentifier().value.empty()) {
      TRACE(codecTrace, 0, "Chassis ID or Port ID has not been set for " << localPort->intfId());
      REX_ASSERT(false);
   }
   putMandatoryTlvs(&cursor, usableEnd, localSystem, *localPort, config, info.data());
   putBasicTlvs(&cursor, usableEnd, localSystem, *localPort, portConfig->enabledTlvs(),
                info.data());
   if (portConfig->mgmtAddrTxEnable() &&
       !putManagementAddresses(&cursor, usableEnd, localSystem, config.maxTxMgmtAddrs())) {
      insufficientSpace = true;
   }

   // The groups of organisation TLVs, each composed in place. A group that lost a TLV does not stop
   // the next one, of which a smaller TLV may still fit.
   infoBuf = info.data();
   char* orgDefInfo = infoBuf + orgDefHeaderLen;
   if (!addExtDot1Tlvs(&cursor, usableEnd, localPort, portConfig, orgDefInfo)) {
      insufficientSpace = true;
      TRACE(codecTrace, 8, "Not enough space for one or more IEEE 802.1 TLVs");
   }
   if (!addExtDot3Tlvs(&cursor, usableEnd, localPort, portConfig, orgDefInfo, portStatus)) {
      insufficientSpace = true;
      TRACE(codecTrace, 8, "Not enough space for one or more IEEE 802.3 TLVs");
   }
   if (!LldpMed::addTlvs(&cursor, usableEnd, localPort, portConfig, orgDefInfo, portStatus)) {
      insufficientSpace = true;
      TRACE(codecTrace, 8, "Not enough space for one or more TIA TLVs");
   }
   if (!addExternalTlvs(&cursor, usableEnd, localPort, orgDefInfo, portStatus)) {
      insufficientSpace = true;
      TRACE(codecTrace, 8, "Not enough space for one or more external TLVs");
   }
   infoBuf = nullptr;

   bool success = putTlv(&cursor, end, tlvEnd, 0, info.data());
   REX_ASSERT(success);
   TRACE(codecTrace, 6, "Added End of LLDPDU");

   portStatus->txFramesTotalInc(1);
   portStatus->lastTxTimeIs(Rex::System::currentTime());
   if (insufficientSpace) {
      TRACE(codecTrace, 8, "Frame had insufficient space");
      portStatus->txFramesLengthExceededInc(1);
   }
   return cursor;
}

}  // namespace Lldp::Agent
