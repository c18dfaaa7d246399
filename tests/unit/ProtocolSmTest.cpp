// The registry of ports: when a port has a machine, and what makes it transmit.
#include <gmock/gmock.h>

#include <algorithm>
#include <functional>

#include "Lldp/LldpProtocolSm/Frame.h"
#include "support/Engine.h"
#include "support/FrameBuilder.h"
#include "support/TestContext.h"

namespace {

using Lldp::Agent::Protocol::TxFsmState;
using LldpTest::Engine;
using LldpTest::TestContext;
using testing::IsEmpty;

class ProtocolSmTest : public testing::Test {
 protected:
   void open() {
      engine.open();
      context.settle();
   }
   Rex::Ptr<Lldp::Agent::Protocol::LldpPamSm> sm() { return engine.sm(port.intfId); }
   void receiveLldpdu(uint32_t neighbour) {
      std::string frame = LldpTest::ethFrame(LldpTest::mandatory(neighbour));
      engine.pam(port.intfId)->rxFrameIs(LldpTest::octetsOf(frame), {});
      context.settle();
   }

   TestContext context;
   Engine engine;
   Engine::Port port = engine.port("Ethernet1");
};

TEST_F(ProtocolSmTest, MachineStandsExactlyWhileAllItsSourcesDo) {
   open();
   auto pam = engine.pam(port.intfId);
   auto pams = engine.root->pamCollection();
   struct Source {
      std::function<void()> add, remove;
   };
   const std::vector<Source> sources = {
       {[&] { pams->intfPamIs(pam); }, [&] { pams->intfPamDel(port.intfId); }},
       {[&] { engine.config->portConfigIs(port.intfId); },
        [&] { engine.config->portConfigDel(port.intfId); }},
       {[&] { engine.status->portStatusIs(port.intfId, 0.0); },
        [&] { engine.status->portStatusDel(port.intfId); }},
       {[&] { engine.ethPhyIntfStatusDir->intfStatusIs(port.ethPhyIntfStatus); },
        [&] { engine.ethPhyIntfStatusDir->intfStatusDel(port.intfId); }},
       {[&] { port.localPort = engine.localSystem->localPortIs(port.intfId); },
        [&] { engine.localSystem->localPortDel(port.intfId); }},
   };
   for (const auto& source : sources) source.remove();
   EXPECT_FALSE(sm());
   std::vector<int> order = {0, 1, 2, 3, 4};
   do {
      for (int i : order) {
         EXPECT_FALSE(sm());
         sources[i].add();
      }
      ASSERT_TRUE(sm());
      EXPECT_EQ(sm()->localPort(), port.localPort);
      // Away in another order, the first one taking the machine with it.
      std::rotate(order.begin(), order.begin() + 1, order.end());
      for (int i : order) {
         sources[i].remove();
         EXPECT_FALSE(sm());
      }
      std::rotate(order.begin(), order.end() - 1, order.end());
   } while (std::next_permutation(order.begin(), order.end()));
}

TEST_F(ProtocolSmTest, LossOfASourceRemovesTheNeighboursAndItsReturnMakesAFreshMachine) {
   open();
   receiveLldpdu(1);
   auto first = sm();
   auto portStatus = port.portStatus;
   EXPECT_EQ(portStatus->remoteSystems(), 1u);
   engine.status->portStatusDel(port.intfId);
   EXPECT_TRUE(first->closed());
   EXPECT_EQ(portStatus->remoteSystems(), 0u);
   EXPECT_EQ(engine.status->remTablesDeletes(), 1u);
   context.advance(5);
   EXPECT_THAT(*port.sent, IsEmpty()) << "a machine that was closed has no timers";
   engine.status->portStatusIs(port.intfId, context.now());
   ASSERT_TRUE(sm());
   EXPECT_NE(sm(), first);
   EXPECT_EQ(sm()->rxLldpdus(), 0u);
   EXPECT_EQ(sm()->rxRateLimitClock().timeMin(), context.now() + 10);
}

TEST_F(ProtocolSmTest, SourceReplacedInOneReactionIsALossAndAReturn) {
   open();
   using Replace = std::function<void()>;
   const std::pair<const char*, Replace> cases[] = {
       {"everything",
        [&] {
           engine.dropRows(port.intfId);
           engine.makeRows(port);
        }},
       {"portStatus",
        [&] {
           engine.status->portStatusDel(port.intfId);
           port.portStatus = engine.status->portStatusIs(port.intfId, 0.0);
        }},
       {"localPort",
        [&] {
           engine.localSystem->localPortDel(port.intfId);
           port.localPort = engine.localSystem->localPortIs(port.intfId);
        }},
       {"ethPhyIntfStatus",
        [&] {
           port.ethPhyIntfStatus = Rex::make<Interface::EthPhyIntfStatus>(port.intfId);
           engine.ethPhyIntfStatusDir->intfStatusIs(port.ethPhyIntfStatus);
        }},
   };
   for (const auto& [what, replace] : cases) {
      SCOPED_TRACE(what);
      receiveLldpdu(1);
      auto before = sm();
      auto portStatus = before->portStatus();
      Rex::Dispatcher::run(replace);
      EXPECT_TRUE(before->closed());
      EXPECT_EQ(portStatus->remoteSystems(), 0u);
      ASSERT_TRUE(sm());
      EXPECT_EQ(sm()->portStatus(), port.portStatus);
      EXPECT_EQ(sm()->ethPhyIntfStatus(), port.ethPhyIntfStatus);
      EXPECT_EQ(sm()->localPort(), port.localPort);
      EXPECT_EQ(engine.root->protocolSm()->localPortSm(port.intfId)->localPort(), port.localPort);
   }
}

TEST_F(ProtocolSmTest, ChangesThatMakeAPortTransmitAndThoseThatDoNot) {
   open();
   auto& localSystem = *engine.localSystem;
   auto& localPort = *port.localPort;
   Lldp::ManagementAddress::Key key{1, Lldp::ManAddress("\x0A\0\0\x01", 4)};
   Lldp::UnknownOrgDefTlv external{{0x001122, 1, 1}, {}};
   const Lldp::ChassisIdentifier chassis{Lldp::ChassisIdSubtype::local, Lldp::ChassisId("c", 1)};
   const Lldp::PortIdentifier portId{Lldp::PortIdSubtype::local, Lldp::PortId("p", 1)};
   const Lldp::NetworkPolicyTlv policy{.appType = 1};
   const Lldp::LinkAggregationInfo group{1, 0};
   const Lldp::MedCapabilitiesInfo med{0x03, 4};
   Environment::Power::PoePortStatus::PortStatus poe;
   poe.state = Environment::Power::poePortDelivering;
   struct {
      const char* what;
      std::function<void()> change;
      bool transmits;
   } cases[] = {
       {"chassisIdentifier", [&] { localSystem.chassisIdentifierIs(chassis); }, true},
       {"sysName", [&] { localSystem.sysNameIs(Lldp::BoundedString255("n")); }, true},
       {"sysName, the same", [&] { localSystem.sysNameIs(Lldp::BoundedString255("n")); }, false},
       {"sysDesc", [&] { localSystem.sysDescIs(Lldp::BoundedString255("d")); }, true},
       {"sysCapSupported", [&] { localSystem.sysCapSupportedIs(0x14); }, true},
       {"sysCapEnabled", [&] { localSystem.sysCapEnabledIs(0x04); }, true},
       {"managementAddress", [&] { localSystem.managementAddressIs({key}); }, true},
       {"managementAddressPrio", [&] { localSystem.managementAddressPrioIs({}, key); }, true},
       {"managementAddressPrio gone", [&] { localSystem.managementAddressPrioDelAll(); }, true},
       {"ip6ManagementAddress", [&] { localSystem.ip6ManagementAddressIs({key}); }, false},
       {"portIdentifier", [&] { localPort.portIdentifierIs(portId); }, true},
       {"portDesc", [&] { localPort.portDescIs(Lldp::BoundedString255("d")); }, true},
       {"portVlanId", [&] { localPort.portVlanIdIs(7); }, true},
       {"linkAggregationInfo", [&] { localPort.linkAggregationInfoIs(group); }, true},
       {"maximumFrameSizeInfo", [&] { localPort.maximumFrameSizeInfoIs({9236}); }, true},
       {"unknownOrgDefTlv", [&] { localPort.unknownOrgDefTlvIs(external); }, true},
       {"localNetworkPolicyTlv", [&] { localPort.localNetworkPolicyTlvIs(policy); }, true},
       {"medCapabilities", [&] { localPort.medCapabilitiesIs(med); }, false},
       {"localPortPoeInfo", [&] { localPort.initilizeLocalPortPoeInfo(); }, false},
       {"poePortStatus", [&] { localPort.localPortPoeInfo()->poePortStatusIs(poe); }, true},
       {"localPortPoeInfo gone", [&] { localPort.localPortPoeInfoIs(nullptr); }, false},
       {"messageTxInterval", [&] { engine.config->messageTxIntervalIs(31); }, false},
       {"enabledTlvs",
        [&] { port.portConfig->mgmtAddrTxEnableIs(!port.portConfig->mgmtAddrTxEnable()); }, false},
   };
   for (const auto& c : cases) {
      SCOPED_TRACE(c.what);
      while (sm()->txFsmState() != TxFsmState::txFsmIdle) context.advance(1);
      size_t sent = port.sent->size();
      c.change();
      EXPECT_EQ(port.sent->size() - sent, c.transmits);
   }
   EXPECT_FALSE(engine.root->protocolSm()->localPortSm(port.intfId)->localPortPoeInfoSm());
}

TEST_F(ProtocolSmTest, PacketAccessIsOpenedWithTheFilterAndAllProtocols) {
   const auto& config = engine.root->pamMan()->config();
   EXPECT_EQ(config.ethProtocol, 3);
   EXPECT_TRUE(config.separateDot1QHdr);
   EXPECT_EQ(config.listenAddr.stringValue(), "01:80:c2:00:00:0e");
   EXPECT_EQ(config.maxRxPktData, 10236u);
   EXPECT_EQ(config.sockPrio, 7);
   EXPECT_EQ(Wirekit::globalPktManager().maxSharedData(), 10236u);
   EXPECT_EQ(config.filter.size(), 11u);

   using LldpTest::ethFrame;
   struct {
      const char* what;
      std::string frame;
      bool passes;
   } cases[] = {
       {"plain", ethFrame("x"), true},
       {"one tag", ethFrame("x", {"\x81\0\0\x64\x88\xCC", 6}), true},
       {"one tag, another type", ethFrame("x", {"\x81\0\0\x64\x08\0", 6}), false},
       {"two tags", ethFrame("x", {"\x81\0\0\x64\x81\0\0\x01\x88\xCC", 10}), false},
       {"service tag", ethFrame("x", {"\x88\xA8\0\x64\x88\xCC", 6}), false},
       {"another type", ethFrame("x", "\x08\x06"), false},
       {"nearest customer bridge", ethFrame("x", "\x88\xCC", {"\x01\x80\xC2\0\0\0", 6}), false},
       {"first octets differ", ethFrame("x", "\x88\xCC", {"\x01\x81\xC2\0\0\x0E", 6}), false},
       {"cut in the type", ethFrame("").substr(0, 13), false},
       {"cut in the tag", ethFrame("", {"\x81\0\0\x64\x88\xCC", 6}).substr(0, 17), false},
       {"nothing", "", false},
   };
   for (const auto& c : cases) {
      EXPECT_EQ(Wirekit::sockFilterRun(config.filter, LldpTest::octetsOf(c.frame)) > 0, c.passes)
          << c.what;
   }
}

}  // namespace
