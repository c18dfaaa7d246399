// What the feeders make of devices, given by hand.
#include <gtest/gtest.h>

#include "Rex/StateMachine.h"
#include "host/Feeders/BridgingFeeder.h"
#include "host/Feeders/HostFeeder.h"
#include "host/Feeders/LinksFeeder.h"
#include "support/TestContext.h"
#include "unit/HostFedSwitch.h"

namespace Host {
namespace {

using Wirekit::EthAddr;
using Wirekit::IntfId;

TEST(Links, state) {
   struct {
      bool adminUp, carrier;
      uint8_t operState;
      Interface::LinkStatus status;
   } cases[] = {
       {true, true, IF_OPER_UP, Interface::linkUp},
       {true, true, IF_OPER_UNKNOWN, Interface::linkUp},
       {true, false, IF_OPER_UNKNOWN, Interface::linkDown},
       {false, true, IF_OPER_UNKNOWN, Interface::linkDown},
       {false, false, IF_OPER_DOWN, Interface::linkDown},
       {true, false, IF_OPER_DOWN, Interface::linkDown},
       {true, false, IF_OPER_LOWERLAYERDOWN, Interface::linkDown},
       {true, true, IF_OPER_DORMANT, Interface::linkDown},
       {true, true, IF_OPER_TESTING, Interface::linkDown},
       {true, true, IF_OPER_NOTPRESENT, Interface::linkDown},
       {true, true, 200, Interface::linkDown},
   };
   for (const auto& [adminUp, carrier, operState, status] : cases) {
      Link link = device(1, "a");
      link.adminUp = adminUp;
      link.carrier = carrier;
      link.operState = operState;
      EXPECT_EQ(linkStatus(link), status) << int(operState) << carrier << adminUp;
      EXPECT_EQ(forwardingModel(link) >= Interface::intfForwardingBridged, adminUp);
   }
}

TEST(Links, whichArePorts) {
   for (const char* kind : {"", "veth", "dsa"}) EXPECT_TRUE(isPhysical(device(1, "a", kind)));
   for (const char* kind : {"bridge", "bond", "vlan", "dummy", "tun", "vxlan", "macvlan"}) {
      EXPECT_FALSE(isPhysical(device(1, "a", kind))) << kind;
   }
   Link loopback = device(1, "lo", "");
   loopback.ethernet = false;
   EXPECT_FALSE(isPhysical(loopback));
   ServedDevices named({"br0", "lo"});
   EXPECT_TRUE(named.serves(device(1, "br0", "bridge"))) << "whom the operator names is served";
   EXPECT_FALSE(named.serves(device(1, "a")));
   EXPECT_FALSE(named.serves(loopback));
   ServedDevices mapped({"br0"}, true);
   EXPECT_TRUE(mapped.serves(device(1, "br0", "bridge")));
   EXPECT_TRUE(mapped.serves(device(1, "a"))) << "a mapped port leaves the others served";
   EXPECT_FALSE(mapped.serves(device(1, "br1", "bridge")));
}

TEST(Links, aFullReadTellsTheDifferences) {
   Links links;
   links.linksAre(devices({device(1, "a"), device(2, "b"), device(3, "c")}));
   std::vector<std::string> told;
   links.listenerIs([&](const Link* before, const Link* after) {
      told.push_back((before ? before->name : "-") + ">" + (after ? after->name : "-"));
   });
   links.linksAre(devices({device(1, "a"), device(3, "b"), device(4, "d")}));
   EXPECT_EQ(told, (std::vector<std::string>{"b>-", "c>b", "->d"}));
   EXPECT_EQ(links.named("b")->ifIndex, 3);
   EXPECT_EQ(links.named("c"), nullptr);
}

struct ServedLinksTest : testing::Test {
   ServedLinksTest() {
      links.listenerIs([this](const Link* before, const Link* after) {
         served.handleLink(after ? after->ifIndex : before->ifIndex);
      });
   }
   EthAddr addr(const EthAddr& present = {}) {
      EthAddr found = served.bridgeMacAddr(present);
      EXPECT_EQ(found, ServedLinks(links, every).bridgeMacAddr(present)) << "read anew";
      return found;
   }
   ServedDevices every;
   Links links;
   ServedLinks served{links, every};
};

TEST_F(ServedLinksTest, theSwitchsOwnAddress) {
   const EthAddr low(2, 0, 0, 0, 0, 3), high(2, 0, 0, 0, 0, 5), gone(2, 9, 9, 9, 9, 9);
   EXPECT_TRUE(addr().isZero());
   EXPECT_EQ(addr(gone), gone) << "without a device it stays";
   EXPECT_EQ(served.maxFrameSize(), 0);
   links.linkIs(device(5, "b"));
   links.linkIs(device(2, "dummy0", "dummy"));
   EXPECT_EQ(addr(), high) << "what is no port has no say";
   links.linkIs(device(3, "a"));
   EXPECT_EQ(addr(), low);
   EXPECT_EQ(addr(high), high) << "a lower one that comes changes nothing";
   EXPECT_EQ(addr(gone), low);

   // A bridge counts once a port is a member, also through a bond; the first of two wins.
   links.linkIs(device(7, "br1", "bridge"));
   links.linkIs(device(6, "br0", "bridge"));
   EXPECT_EQ(addr(high), high);
   Link member = device(5, "b");
   member.master = 7;
   links.linkIs(member);
   EXPECT_EQ(addr(high), links.named("br1")->ethAddr);
   Link bond = device(8, "bond0", "bond");
   bond.master = 6;
   links.linkIs(bond);
   Link bonded = device(3, "a");
   bonded.master = 8;
   links.linkIs(bonded);
   EXPECT_EQ(addr(high), links.named("br0")->ethAddr);
   // Masters in a ring, as two halves of a change may look.
   bond.master = 3;
   links.linkIs(bond);
   EXPECT_EQ(addr(high), links.named("br1")->ethAddr);
   links.linkDel(7);
   EXPECT_EQ(addr(high), high) << "a bridge that has gone before its members know";
}

TEST_F(ServedLinksTest, theLongestFrame) {
   Link jumbo = device(2, "b");
   for (auto [mtu, octets] :
        {std::pair(1500u, 1518), {9214u, 9232}, {65535u, 65535}, {4294967295u, 65535}}) {
      jumbo.mtu = mtu;
      links.linksAre(devices({device(1, "a"), jumbo}));
      EXPECT_EQ(served.maxFrameSize(), octets);
   }
}

TEST(HostFeeder, names) {
   struct {
      const char *node, *domain, *hostname, *domainName;
   } cases[] = {
       {"sw1", "(none)", "sw1", ""},
       {"sw1", "example.com", "sw1", "example.com"},
       {"sw1", "", "sw1", ""},
       {"sw1.lab.example.com", "(none)", "sw1", "lab.example.com"},
       {"sw1.lab", "other", "sw1", "lab"},
       {".odd", "(none)", ".odd", ""},
       {"", "(none)", "", ""},
   };
   for (const auto& [node, domain, hostname, domainName] : cases) {
      HostFacts facts = HostFacts::fromKernel(node, domain, "words");
      EXPECT_EQ(facts.hostname, hostname);
      EXPECT_EQ(facts.domainName, domainName);
   }
   for (auto [text, name] : {std::pair("PRETTY_NAME=\"A \\\"B\\\" 1\"\n", "A \"B\" 1"),
                             {"ID=x\nPRETTY_NAME='It \\n'", "It \\n"},
                             {"NAME=y\nPRETTY_NAME=Plain\nZ=1", "Plain"},
                             {"PRETTY_NAME=\"", "\""},
                             {"PRETTY_NAME=", "Linux"},
                             {"#PRETTY_NAME=x", "Linux"},
                             {"", "Linux"}}) {
      EXPECT_EQ(HostFacts::systemName(text), name) << text;
   }
}

// Writes down in which order rows are reported, with what the index told at that moment.
class OrderSm : public Rex::StateMachine {
 public:
   explicit OrderSm(Statestore::EntityManager& manager)
       : all_(get<Interface::AllIntfStatusDir>(manager, "interface/status/all")),
         local_(get<Interface::AllIntfStatusLocalDir>(manager, "cell/1/interface/status/local")),
         phy_(get<Interface::AllEthPhyIntfStatusDir>(manager, "interface/status/eth/phy/all")),
         config_(get<Interface::AllEthPhyIntfConfigDir>(manager, "interface/config/eth/phy/all")) {
      on(all_, Interface::AllIntfStatusDir::intfStatusAttr, &OrderSm::handleAll);
      on(local_, Interface::AllIntfStatusLocalDir::intfStatusAttr, &OrderSm::handleLocal);
      on(phy_, Interface::AllEthPhyIntfStatusDir::intfStatusAttr, &OrderSm::handlePhy);
      on(config_, Interface::AllEthPhyIntfConfigDir::intfConfigAttr, &OrderSm::handleConfig);
   }
   std::vector<std::string> take() { return std::exchange(told_, {}); }
   auto phy(const char* port) const { return phy_->intfStatus(IntfId(port)); }
   auto all(const char* port) const { return all_->intfStatus(IntfId(port)); }
   auto config(const char* port) const { return config_->intfConfig(IntfId(port)); }

 private:
   template <class T>
   static Rex::Ptr<T> get(Statestore::EntityManager& manager, const char* path) {
      return Rex::dynamicPtr<T>(manager.getEntity(path));
   }
   void tell(const char* what, const IntfId& port, const std::string& value) {
      told_.push_back(std::string(what) + " " + port.stringValue().stdString() + " " + value);
   }
   void handleAll(IntfId id) {
      auto row = all_->intfStatus(id);
      tell("all", id, row ? std::to_string(row->ifIndex()) : "-");
   }
   void handleLocal(IntfId id) {
      auto row = local_->intfStatus(id);
      tell("local", id, row ? row->deviceName().stdString() : "-");
   }
   void handlePhy(IntfId id) {
      auto row = phy_->intfStatus(id);
      tell("phy", id, row ? std::to_string(row->linkStatus()) : "-");
   }
   void handleConfig(IntfId id) {
      auto row = config_->intfConfig(id);
      tell("config", id, row ? row->description().stdString() : "-");
   }

   Interface::AllIntfStatusDir::Ptr all_;
   Interface::AllIntfStatusLocalDir::Ptr local_;
   Interface::AllEthPhyIntfStatusDir::Ptr phy_;
   Interface::AllEthPhyIntfConfigDir::Ptr config_;
   std::vector<std::string> told_;
};

using Told = std::vector<std::string>;

class LinksFeederTest : public testing::Test {
 protected:
   LinksFeederTest() {
      links.linksAre(devices({device(2, "a"), device(3, "b"), device(4, "br0", "bridge")}));
      feeder.emplace(manager, links, served, tables, intfs, names,
                     [](const Link& link) { return "name:" + link.name; });
      order.emplace(*manager);
   }

   LldpTest::TestContext context;
   Rex::Ptr<Statestore::EntityManager> manager = Rex::make<Statestore::EntityManager>();
   Links links;
   ServedDevices served;
   IntfTables tables{*manager};
   Intfs intfs{tables};
   TestFolder folder;
   PortNames names{{}, folder.path + "/ports.json"};
   std::optional<LinksFeeder> feeder;
   std::optional<OrderSm> order;
};

TEST_F(LinksFeederTest, rowsComeWholeAndInOrder) {
   Link c = device(9, "c");
   c.alias = "to spine";
   links.linkIs(c);
   EXPECT_EQ(order->take(), (Told{"all Ethernet3 9", "local Ethernet3 c",
                                  "config Ethernet3 to spine", "phy Ethernet3 2"}));
   links.linkDel(9);
   EXPECT_EQ(order->take(), (Told{"phy Ethernet3 -", "config Ethernet3 -", "local Ethernet3 -",
                                  "all Ethernet3 -"}));
   // Back under its name, with another index.
   links.linkIs(device(12, "c"));
   EXPECT_EQ(order->take().front(), "all Ethernet3 12");
   links.linkIs(device(13, "tap0", "tun"));
   EXPECT_EQ(order->take(), Told{});
}

TEST_F(LinksFeederTest, followsADeviceInPlace) {
   Link a = device(2, "a");
   a.operState = IF_OPER_DOWN;
   a.mtu = 9000;
   a.ethAddr = EthAddr(2, 1, 1, 1, 1, 1);
   links.linkIs(a);
   auto phy = order->phy("Ethernet1");
   EXPECT_EQ(phy->linkStatus(), Interface::linkDown);
   EXPECT_EQ(phy->maxMtu(), 9000);
   EXPECT_EQ(phy->ethAddr(), a.ethAddr);
   a.adminUp = false;
   links.linkIs(a);
   EXPECT_LT(phy->forwardingModel(), 2);
   // A description from elsewhere stands until Linux has something new to say.
   order->config("Ethernet1")->descriptionIs("by hand");
   a.master = 4;
   links.linkIs(a);
   EXPECT_EQ(order->config("Ethernet1")->description(), "by hand");
   a.alias = "by alias";
   links.linkIs(a);
   EXPECT_EQ(order->config("Ethernet1")->description(), "by alias");
   EXPECT_EQ(order->take(), Told{}) << "no row came or went";
}

// A full read after lost news shows two devices with their names exchanged.
TEST_F(LinksFeederTest, devicesThatExchangeTheirNames) {
   links.linksAre(devices({device(2, "b"), device(3, "a"), device(4, "br0", "bridge")}));
   EXPECT_EQ(feeder->ports(), (std::map<IntfId, std::string>{{IntfId("Ethernet1"), "a"},
                                                             {IntfId("Ethernet2"), "b"}}));
   EXPECT_EQ(order->all("Ethernet1")->ifIndex(), 3);
   EXPECT_EQ(order->all("Ethernet2")->ifIndex(), 2);
   auto kernel =
       Rex::dynamicPtr<KernelNetInfo::Status>(manager->getEntity("kni/ns/default/status"));
   EXPECT_EQ(kernel->device("a").ifIndex, 3);
   EXPECT_EQ(kernel->device("b").ifIndex, 2);
}

TEST_F(LinksFeederTest, namesThatCannotBeKeptAreToldAndServed) {
   std::filesystem::remove_all(folder.path);
   context.takeLogs();
   links.linkIs(device(9, "c"));
   EXPECT_EQ(feeder->ports().at(IntfId("Ethernet3")), "c");
   auto logs = context.takeLogs();
   EXPECT_TRUE(logs.front().starts_with("HOST_PORT_NAMES_NOT_KEPT: " + folder.path))
       << logs.front();
}

// Two functions of one card may claim one permanent address.
TEST_F(LinksFeederTest, devicesWithOneIdentity) {
   TestFolder other;
   PortNames fresh({}, other.path + "/ports.json");
   Links twins;
   twins.linksAre(devices({device(2, "a", ""), device(3, "b", "")}));
   auto tree = std::make_shared<Statestore::Tree>();
   context.context().serviceIs<Statestore::Tree>(tree);
   auto manager = Rex::make<Statestore::EntityManager>();
   IntfTables tables(*manager);
   Intfs intfs(tables);
   LinksFeeder feeder(manager, twins, served, tables, intfs, fresh,
                      [](const Link&) { return "mac:same"; });
   twins.linkIs(device(4, "c", ""));
   EXPECT_EQ(feeder.ports().size(), 3u);
}

}  // namespace
}  // namespace Host
