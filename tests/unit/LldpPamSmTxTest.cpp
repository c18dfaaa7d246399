// The transmit side of a port: when frames leave, and in which state the machine is in between.
#include <gmock/gmock.h>

#include <functional>

#include "support/Engine.h"
#include "support/TestContext.h"

namespace {

using Lldp::AdminStatus;
using Lldp::Agent::Protocol::TxFsmState;
using LldpTest::Engine;
using LldpTest::TestContext;
using testing::ElementsAre;
using enum TxFsmState;

constexpr double start = TestContext::start;

class LldpPamSmTx : public testing::Test {
 protected:
   // What stands after the action that is done at `at` seconds from the machine's start: its
   // state, and the times of all frames so far.
   struct Step {
      double at;
      std::function<void()> action;
      TxFsmState state;
      std::vector<double> frames;
   };

   void open() {
      engine.open();
      context.settle();
   }
   void run(const std::vector<Step>& steps) {
      for (const Step& step : steps) {
         SCOPED_TRACE("at " + std::to_string(step.at));
         context.advanceTo(start + step.at);
         if (step.action) step.action();
         EXPECT_EQ(sm()->txFsmState(), step.state);
         EXPECT_EQ(port.sentTimes(start), step.frames);
      }
   }
   Rex::Ptr<Lldp::Agent::Protocol::LldpPamSm> sm() { return engine.sm(port.intfId); }

   void link(Interface::LinkStatus status) { port.ethPhyIntfStatus->linkStatusIs(status); }
   void admin(AdminStatus status) { port.portConfig->adminStatusIs(status); }
   void change() { port.localPort->portDescIs(Lldp::BoundedString255(Rex::format("%d", ++n))); }

   TestContext context;
   Engine engine;
   Engine::Port port = engine.port("Ethernet1");
   int n = 0;
};

TEST_F(LldpPamSmTx, FirstFrameAfterTxDelayThenOneEachInterval) {
   open();
   EXPECT_EQ(sm()->lastTxFsmState(), txFsmTxWait);
   run({{0, {}, txFsmTxWait, {}},
        {1.999, {}, txFsmTxWait, {}},
        {2, {}, txFsmTxDelay, {2}},
        {3.999, {}, txFsmTxDelay, {2}},
        {4, {}, txFsmIdle, {2}},
        {31.999, {}, txFsmIdle, {2}},
        {32, {}, txFsmTxDelay, {2, 32}},
        {62, {}, txFsmTxDelay, {2, 32, 62}}});
}

TEST_F(LldpPamSmTx, ChangeInIdleSendsAtOnceAndRestartsTheInterval) {
   open();
   run({{10, [&] { change(); }, txFsmTxDelay, {2, 10}},
        {12, {}, txFsmIdle, {2, 10}},
        {39.999, {}, txFsmIdle, {2, 10}},
        {40, {}, txFsmTxDelay, {2, 10, 40}}});
}

TEST_F(LldpPamSmTx, ChangesDuringTxDelayYieldOneFrameAtItsEnd) {
   open();
   run({{2.5, [&] { change(); }, txFsmTxWait, {2}},
        {3, [&] { change(); }, txFsmTxWait, {2}},
        {3.999, {}, txFsmTxWait, {2}},
        {4, {}, txFsmTxDelay, {2, 4}}});
   EXPECT_EQ(sm()->lastTxFsmState(), txFsmTxDelay);
   run({{6, {}, txFsmIdle, {2, 4}}, {34, {}, txFsmTxDelay, {2, 4, 34}}});
}

TEST_F(LldpPamSmTx, LinkDownHoldsOffWhateverTheLinkDoesMeanwhile) {
   open();
   run({{10, [&] { link(Interface::linkDown); }, txFsmReinitializing, {2}},
        {10.5, [&] { link(Interface::linkUp); }, txFsmReinitializing, {2}},
        {11, [&] { change(); }, txFsmReinitializing, {2}},
        {11.999, {}, txFsmReinitializing, {2}},
        {12, {}, txFsmTxWait, {2}},
        {14, {}, txFsmTxDelay, {2, 14}}});
}

TEST_F(LldpPamSmTx, LinkThatStaysDownEndsInDisabled) {
   open();
   run({{10, [&] { link(Interface::linkDown); }, txFsmReinitializing, {2}},
        {12, {}, txFsmDisabled, {2}},
        {50, [&] { change(); }, txFsmDisabled, {2}},
        {60, [&] { link(Interface::linkUnknown); }, txFsmDisabled, {2}},
        {70, [&] { link(Interface::linkUp); }, txFsmTxWait, {2}},
        {72, {}, txFsmTxDelay, {2, 72}}});
}

TEST_F(LldpPamSmTx, AnyLinkStatusButUpStopsFromEachSendingState) {
   for (auto status : {Interface::linkUnknown, Interface::linkDown}) {
      for (double at : {1.0, 3.0, 10.0}) {  // txFsmTxWait, txFsmTxDelay, txFsmIdle
         TestContext own;
         Engine another;
         auto itsPort = another.port("Ethernet1");
         another.open();
         own.advance(at);
         itsPort.ethPhyIntfStatus->linkStatusIs(status);
         EXPECT_EQ(another.sm(itsPort.intfId)->txFsmState(), txFsmReinitializing);
         size_t sent = itsPort.sent->size();
         own.advance(100);
         EXPECT_EQ(another.sm(itsPort.intfId)->txFsmState(), txFsmDisabled);
         EXPECT_EQ(itsPort.sent->size(), sent) << "a frame left after the link was gone";
      }
   }
}

TEST_F(LldpPamSmTx, AdminStatusStopsOnlyWhenTransmissionIsNoLongerAllowed) {
   open();
   run({{10, [&] { admin(AdminStatus::txOnly); }, txFsmIdle, {2}},
        {11, [&] { admin(AdminStatus::txAndRx); }, txFsmIdle, {2}},
        {20, [&] { admin(AdminStatus::rxOnly); }, txFsmReinitializing, {2}},
        {21, [&] { admin(AdminStatus::txOnly); }, txFsmReinitializing, {2}},
        {22, {}, txFsmTxWait, {2}},
        {23, [&] { admin(AdminStatus::disabled); }, txFsmReinitializing, {2}},
        {25, {}, txFsmDisabled, {2}},
        {26, [&] { admin(static_cast<AdminStatus>(9)); }, txFsmDisabled, {2}},
        {27, [&] { admin(AdminStatus::txOnly); }, txFsmTxWait, {2}},
        {29, [&] { admin(static_cast<AdminStatus>(0)); }, txFsmReinitializing, {2, 29}}});
}

TEST_F(LldpPamSmTx, PortMadeWithoutLinkOrPermissionStartsDisabled) {
   link(Interface::linkDown);
   admin(AdminStatus::rxOnly);
   open();
   run({{5, {}, txFsmDisabled, {}},
        {6, [&] { link(Interface::linkUp); }, txFsmDisabled, {}},
        {7, [&] { admin(AdminStatus::txAndRx); }, txFsmTxWait, {}},
        {9, {}, txFsmTxDelay, {9}}});
}

TEST_F(LldpPamSmTx, IntervalEqualToTheDelayIdlesForNoTime) {
   engine.config->messageTxIntervalIs(2);
   open();
   run({{2, {}, txFsmTxDelay, {2}},
        {3.999, {}, txFsmTxDelay, {2}},
        {4, {}, txFsmTxDelay, {2, 4}},
        {6, {}, txFsmTxDelay, {2, 4, 6}}});
}

TEST_F(LldpPamSmTx, ConfigurationTakesEffectAtTheNextArming) {
   open();
   run({{5, [&] { engine.config->messageTxIntervalIs(10); }, txFsmIdle, {2}},
        {12, {}, txFsmIdle, {2}},
        {32, {}, txFsmTxDelay, {2, 32}},
        {42, [&] { engine.config->txDelayIs(5); }, txFsmTxDelay, {2, 32, 42}},
        {44, {}, txFsmIdle, {2, 32, 42}},
        {49, {}, txFsmTxDelay, {2, 32, 42, 49}},  // 44 + 10 - 5
        {54, [&] { engine.config->reinitDelayIs(7); }, txFsmIdle, {2, 32, 42, 49}},
        {55, [&] { link(Interface::linkDown); }, txFsmReinitializing, {2, 32, 42, 49}},
        {61.999, {}, txFsmReinitializing, {2, 32, 42, 49}},
        {62, {}, txFsmDisabled, {2, 32, 42, 49}}});
}

TEST_F(LldpPamSmTx, NewNeighbourIsAnsweredEarlyAndAnotherChangeOfTheTableIsNot) {
   open();
   Lldp::RemoteSystem::Msap msap{{Lldp::ChassisIdSubtype::local, Lldp::ChassisId("c", 1)},
                                 {Lldp::PortIdSubtype::local, Lldp::PortId("p", 1)}};
   run({{10, [&] { port.portStatus->remoteSystemIs(1, msap); }, txFsmTxDelay, {2, 10}},
        {15,
         [&] {
            port.portStatus->remoteSystem(1)->sysNameIs({true, Lldp::BoundedString255("x")});
         },
         txFsmIdle,
         {2, 10}},
        {20, [&] { port.portStatus->remoteSystemDel(1); }, txFsmIdle, {2, 10}}});
}

TEST_F(LldpPamSmTx, FrameCarriesTheStateAfterTheWholeReaction) {
   open();
   context.advance(10);
   Rex::Dispatcher::run([&] {
      change();
      port.localPort->portIdentifierIs({Lldp::PortIdSubtype::local, Lldp::PortId("early", 5)});
      port.localPort->portIdentifierIs({Lldp::PortIdSubtype::local, Lldp::PortId("late", 4)});
   });
   ASSERT_EQ(port.sent->size(), 2u);
   const auto& octets = port.sent->back().octets;
   std::string text(octets.begin(), octets.end());
   EXPECT_EQ(text.find("early"), std::string::npos);
   EXPECT_NE(text.find("late"), std::string::npos);
}

TEST_F(LldpPamSmTx, ExhaustedPacketPoolSkipsOneTransmission) {
   open();
   context.traceOn("LldpAgent", 1);
   auto& packets = Wirekit::globalPktManager();
   size_t limit = packets.memoryLimit();
   packets.memoryLimitIs(0);
   run({{2, {}, txFsmTxDelay, {}}});
   EXPECT_THAT(context.takeTraces(), ElementsAre("Packet allocation failed"));
   EXPECT_EQ(port.portStatus->txFramesNoMemErrors(), 1u);
   EXPECT_EQ(port.portStatus->txFramesTotal(), 0u);
   packets.memoryLimitIs(limit);
   run({{4, {}, txFsmIdle, {}}, {32, {}, txFsmTxDelay, {32}}});
   EXPECT_EQ(port.portStatus->txFramesNoMemErrors(), 1u);
}

using LldpPamSmTxDeath = LldpPamSmTx;

TEST_F(LldpPamSmTxDeath, BrokenInvariantsEndTheProcess) {
   engine.localSystem->localPortDel(port.intfId);
   open();
   EXPECT_FALSE(sm()) << "the registry makes none without";
   auto clock = Rex::Context::current().clock();
   EXPECT_DEATH(Rex::make<Lldp::Agent::Protocol::LldpPamSm>(port.intfId, engine.pam(port.intfId),
                                                            engine.root, clock, clock, clock),
                "localPort\\(\\)");
   engine.localSystem->localPortIs(port.intfId)
       ->portIdentifierIs({Lldp::PortIdSubtype::interfaceName, Lldp::PortId("Ethernet1", 9)});
   engine.config->messageTxIntervalIs(1);
   EXPECT_DEATH(context.advance(5), "config->messageTxInterval\\(\\) >= config->txDelay\\(\\)");
}

}  // namespace
