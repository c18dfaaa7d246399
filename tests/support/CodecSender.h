// One port with all that the frame builder reads.
#pragma once

#include <string>
#include <vector>

#include "Lldp/LldpProtocol/TxLldpdu.h"
#include "Lldp/LldpProtocolSm/Root.h"
#include "model/LocalSystem.h"
#include "support/CodecPort.h"
#include "support/FrameBuilder.h"

namespace LldpTest {

struct CodecSender {
   CodecSender() {
      root->configIs(port.config);
      root->localSystemIs(localSystem);
      localSystem->chassisIdentifierIs(
          {Lldp::ChassisIdSubtype::macAddress, Lldp::ChassisId("abcdef", 6)});
      localPort->portIdentifierIs({Lldp::PortIdSubtype::interfaceName, Lldp::PortId("Et7", 3)});
      localPort->initilizeLocalPortPoeInfo();
   }

   static Lldp::ManagementAddress addressOf(unsigned family, const std::string& octets,
                                            uint32_t ifNumber) {
      Lldp::ManagementAddress made;
      made.key = {static_cast<uint8_t>(family), Lldp::ManAddress(octets.data(), octets.size())};
      made.ifSubtype = 2;
      made.ifNumber = ifNumber;
      return made;
   }

   // All that the basic TLVs can say; of the addresses the last one goes first.
   void sayBasics(const std::vector<std::string>& ip4 = {"addA", "addB", "addC"}) {
      localSystem->sysNameIs(Lldp::BoundedString255(Rex::String("name")));
      localSystem->sysDescIs(Lldp::BoundedString255(Rex::String("description")));
      localSystem->sysCapSupportedIs(0x14);
      localSystem->sysCapEnabledIs(0x04);
      localPort->portDescIs(Lldp::BoundedString255(Rex::String("port")));
      port.portConfig->enabledTlvsIs({0x0F});
      port.portConfig->mgmtAddrTxEnableIs(true);
      port.config->maxTxMgmtAddrsIs(0xFFFFFFFF);
      uint32_t rank = 0;
      for (const auto& octets : ip4) {
         auto address = addressOf(1, octets, ++rank);
         localSystem->managementAddressIs(address);
         localSystem->managementAddressPrioIs({.primaryPriority = 10 - rank}, address.key);
      }
   }

   // All that the organisations' TLVs can say, to a neighbour that spoke LLDP-MED and Power via
   // MDI.
   void sayOrganisations() {
      using namespace Environment::Power;
      port.portConfig->portVlanTxEnableIs(true);
      port.portConfig->dot3EnabledTlvsIs({0x0E});
      port.portConfig->tiaEnabledTlvsIs({0x02});
      localPort->portVlanIdIs(100);
      localPort->localPortPoeInfo()->poePortStatusIs(
          {poePortDelivering, 255, 4, poePowerPairSpare, poePriorityHigh});
      localPort->linkAggregationInfoIs({3, 1000007});
      localPort->maximumFrameSizeInfoIs({9236});
      localPort->medCapabilitiesIs({0x03, 4});
      localPort->localNetworkPolicyTlvIs({1, false, true, 4094, 5, 46});
      localPort->localNetworkPolicyTlvIs({2, false, false, 100, 7, 63});
      heard = port.receive(
          mandatory(9) + organization(tia, 1, be16(0x3F) + be8(3)) +
          organization(dot3, 2, be8(0) + be8(1) + be8(4) + be8(0x50) + be16(240) + be16(130)));
      localPort->localPortPoeInfo()->remoteSystemIs(heard);
   }

   void external(uint32_t oui, uint32_t subtype, uint32_t index, const std::string& info) {
      localPort->unknownOrgDefTlvIs(
          {{{oui}, subtype, index}, Lldp::BoundedString507(info.data(), info.size())});
   }

   char* build(char* begin, char* end) const {
      return Lldp::Agent::buildTxLldpdu(begin, end, root, localPort, port.portConfig,
                                        port.portStatus);
   }
   // The frame that fits so many octets.
   std::string build(size_t room = 1500) const {
      std::string lldpdu(room, '\0');
      lldpdu.resize(
          static_cast<size_t>(build(lldpdu.data(), lldpdu.data() + room) - lldpdu.data()));
      return lldpdu;
   }

   CodecPort port;
   Lldp::LocalSystem::Ptr localSystem = Rex::make<Lldp::LocalSystem>();
   Lldp::LocalPort::Ptr localPort = localSystem->localPortIs(port.intfId);
   Rex::Ptr<Lldp::Agent::Protocol::Root> root =
       Rex::make<Lldp::Agent::Protocol::Root>("protocolRoot");
   Lldp::RemoteSystem::PtrConst heard;  // the neighbour that the TLVs answer
};

}  // namespace LldpTest
