// Power via MDI: whose request a port answers, and what the power agent allows it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Lldp/LldpInputSm/PoeSm.h"
#include "Rex/Owned.h"
#include "support/TestContext.h"

using namespace Lldp;
using Environment::Power::PoePortStatus;
using testing::Contains;
using Wirekit::EthAddr;
using Wirekit::IntfId;

namespace {

struct Asking {
   uint8_t addr;
   double refreshed;
   uint32_t tlvFormat;
   uint32_t powerType;
   bool received = true;
};

struct InputPoe : testing::Test {
   LldpTest::TestContext context;
   Lldp::Status::Ptr status = Rex::make<Lldp::Status>();
   LocalSystem::Ptr localSystem = Rex::make<LocalSystem>();
   Rex::Dir::Ptr reports = Rex::make<Rex::Dir>();
   PortStatus::Ptr port = status->portStatusIs(IntfId("Ethernet1"), 0.0);
   Rex::OwnedMachine<Agent::Input::PoeSm> sm;

   LocalPortPoeInfo::Ptr poeInfo(const char* name = "Ethernet1") {
      auto local = localSystem->localPortIs(IntfId(name));
      local->initilizeLocalPortPoeInfo();
      return local->localPortPoeInfo();
   }
   void start() { sm.make(status, localSystem, reports); }
   void say(int index, const Asking& asking) {
      auto neighbour = port->remoteSystemIs(index, RemoteSystem::Msap());
      neighbour->powerViaMdiTlvReceivedIs(asking.received);
      PowerViaMdiInfo info;
      info.tlvFormat = asking.tlvFormat;
      info.powerType = asking.powerType;
      neighbour->powerViaMdiInfoIs(info);
      neighbour->ethAddrIs({2, 0, 0, 0, 0, asking.addr});
      neighbour->lastRefreshTimeIs(asking.refreshed);
   }
   void changed() { status->remTablesLastChangeTimeIs(context.now()); }
   // The number of the neighbour that is answered, -1 for none.
   int answered() {
      auto remote = poeInfo()->remoteSystem();
      return remote ? remote->index() : -1;
   }
   PoePortStatus::Ptr report(const char* name, uint32_t allowed) {
      auto entity = Rex::make<PoePortStatus>();
      entity->portStatusIs({Environment::Power::poePortDelivering, allowed});
      reports->entityPtrIs(name, entity);
      return entity;
   }
   uint32_t allowed(const char* name) { return poeInfo(name)->poePortStatus().allowedPower; }
};

}  // namespace

TEST_F(InputPoe, OneRequestIsAnsweredOrNone) {
   poeInfo();
   start();
   struct {
      const char* what;
      std::vector<Asking> neighbours;
      int answered;
   } cases[] = {
       {"no TLV", {{1, 10, 1, 1, false}}, -1},
       {"short form", {{1, 10, 0, 1}}, -1},
       {"type 2 PSE", {{1, 10, 1, 0}}, -1},
       {"type 1 PSE", {{1, 10, 1, 2}}, -1},
       {"type 2 PD", {{1, 10, 1, 1}}, 0},
       {"type 1 PD", {{1, 10, 1, 3}}, 0},
       {"later of one address", {{1, 10, 1, 1}, {1, 12, 1, 3}, {1, 11, 1, 1}}, 1},
       {"first of two heard at once", {{1, 10, 1, 1}, {1, 10, 1, 1}}, 0},
       {"two addresses", {{1, 10, 1, 1}, {2, 12, 1, 1}}, -1},
       {"two addresses behind two of one", {{1, 10, 1, 1}, {1, 12, 1, 1}, {2, 9, 1, 1}}, -1},
       {"another address that asks for nothing", {{2, 12, 1, 0}, {1, 10, 1, 1}}, 1},
   };
   for (const auto& c : cases) {
      SCOPED_TRACE(c.what);
      port->remoteSystemDelAll();
      changed();
      EXPECT_EQ(answered(), -1);
      for (size_t i = 0; i < c.neighbours.size(); ++i) say(static_cast<int>(i), c.neighbours[i]);
      EXPECT_EQ(answered(), -1) << "before the change is told";
      changed();
      EXPECT_EQ(answered(), c.answered);
   }
}

TEST_F(InputPoe, AnswerFollowsTheNeighbours) {
   say(0, {1, 10, 1, 1});
   poeInfo();
   start();
   EXPECT_EQ(answered(), -1);
   changed();
   EXPECT_EQ(answered(), 0);

   context.traceOn("LldpAgent");
   say(1, {2, 11, 1, 1});
   changed();
   EXPECT_EQ(answered(), -1);
   EXPECT_THAT(context.traced(1),
               Contains("Ethernet1: found 2 RemoteSystems with requested power  from different src "
                        "addresses ( 02:00:00:00:00:01 and 02:00:00:00:00:02 ) => can not choose "
                        "one"));
   // The refresh itself changes nothing; the next change anywhere takes it up.
   say(1, {1, 11, 1, 1});
   EXPECT_EQ(answered(), -1);
   changed();
   EXPECT_EQ(answered(), 1);
   say(0, {1, 12, 1, 1});
   EXPECT_EQ(answered(), 1);
   changed();
   EXPECT_EQ(answered(), 0);

   say(0, {1, 12, 0, 1});
   changed();
   EXPECT_EQ(answered(), 1);
   port->remoteSystemDel(1);
   changed();
   EXPECT_EQ(answered(), -1);

   // A port that is made anew.
   say(0, {1, 12, 1, 1});
   changed();
   localSystem->localPortDel(IntfId("Ethernet1"));
   EXPECT_EQ(answered(), -1);
   changed();
   EXPECT_EQ(answered(), 0);
}

TEST_F(InputPoe, PowerAgentsReportReachesThePort) {
   auto early = report("Ethernet1", 1);
   start();
   EXPECT_EQ(allowed("Ethernet1"), 0u);
   early->portStatusIs({Environment::Power::poePortDelivering, 154});
   EXPECT_EQ(allowed("Ethernet1"), 154u);
   EXPECT_TRUE(poeInfo()->readyToSendTlv());

   poeInfo("Ethernet2");
   report("Ethernet2", 300);
   report("no port", 1);
   reports->entityPtrIs("Ethernet3", Rex::make<LocalSystem>());
   EXPECT_EQ(allowed("Ethernet2"), 300u);
   Rex::Dispatcher::run([&] {
      reports->entityPtrDel("Ethernet2");
      report("Ethernet2", 255);
   });
   EXPECT_EQ(allowed("Ethernet2"), 255u);
   Rex::Dispatcher::run([&] {
      reports->entityPtrDel("Ethernet2");
      reports->entityPtrIs("Ethernet2", Rex::make<LocalSystem>());
   });
   EXPECT_EQ(poeInfo("Ethernet2")->poePortStatus(), PoePortStatus::PortStatus());
   for (const char* name : {"Ethernet1", "no port", "Ethernet3"}) reports->entityPtrDel(name);
   EXPECT_EQ(poeInfo()->poePortStatus(), PoePortStatus::PortStatus());
   early->portStatusIs({Environment::Power::poePortDelivering, 1});
   EXPECT_EQ(allowed("Ethernet1"), 0u);
}

TEST_F(InputPoe, RequestsAreChosenWithoutAPowerAgent) {
   reports = nullptr;
   poeInfo();
   say(0, {1, 10, 1, 1});
   start();
   changed();
   EXPECT_EQ(answered(), 0);
}
