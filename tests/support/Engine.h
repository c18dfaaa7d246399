// The protocol engine with all that it reads and writes, made in the order in which the agent makes
// it, and no input machines: the test itself writes what they would.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Interface/SegmentPam.h"
#include "Lldp/LldpProtocolSm/Root.h"
#include "Rex/Context.h"
#include "Rex/System.h"
#include "model/CliConfig.h"

namespace LldpTest {

// A frame for an agent to take. `header` is what stands between the addresses and the LLDPDU.
inline std::string ethFrame(std::string_view lldpdu, std::string_view header = "\x88\xCC",
                            std::string_view dst = std::string_view("\x01\x80\xC2\x00\x00\x0E",
                                                                    6)) {
   return std::string(dst) + std::string("\x02\0\0\0\0\x99", 6) + std::string(header) +
          std::string(lldpdu);
}
inline std::span<const uint8_t> octetsOf(std::string_view text) {
   return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

class Engine {
 public:
   // One port, plugged into a wire of its own.
   struct Port {
      Wirekit::IntfId intfId;
      Interface::EthPhyIntfStatus::Ptr ethPhyIntfStatus;
      Lldp::PortConfig::Ptr portConfig;
      Lldp::LocalPort::Ptr localPort;
      Lldp::PortStatus::Ptr portStatus;
      Interface::Segment::Ptr segment;
      std::shared_ptr<std::vector<Interface::Segment::Frame>> sent;

      std::vector<double> sentTimes(double since) const {
         std::vector<double> times;
         for (const auto& frame : *sent) times.push_back(frame.time - since);
         return times;
      }
   };

   Engine() {
      Rex::Context::current().serviceIs<Interface::PamMaker>(maker);
      cliConfig->enabledIs(true);
      localSystem->chassisIdentifierIs(
          {Lldp::ChassisIdSubtype::macAddress, Lldp::ChassisId("\x02\0\0\0\0\x01", 6)});
      root->ethPhyIntfStatusDirIs(ethPhyIntfStatusDir);
      root->configIs(config);
      root->statusIs(status);
      root->localSystemIs(localSystem);
      root->deviceIntfStatusDirIs("deviceIntfStatusDir");
      root->intfStatusManagerRootIs(allIntfStatusDir, allIntfStatusLocalDir, false)
          ->intfStatusManagerIs(root->deviceIntfStatusDir(), nullptr);
      root->desiredIntfDirIs("desiredIntfDir");
      root->pamCollectionIs("pamCollection");
      root->doInitializePamMan();
      root->protocolSmIs(root->pamCollection(), localSystem, root, ethPhyIntfStatusDir, config,
                         status);
   }
   ~Engine() { close(); }

   // The last step of the start, which lets packet access appear.
   void open() { root->onOffSwitchSmIs(cliConfig, root->pamMan()); }
   void close() {
      root->onOffSwitchSmDel();
      root->protocolSmDel();
   }

   // Makes a port with its link up. With the engine open, its machine comes when the loop turns.
   Port port(const std::string& name) {
      Port port;
      port.intfId = Wirekit::IntfId(name);
      port.segment = Rex::make<Interface::Segment>(Rex::Context::current().clock());
      port.sent = std::make_shared<std::vector<Interface::Segment::Frame>>();
      port.segment->tap = [sent = port.sent](const auto& frame) { sent->push_back(frame); };
      maker->plug(Rex::String(name), port.segment);
      port.ethPhyIntfStatus = Rex::make<Interface::EthPhyIntfStatus>(port.intfId);
      port.ethPhyIntfStatus->linkStatusIs(Interface::linkUp);
      port.ethPhyIntfStatus->ethAddrIs(Wirekit::EthAddr(2, 0, 0, 0, 0, 7));
      ethPhyIntfStatusDir->intfStatusIs(port.ethPhyIntfStatus);
      auto intfStatus = Rex::make<Interface::IntfStatus>(port.intfId);
      intfStatus->deviceNameIs(Rex::String(name));
      intfStatus->ifIndexIs(++lastIfIndex_);
      allIntfStatusLocalDir->intfStatusIs(intfStatus);
      makeRows(port);
      return port;
   }
   // The rows of a port in their order, and its desired entry.
   void makeRows(Port& port) {
      port.portConfig = config->portConfigIs(port.intfId);
      port.localPort = localSystem->localPortIs(port.intfId);
      port.localPort->portIdentifierIs(
          {Lldp::PortIdSubtype::interfaceName, Lldp::PortId(port.intfId.stringValue())});
      port.portStatus = status->portStatusIs(port.intfId, Rex::System::currentTime());
      root->desiredIntfDir()->intfDesiredIs(port.intfId, true);
   }
   void dropRows(const Wirekit::IntfId& intfId) {
      root->desiredIntfDir()->intfDesiredDel(intfId);
      config->portConfigDel(intfId);
      status->portStatusDel(intfId);
      localSystem->localPortDel(intfId);
   }

   Rex::Ptr<Lldp::Agent::Protocol::LldpPamSm> sm(const Wirekit::IntfId& intfId) const {
      return root->protocolSm()->lldpPamSm(intfId);
   }
   Wirekit::Pam::Ptr pam(const Wirekit::IntfId& intfId) const {
      return root->pamCollection()->intfPam(intfId);
   }

   const std::shared_ptr<Interface::SegmentPamMaker> maker =
       std::make_shared<Interface::SegmentPamMaker>();
   const Interface::AllIntfStatusDir::Ptr allIntfStatusDir =
       Rex::make<Interface::AllIntfStatusDir>();
   const Interface::AllIntfStatusLocalDir::Ptr allIntfStatusLocalDir =
       Rex::make<Interface::AllIntfStatusLocalDir>();
   const Interface::AllEthPhyIntfStatusDir::Ptr ethPhyIntfStatusDir =
       Rex::make<Interface::AllEthPhyIntfStatusDir>();
   const Lldp::CliConfig::Ptr cliConfig = Rex::make<Lldp::CliConfig>();
   const Lldp::Config::Ptr config = Rex::make<Lldp::Config>();
   const Lldp::Status::Ptr status = Rex::make<Lldp::Status>();
   const Lldp::LocalSystem::Ptr localSystem = Rex::make<Lldp::LocalSystem>();
   const Lldp::Agent::Protocol::Root::Ptr root = Lldp::Agent::Protocol::rootFactory("protocolRoot");

 private:
   int lastIfIndex_ = 0;
};

}  // namespace LldpTest
