// The input root with everything that its machines read, filled by hand and without packet access.
#pragma once

#include "Lldp/LldpInputSm/Root.h"
#include "support/TestContext.h"

namespace LldpTest {

struct InputFixture {
   TestContext context;
   Lldp::CliConfig::Ptr cliConfig = Rex::make<Lldp::CliConfig>();
   Lldp::RemTablesCliConfig::Ptr remTablesCliConfig = Rex::make<Lldp::RemTablesCliConfig>();
   Lldp::RemTablesStatus::Ptr remTablesStatus = Rex::make<Lldp::RemTablesStatus>();
   Lldp::Config::Ptr config = Rex::make<Lldp::Config>();
   Lldp::LocalSystem::Ptr localSystem = Rex::make<Lldp::LocalSystem>();
   Lldp::Status::Ptr status = Rex::make<Lldp::Status>();
   Bridging::Config::Ptr bridging = Rex::make<Bridging::Config>();
   Bridging::HwCapabilities::Ptr hwCapabilities = Rex::make<Bridging::HwCapabilities>();
   Routing::Config::Ptr routing = Rex::make<Routing::Config>();
   EntityMib::SysDescr::Ptr sysDescr = Rex::make<EntityMib::SysDescr>();
   System::NetStatus::Ptr netStatus = Rex::make<System::NetStatus>();
   Identity::Dot1x::Status::Ptr dot1x = Rex::make<Identity::Dot1x::Status>();
   Interface::AllIntfStatusDir::Ptr intfDir = Rex::make<Interface::AllIntfStatusDir>();
   Interface::AllEthPhyIntfStatusDir::Ptr phyDir = Rex::make<Interface::AllEthPhyIntfStatusDir>();
   Interface::AllEthPhyIntfConfigDir::Ptr phyConfigDir =
       Rex::make<Interface::AllEthPhyIntfConfigDir>();
   Interface::EthLagIntfStatusDir::Ptr lagDir = Rex::make<Interface::EthLagIntfStatusDir>();
   Ip::Status::Ptr ipStatus = Rex::make<Ip::Status>();
   Ip6::Status::Ptr ip6Status = Rex::make<Ip6::Status>();
   Rex::Dir::Ptr externalTlvs = Rex::make<Rex::Dir>();
   Interface::PamDesiredIntfDir::Ptr desired = Rex::make<Interface::PamDesiredIntfDir>();
   Lldp::Agent::Input::Root::Ptr root = Lldp::Agent::Input::rootFactory("inputRoot");

   InputFixture() {
      root->localSystemIs(localSystem);
      root->configIs(config);
      root->statusIs(status);
      root->remTablesStatusIs(remTablesStatus);
      root->bridgingConfigIs(bridging);
      root->allIntfStatusDirIs(intfDir);
      root->desiredIntfDirIs(desired);
      root->identityDot1xStatusSmIs(dot1x, root);
   }
   ~InputFixture() {
      root->activeEthIntfStatusDirSmDel();
      root->standbyEthIntfStatusDirSmDel();
      root->inputSmDel();
      root->remTablesClearRequestSmDel();
      root->identityDot1xStatusSmDel();
   }

   void startInputSm() {
      root->inputSmIs(phyConfigDir, bridging, hwCapabilities, ipStatus, ip6Status, routing,
                      sysDescr, externalTlvs, netStatus, cliConfig, intfDir, root);
   }
   void startActive() {
      startInputSm();
      root->activeEthIntfStatusDirSmIs(lagDir, phyDir, hwCapabilities, root);
   }
   void startStandby() { root->standbyEthIntfStatusDirSmIs(phyDir, config, localSystem, root); }

   Interface::EthPhyIntfStatus::Ptr intf(
       const char* name, Interface::IntfForwardingModel model = Interface::intfForwardingBridged) {
      auto row = Rex::make<Interface::EthPhyIntfStatus>(Wirekit::IntfId(name));
      row->forwardingModelIs(model);
      row->maxMtuIs(1500);
      phyDir->intfStatusIs(row);
      return row;
   }
   void number(const std::string& name, int32_t ifIndex) {
      auto row = Rex::make<Interface::IntfStatus>(Wirekit::IntfId(name));
      row->ifIndexIs(ifIndex);
      intfDir->intfStatusIs(row);
   }
   void describe(const char* name, const Rex::String& description) {
      auto row = Rex::make<Interface::EthPhyIntfConfig>(Wirekit::IntfId(name));
      row->descriptionIs(description);
      phyConfigDir->intfConfigIs(row);
   }
   Lldp::PortConfig::Ptr portConfig(const char* name) {
      return config->portConfig(Wirekit::IntfId(name));
   }
   Lldp::LocalPort::Ptr localPort(const char* name) {
      return localSystem->localPort(Wirekit::IntfId(name));
   }
   Lldp::PortStatus::Ptr portStatus(const char* name) {
      return status->portStatus(Wirekit::IntfId(name));
   }
   // Which of its rows a port has: "CLSD" for configuration, local port, status, desired.
   std::string rows(const char* name) {
      Wirekit::IntfId intfId(name);
      std::string all;
      if (portConfig(name)) all += "C";
      if (localPort(name)) all += "L";
      if (portStatus(name)) all += "S";
      if (desired->intfDesired(intfId)) all += "D";
      return all;
   }
};

}  // namespace LldpTest
