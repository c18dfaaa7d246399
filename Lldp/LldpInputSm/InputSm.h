// Carries the switch's system-wide values into Config and LocalSystem, and holds the machines of
// single interfaces' configuration. Exists on an active supervisor alone.
#pragma once

#include "Foreign/Bridging.h"
#include "Foreign/EntityMib.h"
#include "Foreign/Ip.h"
#include "Foreign/Ip6.h"
#include "Foreign/Routing.h"
#include "Foreign/System.h"
#include "Interface/EthPhyIntfConfig.h"
#include "Interface/IntfStatus.h"
#include "Lldp/LldpInputSm/CliPortConfigSm.h"
#include "Lldp/LldpInputSm/EthPhyIntfConfigSm.h"
#include "Lldp/LldpInputSm/ExternalTlvConfigSm.h"
#include "Lldp/LldpInputSm/Ip6IntfStatusSm.h"
#include "Lldp/LldpInputSm/IpIntfStatusSm.h"
#include "Lldp/LldpInputSm/SwitchIntfConfigSm.h"
#include "Rex/Dir.h"
#include "Rex/Owned.h"
#include "Rex/StateMachine.h"
#include "model/CliConfig.h"
#include "model/Config.h"

namespace Lldp::Agent::Input {

class Root;

class InputSm : public Rex::StateMachine {
 public:
   InputSm(Interface::AllEthPhyIntfConfigDir::PtrConst ethPhyIntfConfigDir,
           Bridging::Config::PtrConst bridgingConfig,
           Bridging::HwCapabilities::PtrConst bridgingHwCapabilities, Ip::Status::PtrConst ipStatus,
           Ip6::Status::PtrConst ip6Status, Routing::Config::PtrConst routingConfig,
           EntityMib::SysDescr::PtrConst sysDescr, Rex::Dir::PtrConst externalTlvs,
           System::NetStatus::PtrConst netStatus, Lldp::CliConfig::PtrConst cliConfig,
           Interface::AllIntfStatusDir::PtrConst allIntfStatusDir, Rex::Ptr<Root> root);
   ~InputSm() override;

   const Ip::Status::PtrConst& ipStatus() const { return ipStatus_; }
   const Ip6::Status::PtrConst& ip6Status() const { return ip6Status_; }
   const Rex::Dir::PtrConst& externalTlvs() const { return externalTlvs_; }
   const Interface::AllIntfStatusDir::PtrConst& allIntfStatusDir() const {
      return allIntfStatusDir_;
   }

   // Derives a row anew from the operator's configuration.
   void doSyncPortConfig(const PortConfig::Ptr& portConfig);
   // Its administrative status alone.
   void doSyncPortConfigAdminStatus(const PortConfig::Ptr& portConfig);
   // Its network policies alone.
   void doSyncPortConfigNetworkPolicy(const PortConfig::Ptr& portConfig);
   // Fills in a new port's VLAN and the TLVs that others want sent on it.
   void doSyncLocalPort(const LocalPort::Ptr& localPort);
   // Moves a port from what governed it to what governs it now.
   void doNotifyPortLagChange(const Wirekit::IntfId& portId, const Wirekit::IntfId& oldLag,
                              const Wirekit::IntfId& newLag);
   // Chooses the IPv6 management address anew.
   void handleIp6ManagementAddress();

 private:
   void handleInitialized();
   void handleIntfConfig(const Wirekit::IntfId& intfId);
   void handleSwitchIntfConfig(const Wirekit::IntfId& intfId);
   void handleBridgeMacAddr();
   void handleBridgingMaxFrameSize();
   void handleRouting();
   void handleDescription();
   void handleExternalTlvsEntityPtr(const Rex::String& name);
   void handleHostnameOrDomainName();
   void handleMessageTxInterval();
   void handleMessageTxHoldTime();
   void handleReinitDelay();
   void handleEnabledTlvs();
   void handleEnabled();
   void handleCliPortConfig(const Wirekit::IntfId& intfId);
   void handleRxTaggedPacketsDrop();
   void doClose() override;

   // What concerns management addresses; in InputSmAddresses.cpp.
   void watchAddresses();
   void handleIntfStatusOrIpIntfStatus(const Wirekit::IntfId& intfId);
   void handleIp6IntfStatus(const Wirekit::IntfId& intfId);
   void handleIp6StatusIntf(const Wirekit::IntfId& intfId);
   void handleIntfStatus(const Wirekit::IntfId& intfId);
   void handleMgmtAddrVrf();
   void handleMgmtAddrTxOption();

   const Interface::AllEthPhyIntfConfigDir::PtrConst ethPhyIntfConfigDir_;
   const Bridging::Config::PtrConst bridgingConfig_;
   const Bridging::HwCapabilities::PtrConst bridgingHwCapabilities_;
   const Ip::Status::PtrConst ipStatus_;
   const Ip6::Status::PtrConst ip6Status_;
   const Routing::Config::PtrConst routingConfig_;
   const EntityMib::SysDescr::PtrConst sysDescr_;
   const Rex::Dir::PtrConst externalTlvs_;
   const System::NetStatus::PtrConst netStatus_;
   const Lldp::CliConfig::PtrConst cliConfig_;
   const Interface::AllIntfStatusDir::PtrConst allIntfStatusDir_;
   const Rex::Ptr<Root> root_;

   REX_MACHINES(Ip6IntfStatusSm, ip6IntfStatus, Wirekit::IntfId)
   REX_MACHINES(EthPhyIntfConfigSm, ethPhyIntfConfigSm, Wirekit::IntfId)
   REX_MACHINES(SwitchIntfConfigSm, switchIntfConfigSm, Wirekit::IntfId)
   REX_MACHINES(IpIntfStatusSm, ipIntfStatusSm, Wirekit::IntfId)
   REX_MACHINES(ExternalTlvConfigSm, externalTlvConfigSm, Rex::String)
   REX_MACHINES(CliPortConfigSm, cliPortConfigSm, Wirekit::IntfId)
};

}  // namespace Lldp::Agent::Input
