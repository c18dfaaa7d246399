// What a neighbour's table is to show of what a sender says.
#pragma once

#include "Lldp/LldpExtDot3.h"
#include "Lldp/PoeUtils.h"
#include "support/CodecSender.h"

namespace LldpTest {

// The sender as its peer is to know it, if all fits the frame.
inline Lldp::RemoteSystem::Ptr asUnderstood(const CodecSender& sender) {
   const Lldp::LocalSystem& system = *sender.localSystem;
   const Lldp::LocalPort& port = *sender.localPort;
   const Lldp::PortConfig& config = *sender.port.portConfig;
   const Lldp::PortStatus& status = *sender.port.portStatus;
   auto read = Rex::make<Lldp::RemoteSystem>(
       1, Lldp::RemoteSystem::Msap{system.chassisIdentifier(), port.portIdentifier()});

   auto text = [](bool enabled, const Lldp::BoundedString255& said) {
      return Lldp::BoundedString255Tlv{enabled && !said.empty(),
                                       enabled ? said : Lldp::BoundedString255()};
   };
   const auto& basic = config.enabledTlvs();
   read->portDescIs(text(basic.portDescription(), port.portDesc()));
   read->sysNameIs(text(basic.systemName(), system.sysName()));
   read->sysDescIs(text(basic.systemDescription(), system.sysDesc()));
   if (basic.systemCapabilities()) {
      read->systemCapabilitiesIs(Lldp::SystemCapabilitiesTlv::create(
          system.sysCapSupported().value(), system.sysCapEnabled().value()));
   }
   if (config.mgmtAddrTxEnable()) {
      for (auto [key, address] : system.managementAddress()) read->managementAddressIs(address);
   }

   read->portVlanIdTlvReceivedIs(config.portVlanTxEnable());
   if (config.portVlanTxEnable()) read->portVlanIdIs(port.portVlanId());
   const auto& dot3Tlvs = config.dot3EnabledTlvs();
   const auto& poeInfo = *port.localPortPoeInfo();
   if (dot3Tlvs.powerViaMdi()) {
      char info[8];
      bool heard = status.powerViaMdiTlvReceived();
      namespace PoeUtils = Lldp::Agent::PoeUtils;
      int length = poeInfo.readyToSendTlv()
                       ? PoeUtils::buildPowerViaMdiTlv(info, poeInfo, heard)
                       : PoeUtils::maybeBuildFallbackPowerViaMdiTlv(
                             info, poeInfo, heard, sender.port.portConfig, sender.port.portStatus);
      if (length) Lldp::Agent::parseExtDot3Tlv(2, length, info, read);
   }
   read->linkAggregationTlvReceivedIs(dot3Tlvs.linkAggregation());
   if (dot3Tlvs.linkAggregation()) read->linkAggregationInfoIs(port.linkAggregationInfo());
   read->maximumFrameSizeTlvReceivedIs(dot3Tlvs.maximumFrameSize());
   if (dot3Tlvs.maximumFrameSize()) read->maximumFrameSizeInfoIs(port.maximumFrameSizeInfo());

   if (status.anyLldpMedReceived() || config.poeAllocatedPowerFallback()) {
      read->medCapabilitiesTlvReceivedIs(config.tiaEnabledTlvs().bits);
      if (config.tiaEnabledTlvs().bits) read->medCapabilitiesInfoIs(port.medCapabilities());
      for (auto [appType, policy] : port.localNetworkPolicyTlv()) {
         auto said = policy;
         said.unknown = false;
         if (!said.tagged) said.vlanId = said.l2Priority = 0;
         read->networkPolicyTlvIs(said);
      }
   }
   for (auto [key, tlv] : port.unknownOrgDefTlv()) {
      if (key.oui == Lldp::Oui{cee}) break;
      read->unknownOrgDefTlvIs(tlv);
   }
   return read;
}

}  // namespace LldpTest
